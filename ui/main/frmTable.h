#pragma once
// The program's main window: the menu bar, the toolbar in its cool bar, the tree of the
// open database's tables on the left, the two grids on the right (only one shown), the
// progress bar under them and a status bar. It owns the flow: commands call the one table
// engine and then rebuild the tree (FillTableTree) or rebind the grids (ShowTable,
// RefreshGrid).
//
// Captions come from the language table (ApplyLanguage); the built-in ones are the
// design captions. Commands that need an open database are switched on and off together
// by DataBaseOpen. The window's size is remembered in twips whenever it changes.

#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QStringList>
#include <QVector>

#include "rt/UiServices.h"

#include "engine/Rows_Selection.h"
#include "engine/Table_Selection.h"
#include "rt/CreatedOnFirstUse.h"
#include "ui/HelpService.h"
#include "ui/ImageList.h"

class QAction;
class QLabel;
class QMenu;
class QProgressBar;
class QStackedWidget;
class QTimer;
class QToolBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace ui {

class TableGrid;

class frmTable : public QMainWindow {
    Q_OBJECT
public:
    explicit frmTable(QWidget* parent = nullptr);
    ~frmTable() override;

    // ---- Lifecycle
    void Form_Load();
    void Form_Activate();
    void Form_Resize();
    void Form_Unload();
    void ApplyLanguage();

    bool DataBaseOpen() const { return dataBaseOpen_; }
    // Enables or disables every command that needs an open database.
    void setDataBaseOpen(bool open);

    // ---- The tree and the grids
    void FillTableTree();
    // Binds both grids to the engine's current table.
    void ShowTable(const QString& name);
    // Binds both grids again, so they show the record set as the engine now holds it; the
    // current cell and the column widths stay.
    void RefreshGrid();
    void tvwTable_NodeClick(QTreeWidgetItem* node);
    void tvwTable_Expand(QTreeWidgetItem* node);
    void tvwTable_Collapse(QTreeWidgetItem* node);
    // Shows the editable grid instead of the read-only one, or back; both stay bound.
    void showEditGrid(bool edit);

    // ---- Selection and edit commands (the selection is made in the read-only grid)

    // The areas a calculation or a copy takes, and the one range every drag fills: all
    // entries of the list are that same range, so after several drags they all show the
    // latest one. Both are made on first use and kept for the window's life.
    engine::Table_Selection& mSelection() const { return selection_.get(); }
    engine::Rows_Selection& mRange() const { return range_.get(); }
    void frdMain_MouseDown(Qt::MouseButton button, int32_t row, int32_t col);
    void frdMain_MouseUp(Qt::MouseButton button, int32_t row, int32_t col);
    // The whole row or column of the current cell, its far corner one past the last cell.
    void mnuSelString_Click();
    void mnuSelColumn_Click();
    void mnuStrikeAdd_Click();
    void mnuStrikeDelete_Click();
    void mnuColumnAdd_Click();
    void mnuColumnDelete_Click();
    void mnuColumnRename_Click();
    void mnuCopy_Click();
    void mnuEditView_Click();

    // ---- File and database commands
    void mnuOpenDataBase_Click();
    void mnuDataBaseCreate_Click();
    void mnuTableCreate_Click();
    void mnuDelTable_Click();
    void mnuOpen_Click();
    void mnuOpenHTML_Click();
    void mnuOpenXML_Click();
    void mnuPicOpen_Click();
    void mnuSave_Click();
    void mnuSaveHTML_Click();
    void mnuSaveXML_Click();
    // Adds the path to the recent list, its menu and the machine's settings, once.
    void AddRecentDatabase(const QString& path);

    // ---- Calculation commands and the toolbar
    void mnuSumm_Click();
    void mnuMuch_Click();
    void mnuMid_Click();
    void mnuMax_Click();
    void mnuMin_Click();
    void mnuMidGeo_Click();
    void mnuMultunomial_Click();
    void mnuMinDevCrat_Click();
    void mnuDivisor_Click();
    void mnuSquareDivisor_Click();
    void mnuMedian_Click();
    void mnuMidHarmonic_Click();
    void mnuInsertResult_Click();
    void mnuStatisics_Click();
    void mnuNumberType_Click();
    void mnuOptionsTable_Click();
    // The button's command by its key, compared case-sensitively; unknown keys do nothing.
    void tlbMain_ButtonClick(const QString& key);

