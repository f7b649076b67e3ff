// The main window driven as a user would, through the scripted services: its captions
// from the language tables, which commands an open database switches on, the size it
// remembers, the recent-databases menu, and opening a database and a table into the grid.

#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QProgressBar>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>

#include "../support/CorpusCopy.h"
#include "../support/FreshProgram.h"
#include "../support/ShownBoxes.h"

#include "engine/XDataBase.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"
#include "ui/Twips.h"
#include "ui/dialogs/Dialogs.h"
#include "ui/main/MainMenuDesign.h"
#include "ui/main/TableGrid.h"
#include "ui/main/frmTable.h"

namespace {

using host::HKEY_LOCAL_MACHINE;
namespace keys = host::keys;

class FrmTableTest : public testing::Test {
protected:
    void SetUp() override { ui::registerDialogs(); }

    void loadLanguage(const QString& file)
    {
        app::gRegistry().write(HKEY_LOCAL_MACHINE, keys::Languages, QString(), SHEETWRIGHT_SOURCE_DIR "/share/languages");
        app::LoadLanguageTable(file);
        ASSERT_TRUE(program.fake.boxes().empty()) << shownBoxes(program.fake).join('\n').toStdString();
    }
    QString registry(const QString& key, const QString& value) const
    {
        return app::gRegistry().read(HKEY_LOCAL_MACHINE, key, value);
    }
    void setRecent(const QStringList& paths)
    {
        for (int i = 0; i < paths.size(); ++i)
            if (!paths[i].isEmpty())
                app::gRegistry().write(HKEY_LOCAL_MACHINE, keys::UsesFiles, QString::number(i + 1), paths[i]);
    }
    static QStringList treeTexts(const ui::frmTable& form)
    {
        QStringList texts;
        for (QTreeWidgetItemIterator it(form.tvwTable); *it; ++it)
            texts << ((*it)->font(0).bold() ? "*" : "") + (*it)->text(0);
        return texts;
    }
    static QTreeWidgetItem* node(const ui::frmTable& form, const QString& text)
    {
        return form.tvwTable->findItems(text, Qt::MatchExactly | Qt::MatchRecursive).value(0);
    }

