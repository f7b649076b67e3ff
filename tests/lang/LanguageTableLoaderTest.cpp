#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "LanguageTableText.h"
#include "jet/RuntimeError.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"
#include "lang/LanguageTableLoader.h"
#include "ui/ScriptedUiServices.h"

using namespace lang;

namespace {

const QString kShownPath = QStringLiteral("/langs\\Test.lng");
const QString kStructural = QStringLiteral("Language Table for Vorbex Pro errors!!");

class LoaderTest : public testing::Test {
protected:
    // Loads the lines; returns the run-time error number that escaped, or 0.
    int32_t load(const QStringList& lines) { return loadBytes(tableBytes(lines)); }
    int32_t loadBytes(const QByteArray& bytes)
    {
        host::Registry unused(dir.path());
        LanguageTableLoader loader(lang, unused, fake);
        try {
            EXPECT_FALSE(loader.loadFrom(*readerOf(bytes), kShownPath));
        } catch (const jet::RuntimeError& e) {
            return e.number();
        }
        return 0;
    }
    static QStringList with(QStringList lines, const QString& old, const QStringList& replacement)
    {
        const qsizetype at = lines.indexOf(old);
        EXPECT_GE(at, 0) << old.toStdString();
        lines.removeAt(at);
        for (qsizetype i = 0; i < replacement.size(); ++i)
            lines.insert(at + i, replacement[i]);
        return lines;
    }
    // A second load into the same captions would append to them: start again.
    void fresh()
    {
        lang = LangApp();
        fake.clear();
    }
    // The one message shown, as "title|style|text".
    QString onlyMessage() const
    {
        const auto boxes = fake.messageBoxes();
        EXPECT_EQ(boxes.size(), 1u);
        return boxes.empty() ? QString() : boxes[0].title + u'|' + QString::number(boxes[0].style) + u'|' + boxes[0].prompt;
    }

    QTemporaryDir dir;
    LangApp lang;
    ui::ScriptedUiServices fake;
};

}  // namespace

TEST_F(LoaderTest, FillsEveryDestinationOfAWholeTable)
{
    EXPECT_EQ(load(smallLanguageTable()), 0);
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(lang.Buttons().Count(), 2);
    EXPECT_EQ(lang.Buttons().Item(2), "Cancel");
    EXPECT_EQ(lang.NumberType().Item(2), "Numbers");
    const TableLangItem& table = lang.Table();
    EXPECT_EQ(table.Common().Count(), 2);
    EXPECT_EQ(table.Common().Item(1), "Main window");
    EXPECT_EQ(table.Common().Key(1), QString());
    EXPECT_EQ(table.Menu().Count(), 2);
    EXPECT_EQ(table.Menu().Key(2), "0,1");
    EXPECT_EQ(table.Menu().Item(2), "&Open");
    EXPECT_EQ(table.ToolBar().Count(), 14);
    EXPECT_EQ(table.ToolBar().Key(1), "NewDB");
    EXPECT_EQ(table.ToolBar().Item(1), "New database*");  // up to and including the "*"
    EXPECT_EQ(table.ToolBar().Item(2), "Open database");
    EXPECT_EQ(table.ToolBar().Key(3), QString());
    EXPECT_EQ(table.TableOptions().Item(2), "Text tables");
    EXPECT_EQ(table.Login().Item(3), "Password:");
    EXPECT_EQ(table.NewDataBase().Item(1), "New database");
    EXPECT_EQ(table.AddField().Item(1), "Add column");
    const StatisticLangItem& statistic = lang.Statistic();
    EXPECT_EQ(statistic.Main().Item(1), "Digitizer");
    EXPECT_EQ(statistic.Menu().Key(1), "mnuFile");
    EXPECT_EQ(statistic.ToolBar().Key(1), "Scan");
    EXPECT_EQ(statistic.ToolBar().Item(1), "Scan*it");  // no "*" rule here
    EXPECT_EQ(statistic.GraphPlot().Item(1), "Plot");
    EXPECT_EQ(statistic.BuilderTable().Item(2), "Step");
    // The header values are checked, not kept.
    EXPECT_EQ(lang.EngCaption(), QString());
    EXPECT_EQ(lang.Version(), 0);
}