    // ---- Commands of this window
    void mnuDBReopenFile_Click(int index);
    void mnuExit_Click();
    void mnuAbout_Click();
    void mnuCHM_Click();
    // A database named on the command line: opened as an entry of the recent list is.
    void OpenCommandLineFile(const QString& path);

    // Appends a database to the recent list and its menu (the caption rule below); the
    // registry is not touched here.
    void addRecentEntry(const QString& path);
    // The recent menu's caption of a path: up to and including its fourth separator, then
    // "..", a separator and the file name when the path has more than five parts.
    static QString recentCaption(const QString& path);

    // ---- What commands and tests reach
    // A menu item by its control name (a menu's own action for menus), nullptr if none.
    QAction* menuItem(const QString& name) const;
    // A toolbar button by its key, nullptr if none.
    QAction* button(const QString& key) const;
    const QStringList& recentFiles() const { return mRecentFiles; }
    QStringList statusTexts() const;
    // The status bar's word on the last calculation: its result, or why there is none.
    QString resultStatusText() const;
    HelpService& help() { return help_; }

    // Controls, named as the form names them.
    ImageList imlToolbar;
    QTreeWidget* tvwTable;
    ImageList imlMain;
    TableGrid* frdMain;
    ImageList imlTree;
    QTimer* tmrMain;
    QProgressBar* prbCalculate;
    QWidget* clbMain;
    QToolBar* tlbMain;
    TableGrid* dtgMain;
    QList<QAction*> mnuDBReopenFile;

    // Form state.
    bool mEditMode = false;
    bool mActivated = false;
    bool mMouseDown = false;
    QStringList mRecentFiles;
    QString mDataBasePath;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    class Busy;
    // Keeps the shortcuts of a greyed-out menu's items from firing, as a user expects;
    // the items themselves keep their own Enabled.
    class DisabledMenuShortcuts : public QObject {
    public:
        bool eventFilter(QObject* watched, QEvent* event) override;
        static bool reachable(const QAction* item);
    };
    struct MenuKey {
        QVector<double> numbers;
        QAction* item;
    };

    void createMenus();
    void connectCommands();
    // The calculation of that number over the selection; the result, or why there is
    // none, shows in the status bar under the menu item's caption.
    QString calculate(int16_t number, const QString& menuItemName);
    void showResultStatus(const QString& text);
    // The separator of a text file by the file dialog's filter index.
    static QString separatorOfFilter(int32_t filterIndex);
    rt::FileDialogResult askForFile(bool save, const QString& title, const QString& filter,
                                    const QString& defaultExtension = QString());
    // Shows the graph digitizer; false (and the user told) when it cannot be shown.
    bool showDigitizer();
    // Opens the table file as a new table and gives it a node in the tree.
    void importTableFile(const QString& path);
    void addTableNode(const QString& name);
    // Marks the selected areas in the read-only grid.
    void showSelection();
    // The grid on screen: the editable one in edit mode, else the read-only one.
    TableGrid* shownGrid() const;
    void createToolbar();
    void createStatusBar();
    void layOut();
    void buildRecentMenu();
    // Opens the database into the tree and the grids. When it does not open, sayWhyNot
    // shows "Error open database!" with the reason; otherwise an error reaches the caller.
    bool openDatabase(const QString& path, bool sayWhyNot);
    void bindGrids(bool keepPlace);
    bool sendGridEdits();
    void markCurrentTable(const QString& name);
    void showStatus();
    QString common(int item, const QString& designText) const;

    bool dataBaseOpen_ = false;
    QHash<QString, QAction*> menuItems_;
    QList<MenuKey> menuKeys_;
    QHash<QString, QAction*> buttons_;
    QMenu* recentMenu_ = nullptr;
    QStackedWidget* grids_ = nullptr;
    QLabel* tableStatus_ = nullptr;
    QLabel* cellStatus_ = nullptr;
    QProgressBar* busyBar_ = nullptr;
    int busyDepth_ = 0;
    QLabel* resultStatus_ = nullptr;
    HelpService help_;
    DisabledMenuShortcuts disabledMenuShortcuts_;
    rt::CreatedOnFirstUse<engine::Table_Selection> selection_;
    rt::CreatedOnFirstUse<engine::Rows_Selection> range_;
};

}  // namespace ui
