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
    void createToolbar();
    void createStatusBar();
    void layOut();
    void buildRecentMenu();
    void openDatabase(const QString& path);
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
    HelpService help_;
    DisabledMenuShortcuts disabledMenuShortcuts_;
};

}  // namespace ui