TEST_F(LoaderTest, AWrongBannerNamesTheFileAndLoadsNothing)
{
    EXPECT_EQ(load(with(smallLanguageTable(), "Vorbex Language Table", {"Vorbex Language table"})), 0);
    EXPECT_EQ(onlyMessage(), "Error loading file|48|This file ( /langs\\Test.lng )\r\ndon't language file");
    EXPECT_EQ(lang.Buttons().Count(), 0);
}

TEST_F(LoaderTest, AFileWithBareLineFeedsIsNotALanguageTable)
{
    EXPECT_EQ(loadBytes(tableBytes(smallLanguageTable(), "\n")), 0);
    EXPECT_TRUE(onlyMessage().startsWith("Error loading file|48|This file ( "));
}

TEST_F(LoaderTest, VersionsUpToOneAreAcceptedAndHigherOnesRefused)
{
    for (const QString version : {"Version=0.5", "Version=abc", "Version=-3", "Version=", "Version=1", "Version= 1.0x"}) {
        fresh();
        EXPECT_EQ(load(with(smallLanguageTable(), "Version=1", {version})), 0);
        EXPECT_EQ(lang.Buttons().Count(), 2) << version.toStdString();
        EXPECT_TRUE(fake.boxes().empty());
    }
    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "Version=1", {"Version=1.01"})), 0);
    EXPECT_EQ(onlyMessage(), "Error!|48|Don't right version language table for Vorbex Pro");
    EXPECT_EQ(lang.Buttons().Count(), 0);
}

TEST_F(LoaderTest, MisspeltHeaderKeysAreStructuralErrors)
{
    for (const auto& [line, wrong] : std::vector<std::pair<QString, QString>>{
             {"Version=1", "Version =1"}, {"Version=1", "Version"}, {"EngCaption=English", "EngCaption:English"},
             {"OutCaption=English", "outCaption=English"}, {"HelpFile=help.chm", "HelpFile =help.chm"}}) {
        fresh();
        EXPECT_EQ(load(with(smallLanguageTable(), line, {wrong})), 0);
        EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural) << wrong.toStdString();
    }
    EXPECT_EQ(lang.Buttons().Count(), 0);
}

TEST_F(LoaderTest, NumberedLinesMustCountFromOneWithoutGaps)
{
    EXPECT_EQ(load(with(smallLanguageTable(), "2=Cancel", {"3=Cancel"})), 0);
    EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural);
    EXPECT_EQ(lang.Buttons().Count(), 1);  // what came before the faulty line stays
    EXPECT_EQ(lang.NumberType().Count(), 0);

    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "1=OK", {"01=OK"})), 0);
    EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural);
    EXPECT_EQ(lang.Buttons().Count(), 0);
}

TEST_F(LoaderTest, TheValueIsEverythingAfterTheFirstEqualsSignAndCannotBeEmpty)
{
    EXPECT_EQ(load(with(smallLanguageTable(), "2=Open table", {"2=x=y"})), 0);
    EXPECT_EQ(lang.Table().Common().Item(2), "x=y");
    EXPECT_TRUE(fake.boxes().empty());

    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "2=Open table", {"2="})), 0);
    EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural);  // "2=" is not the key "2"
    EXPECT_EQ(lang.Table().Common().Count(), 1);
    EXPECT_EQ(lang.Table().Menu().Count(), 0);
}

TEST_F(LoaderTest, AStructuralErrorKeepsTheSectionsBeforeIt)
{
    EXPECT_EQ(load(with(smallLanguageTable(), "/GraphPlot", {"/Graphplot"})), 0);
    EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural);
    EXPECT_EQ(lang.Table().Common().Count(), 2);
    EXPECT_EQ(lang.Table().TableOptions().Count(), 2);
    EXPECT_EQ(lang.Statistic().Main().Count(), 1);
    EXPECT_EQ(lang.Statistic().GraphPlot().Count(), 0);
    EXPECT_EQ(lang.Table().AddField().Count(), 0);
}

TEST_F(LoaderTest, SkippedSectionsAreCheckedForTheirOpeningLineOnly)
{
    EXPECT_EQ(load(with(smallLanguageTable(), "1=x", {"1=x", "Garbage \x01 line", "/Nested", "\\Nested"})), 0);
    EXPECT_TRUE(fake.boxes().empty());
    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "/Tarifs", {"/Tariffs"})), 0);
    EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural);
}