    FreshProgram program;
};

TEST_F(FrmTableTest, EveryControlAndMenuItemIsThereWithItsDesignCaptionAndShortcut)
{
    ui::frmTable form;
    for (const char* control : {"tvwTable", "frdMain", "dtgMain", "tlbMain", "clbMain", "prbCalculate", "tmrMain"})
        EXPECT_NE(form.findChild<QObject*>(control), nullptr) << control;
    for (const ui::MenuDesign& item : ui::kMainMenu)
        EXPECT_NE(form.menuItem(item.name), nullptr) << item.name;
    EXPECT_TRUE(form.menuItem("mnuR2")->isSeparator());
    const struct {
        const char* name;
        const char* caption;
        const char* shortcut;
    } designed[] = {
        {"mnuFile", "&Файл", ""},
        {"mnuDataBaseCreate", "База данных", "Ctrl+N"},
        {"mnuTableCreate", "Таблица", "Ctrl+Shift+F4"},
        {"mnuStrikeAdd", "Добавить", "Ctrl+Ins"},
        {"mnuStrikeDelete", "Удалить", "Shift+Del"},
        {"mnuMaxCrat", "Набольший общий делитель", "Ctrl+F9"},
        {"mnuSquareDivisor", "Квадратичное отклонение", "Ctrl+Shift+F1"},
        {"mnuInsertResult", "Вставить результат в ячейку", "Ctrl+R"},
        {"mnuCHM", "Вызов справки", "F1"},
    };
    for (const auto& item : designed) {
        EXPECT_EQ(form.menuItem(item.name)->text(), QString::fromUtf8(item.caption)) << item.name;
        EXPECT_EQ(form.menuItem(item.name)->shortcut().toString(), item.shortcut) << item.name;
    }
    QStringList keys;
    for (QAction* button : form.tlbMain->actions()) {
        keys << button->objectName();
        EXPECT_FALSE(button->icon().isNull()) << button->objectName().toStdString();
        EXPECT_TRUE(button->toolTip().isEmpty() || button->toolTip() == button->text());
    }
    EXPECT_EQ(keys.join(','), "NewDB,NewTable,OpenDB,Open,Save,Copy,TableHZ,TableVR,InsertRIAD,DelStroke,DelColumn,"
                              "InsertRES,EditView,Stat");
    EXPECT_TRUE(form.windowTitle().isEmpty());  // no language table loaded
    EXPECT_FALSE(form.tmrMain->isActive());
    EXPECT_EQ(form.prbCalculate->value(), 0);
}

TEST_F(FrmTableTest, TheLanguageTableCaptionsMenusByTheirIrregularKeysAndTheToolTips)
{
    loadLanguage("English.lng");
    ui::frmTable form;
    EXPECT_EQ(form.windowTitle(), "Sheetwright - Access database tables");
    const struct {
        const char* name;
        const char* caption;
    } captions[] = {
        {"mnuFile", "&File"},           {"mnuOpen", "&Table..."},  // 0,1,1
        {"mnuSave", "&Save"},           {"mnuOpenAs", "Open &as"},  // 0,4 after the numbered separator
        {"mnuDBReopen", "&Recent databases"}, {"mnuExit", "E&xit"},  // 0,6 and 0,8
        {"mnuDelTable", "Delete &table"},  // 2,3: the separator before it takes no number
        {"mnuStatisics", "&Statistics..."}, {"mnuMaxCrat", "G&reatest common divisor"},
        {"mnuInsertResult", "&Insert result into cell"},  // 3,14: 3,13 names the separator
        {"mnuCHM", "&Contents"},
    };
    for (const auto& item : captions)
        EXPECT_EQ(form.menuItem(item.name)->text(), item.caption) << item.name;
    EXPECT_EQ(form.button("NewDB")->toolTip(), "New database");
    EXPECT_EQ(form.button("Stat")->toolTip(), "Statistics");
    for (QAction* button : form.tlbMain->actions())
        EXPECT_FALSE(button->toolTip().isEmpty()) << button->objectName().toStdString();
    EXPECT_EQ(form.mnuDBReopenFile[0]->text(), "Empty");
}

TEST_F(FrmTableTest, KeysThatNameNoMenuItemAreSkippedAndAToolTipForNoButtonStopsTheWindowLoading)
{
    lang::TableLangItem& table = app::gLang().Table();
    table.Menu().Add("separator", "0,3");
    table.Menu().Add("none", "3,13");
    table.Menu().Add("too deep", "2,3,0");
    table.Menu().Add("blanks around", " 2 , 4 ");
    table.Menu().Add("no key", "");
    table.ToolBar().SetSize(14);
    table.ToolBar().SetItem("Open", 4, "Open*");
    ui::frmTable form;
    EXPECT_EQ(form.menuItem("mnuEditView")->text(), "blanks around");
    EXPECT_EQ(form.menuItem("mnuDelTable")->text(), QString::fromUtf8("Удалить"));
    EXPECT_EQ(form.menuItem("mnuFile")->text(), QString::fromUtf8("&Файл"));
    EXPECT_EQ(form.button("Open")->toolTip(), "Open*");

    table.ToolBar().SetItem("OpenTable", 5, "Open a table");
    EXPECT_EQ(runTimeErrorOf([] { ui::frmTable broken; }), 35601);
}

TEST_F(FrmTableTest, DataBaseOpenSwitchesExactlyTheCommandsThatNeedADatabase)
{
    ui::frmTable form;
    form.show();
    form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    const QStringList switched = {"mnuOpenAs", "mnuSaveAs", "mnuSave", "mnuOpen", "mnuPicOpen", "mnuCopy",
                                  "mnuTable", "mnuCalc", "mnuTableCreate"};
    const QStringList switchedButtons = {"NewTable", "Open", "Save", "Copy", "TableHZ", "TableVR", "InsertRIAD",
                                         "DelStroke", "DelColumn", "InsertRES", "EditView", "Stat"};
    for (bool open : {false, true, false}) {
        if (open || form.DataBaseOpen())
            form.setDataBaseOpen(open);
        EXPECT_EQ(form.DataBaseOpen(), open);
        for (const ui::MenuDesign& item : ui::kMainMenu) {
            if (QString(item.name) != "mnuDBReopenFile") {
                EXPECT_EQ(form.menuItem(item.name)->isEnabled(), open || !switched.contains(item.name))
                    << item.name << " with a database " << (open ? "open" : "closed");
            }
        }
        for (QAction* button : form.tlbMain->actions())
            EXPECT_EQ(button->isEnabled(), open || !switchedButtons.contains(button->objectName()))
                << button->objectName().toStdString();
    }
    // A greyed-out menu's shortcuts do nothing either.
    QSignalSpy rowAdded(form.menuItem("mnuStrikeAdd"), &QAction::triggered);
    QTest::keyClick(&form, Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(rowAdded.count(), 0);
    form.setDataBaseOpen(true);
    QTest::keyClick(&form, Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(rowAdded.count(), 1);
}

TEST_F(FrmTableTest, TheSizeIsRestoredFromTwipsAndRememberedOnEveryResize)
{
    app::gWinX = 12000;
    app::gWinY = 9000;
    ui::frmTable form;
    const double dpi = form.logicalDpiX();
    EXPECT_EQ(form.size(), QSize(ui::twipsToPixels(12000, dpi), ui::twipsToPixels(9000, form.logicalDpiY())));
    const QRect screen = form.screen()->availableGeometry();
    EXPECT_EQ(form.pos(), QPoint(screen.x() + (screen.width() - form.width()) / 2, screen.y() + (screen.height() - form.height()) / 2));
    auto stored = [&] { return registry(keys::Plugin, keys::WinX) + 'x' + registry(keys::Plugin, keys::WinY); };

    form.resize(700, 500);  // not activated yet: written, not remembered
    form.Form_Resize();
    EXPECT_EQ(stored(), "12000x9000");
    form.Form_Activate();
    form.resize(700, 501);
    form.Form_Resize();
    EXPECT_EQ(stored(), QString::number(ui::pixelsToTwips(700, dpi), 'g', 7) + 'x' +
                            QString::number(ui::pixelsToTwips(501, form.logicalDpiY()), 'g', 7));
    const float width = app::gWinX;

    app::gRegistry().write(HKEY_LOCAL_MACHINE, keys::Plugin, keys::WinX, "gone");
    form.setWindowState(Qt::WindowMinimized);  // left alone, written all the same
    EXPECT_EQ(app::gWinX, width);
    EXPECT_EQ(registry(keys::Plugin, keys::WinX), QString::number(width, 'g', 7));

    form.setWindowState(Qt::WindowMaximized);
    const QSize whole = form.screen()->geometry().size();
    EXPECT_EQ(stored(), QString::number(ui::pixelsToTwips(whole.width(), dpi), 'g', 7) + 'x' +
                            QString::number(ui::pixelsToTwips(whole.height(), form.logicalDpiY()), 'g', 7));

    // A size as large as the screen comes back maximised.
    ui::frmTable again;
    EXPECT_TRUE(again.windowState() & Qt::WindowMaximized);
}

TEST_F(FrmTableTest, TheRecentMenuListsUsesFilesUpToTheFirstGapAndGreysMissingFiles)
{
    QDir(program.dir.path()).mkpath("a/b/c/d");
    const QString deep = program.path("a/b/c/d/deep.mdb");
    writeFile(deep, "not opened here");
    setRecent({deep, program.path("missing.mdb"), "", program.path("after-the-gap.mdb")});
    ui::frmTable form;
    EXPECT_EQ(form.recentFiles(), QStringList({deep, program.path("missing.mdb")}));
    ASSERT_EQ(form.mnuDBReopenFile.size(), 2);
    EXPECT_EQ(form.mnuDBReopenFile[0]->text(), ui::frmTable::recentCaption(deep));
    EXPECT_TRUE(form.mnuDBReopenFile[0]->text().endsWith("../deep.mdb"));
    EXPECT_TRUE(form.mnuDBReopenFile[0]->isEnabled());
    EXPECT_FALSE(form.mnuDBReopenFile[1]->isEnabled());

    const struct {
        const char* path;
        const char* caption;
    } captions[] = {
        {"C:\\a\\b\\c.mdb", "C:\\a\\b\\c.mdb"},
        {"C:\\a\\b\\c\\d.mdb", "C:\\a\\b\\c\\"},  // five parts: shown without its file name
        {"C:\\a\\b\\c\\d\\data.mdb", "C:\\a\\b\\c\\..\\data.mdb"},
        {"/home/u/x.mdb", "/home/u/x.mdb"},
        {"/home/u/a/b/c.mdb", "/home/u/a/../c.mdb"},
    };
    for (const auto& c : captions)
        EXPECT_EQ(ui::frmTable::recentCaption(c.path), c.caption) << c.path;
}

TEST_F(FrmTableTest, ARecentDatabaseOpensIntoTheTreeAndAClickedTableFillsTheGrid)
{
    const QString file = copyCorpusFile("testV1997.mdb", program.path("testV1997.mdb"));
    setRecent({file});
    ui::frmTable form;
    form.mnuDBReopenFile[0]->trigger();
    EXPECT_TRUE(form.DataBaseOpen());
    EXPECT_EQ(treeTexts(form), QStringList({"Tables", "*Table1", "Table2", "Table3", "Table4"}));
    QTreeWidgetItem* root = form.tvwTable->topLevelItem(0);
    EXPECT_TRUE(root->isExpanded());
    EXPECT_EQ(root->icon(0).cacheKey(), form.imlTree.ListImages(1).cacheKey());
    EXPECT_EQ(form.frdMain->Rows(), 3);
    EXPECT_EQ(form.frdMain->model()->index(2, 2).data().toString(), "hijklmnop");
    EXPECT_EQ(form.statusTexts(), QStringList({"Table1  |  Records: 2", "Record 1, column A"}));

    form.tvwTable_NodeClick(node(form, "Table2"));
    EXPECT_EQ(treeTexts(form), QStringList({"Tables", "Table1", "*Table2", "Table3", "Table4"}));
    EXPECT_EQ(app::gDataBase().CurrentTable(), "Table2");
    EXPECT_EQ(form.frdMain->Cols(), 90);
    EXPECT_EQ(form.frdMain->Rows(), 1);
    EXPECT_EQ(form.dtgMain->Cols(), 1);  // the edit grid takes the table when it is shown
    form.show();
    form.showEditGrid(true);
    EXPECT_EQ(form.dtgMain->Cols(), 90);
    form.showEditGrid(false);

    form.tvwTable_NodeClick(root);  // the root changes nothing
    EXPECT_EQ(app::gDataBase().CurrentTable(), "Table2");
    root->setExpanded(false);
    EXPECT_EQ(root->icon(0).cacheKey(), form.imlTree.ListImages(2).cacheKey());

    // A database without tables: the tree has its root only, the grids nothing.
    form.OpenCommandLineFile(copyCorpusFile("empty.mdb", program.path("empty.mdb")));
    EXPECT_EQ(treeTexts(form), QStringList({"Tables"}));
    EXPECT_EQ(form.frdMain->Rows(), 1);
    EXPECT_EQ(form.frdMain->Cols(), 1);
    EXPECT_EQ(form.statusTexts(), QStringList({"", ""}));
    EXPECT_EQ(program.fake.boxes().size(), 0u);
}

TEST_F(FrmTableTest, AFileThatCannotBeOpenedGetsTheProgramsMessageAndLeavesTheWindowEmpty)
{
    writeFile(program.path("notes.mdb"), "These are notes, not a database.");
    const QString good = copyCorpusFile("testV1997.mdb", program.path("good.mdb"));
    ui::frmTable form;
    form.OpenCommandLineFile(program.path("missing.mdb"));
    form.OpenCommandLineFile(program.path("notes.mdb"));
    app::gUseLogin = true;
    program.fake.answerForm("frmLogin", rt::FormScript().click("cmdCancel"));
    form.OpenCommandLineFile(good);
    const QStringList boxes = shownBoxes(program.fake);
    ASSERT_EQ(boxes.size(), 4);
    EXPECT_TRUE(boxes[0].startsWith("|16|Error open database!\r\nCould not find file")) << boxes[0].toStdString();
    EXPECT_TRUE(boxes[1].startsWith("|16|Error open database!\r\n")) << boxes[1].toStdString();
    EXPECT_EQ(boxes[3], "|16|Error open database!");  // the login was cancelled
    EXPECT_FALSE(form.DataBaseOpen());
    EXPECT_EQ(form.tvwTable->topLevelItemCount(), 0);

    program.fake.answerForm("frmLogin", rt::FormScript().click("cmdOK"));
    form.OpenCommandLineFile(good);
    EXPECT_TRUE(form.DataBaseOpen());
    EXPECT_EQ(form.frdMain->Rows(), 3);
    EXPECT_TRUE(form.recentFiles().isEmpty());  // as from the recent list: the list is left alone
}

TEST_F(FrmTableTest, AboutBoxHelpAndExit)
{
    ui::frmTable form;
    form.mnuAbout_Click();
    ASSERT_EQ(program.fake.forms().size(), 1u);
    EXPECT_EQ(program.fake.forms()[0].form + '|' + program.fake.forms()[0].owner + '|' + program.fake.forms()[0].title,
              QString::fromUtf8("frmAbout|frmTable|О Sheetwright"));

    // Nothing to open in the test's folder: neither the compiled help nor its pages.
    form.mnuCHM_Click();
    ASSERT_EQ(program.fake.messageBoxes().size(), 1u);
    EXPECT_EQ(program.fake.messageBoxes()[0].prompt,
              "The help file " + QCoreApplication::applicationDirPath() + "/shwright.chm cannot be opened.");
    EXPECT_EQ(program.fake.messageBoxes()[0].style, rt::vbExclamation);
    EXPECT_EQ(program.fake.messageBoxes()[0].title, "Help");

    // Typed into the edit grid and not sent yet: exiting sends it.
    const QString file = copyCorpusFile("testV1997.mdb", program.path("testV1997.mdb"));
    form.OpenCommandLineFile(file);
    form.show();
    form.showEditGrid(true);
    ASSERT_TRUE(form.dtgMain->records().setData(form.dtgMain->model()->index(1, 2), "typed"));
    form.mnuExit_Click();
    EXPECT_FALSE(form.isVisible());
    app::gDataBase().setCurrentTable("Table1");
    app::gDataBase().MoveFirst();
    EXPECT_EQ(app::gDataBase().Item("B", 0), "typed");
}

}  // namespace