TEST_F(LoaderTest, MenuItemsNeedTheItemPrefixButNotAnEqualsSign)
{
    EXPECT_EQ(load(with(smallLanguageTable(), "Item(0,1)=&Open", {"Item(cmdOK):OK"})), 0);
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(lang.Table().Menu().Key(2), "cmdOK");
    EXPECT_EQ(lang.Table().Menu().Item(2), "OK");

    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "Item(0,1)=&Open", {"item(0,1)=&Open"})), 0);
    EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural);
    EXPECT_EQ(lang.Table().Menu().Count(), 1);
}

TEST_F(LoaderTest, AClosingTableLineAlsoEndsTheNumberedPart)
{
    // After "\Table" the menu part begins, so the next line must be a menu item.
    EXPECT_EQ(load(with(smallLanguageTable(), "/Menu", {"\\Table"})), 0);
    EXPECT_EQ(lang.Table().Menu().Count(), 2);
    EXPECT_TRUE(fake.boxes().empty());
}

TEST_F(LoaderTest, AfterTheToolbarTheSectionMustClose)
{
    EXPECT_EQ(load(with(smallLanguageTable(), "\\Statistic", {"\\Table"})), 0);
    EXPECT_EQ(onlyMessage(), "Errors!!|48|" + kStructural);
    EXPECT_EQ(lang.Statistic().ToolBar().Count(), 1);
    EXPECT_EQ(lang.Statistic().GraphPlot().Count(), 0);
}

TEST_F(LoaderTest, NothingAfterAddFieldIsRead)
{
    QStringList lines = smallLanguageTable();
    lines << "/HostOnly" << "\x01\x02 not even text" << "";
    EXPECT_EQ(load(lines), 0);
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(lang.Table().AddField().Count(), 1);
    // ...and a file that ends right there without a line break loads too.
    fresh();
    QByteArray bytes = tableBytes(smallLanguageTable());
    bytes.chop(2);
    EXPECT_EQ(loadBytes(bytes), 0);
    EXPECT_EQ(lang.Table().AddField().Count(), 1);
}

TEST_F(LoaderTest, RunTimeErrorsPassToTheCallerWithWhatWasReadSoFar)
{
    QStringList truncated = smallLanguageTable();
    truncated = truncated.mid(0, truncated.indexOf("/Statistic") + 2);
    EXPECT_EQ(load(truncated), 62);  // input past end of file
    EXPECT_EQ(lang.Statistic().Main().Count(), 1);
    EXPECT_EQ(lang.Table().Common().Count(), 2);
    EXPECT_TRUE(fake.boxes().empty());

    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "2=Cancel", {""})), 9);  // GetToken on an empty line
    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "1=OK", {QString(40000, u'1')})), 6);
    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "\\Phisics", {"\\Physics"})), 62);  // never closed
    fresh();
    QStringList crowded = smallLanguageTable();
    for (int i = 0; i < 13; ++i)
        crowded.insert(crowded.indexOf("\\Toolbar"), QStringLiteral("Item(Extra%1)=x").arg(i));
    EXPECT_EQ(load(crowded), 9);  // the toolbar has 14 places
    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "Item(0,1)=&Open", {"Item(0)=&Again"})), 457);
    fresh();
    EXPECT_EQ(load(with(smallLanguageTable(), "Item(OpenDB)=Open database", {"Item(OpenDB)="})), 9);
}

TEST_F(LoaderTest, LoadReadsTheFileFromTheLanguageFolderInTheRegistry)
{
    host::Registry registry(dir.path() + "/registry");
    const QString folder = dir.path() + "/languages";
    ASSERT_TRUE(QDir().mkpath(folder));
    registry.write(host::HKEY_LOCAL_MACHINE, host::keys::Languages, QString(), folder);
    QFile file(folder + "/Test.lng");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(tableBytes(with(smallLanguageTable(), "Vorbex Language Table", {"Something else"})));
    file.close();

    LanguageTableLoader loader(lang, registry, fake);
    EXPECT_FALSE(loader.load("Test.lng"));
    EXPECT_EQ(onlyMessage(), "Error loading file|48|This file ( " + folder + "\\Test.lng )\r\ndon't language file");
    try {
        loader.load("Missing.lng");
        ADD_FAILURE() << "a missing file must raise a run-time error";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(e.number(), 53);
    }
}
