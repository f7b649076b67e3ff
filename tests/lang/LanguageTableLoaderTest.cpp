#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "../support/ShownBoxes.h"
#include "../support/TestSupport.h"
#include "LanguageTableText.h"

#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LanguageTableLoader.h"

using namespace lang;

namespace {

const QString kAll = "2 2 2 2 14 2 1 1 1 1 2 3 1 1";
const QString kNone = "0 0 0 0 0 0 0 0 0 0 0 0 0 0";
// The three messages as "title|style|text".
const QString kBanner = "Error loading file|48|This file ( /langs\\Test.lng )\r\ndon't language file";
const QString kVersion = "Error!|48|Don't right version language table for Vorbex Pro";
const QString kStructural = "Errors!!|48|Language Table for Vorbex Pro errors!!";

class LoaderTest : public testing::Test {
protected:
    // Loads the small table with its first line `old` replaced by `replacement` (the file
    // ending at a line "<end>") into fresh captions; returns the number of the run-time
    // error that escaped, or 0.
    int32_t load(const QString& old = QString(), const QStringList& replacement = {})
    {
        QStringList lines = smallLanguageTable();
        const qsizetype at = old.isEmpty() ? lines.size() : lines.indexOf(old);
        EXPECT_GE(at, 0) << old.toStdString();
        lines = lines.mid(0, at) + replacement + lines.mid(at + 1);
        return loadBytes(tableBytes(lines.mid(0, lines.indexOf("<end>"))));
    }
    int32_t loadBytes(const QByteArray& bytes)
    {
        lang = LangApp();
        fake.clear();
        host::Registry unused(dir.path());
        LanguageTableLoader loader(lang, unused, fake);
        return runTimeErrorOf([&] { EXPECT_FALSE(loader.loadFrom(*readerOf(bytes), "/langs\\Test.lng")); });
    }
    QString messages() const { return shownBoxes(fake).join(u'\n'); }

    QTemporaryDir dir;
    LangApp lang;
    rt::ScriptedUiServices fake;
};

}  // namespace

TEST_F(LoaderTest, EachLineKindGoesToItsDestination)
{
    ASSERT_EQ(load(), 0);
    const TableLangItem& t = lang.Table();
    const StatisticLangItem& s = lang.Statistic();
    EXPECT_EQ(QStringList({lang.Buttons().Item(2), lang.NumberType().Item(2), t.Common().Item(1), t.Common().Key(1),
                           t.Menu().Key(2), t.Menu().Item(2), t.TableOptions().Item(2), t.Login().Item(3),
                           t.NewDataBase().Item(1), t.AddField().Item(1), s.Main().Item(1), s.Menu().Key(1),
                           s.GraphPlot().Item(1), s.BuilderTable().Item(2)}),
              QStringList({"Cancel", "Numbers", "Main window", "", "0,1", "&Open", "Text tables", "Password:",
                           "New database", "Add column", "Digitizer", "mnuFile", "Plot", "Step"}));
    // The main toolbar's text runs up to its first "*" and keeps it; the statistics
    // toolbar takes the whole rest of the line.
    EXPECT_EQ(QStringList({t.ToolBar().Key(1), t.ToolBar().Item(1), t.ToolBar().Key(2), t.ToolBar().Item(2),
                           t.ToolBar().Key(3), s.ToolBar().Key(1), s.ToolBar().Item(1)}),
              QStringList({"NewDB", "New database*", "OpenDB", "Open database", "", "Scan", "Scan*it"}));
    EXPECT_EQ(lang.EngCaption() + QString::number(lang.Version()), "0");  // header values are checked, not kept
    // A caption is everything after the first "="; the character after a menu key's ")"
    // is not checked.
    ASSERT_EQ(load("2=Open table", {"2=x=y"}), 0);
    EXPECT_EQ(lang.Table().Common().Item(2), "x=y");
    ASSERT_EQ(load("Item(0,1)=&Open", {"Item(cmdOK):OK"}), 0);
    EXPECT_EQ(lang.Table().Menu().Key(2) + u'|' + lang.Table().Menu().Item(2), "cmdOK|OK");
}

TEST_F(LoaderTest, EachFaultEndsWithItsMessageOrRunTimeErrorAndKeepsWhatCameBefore)
{
    QStringList crowded{"Item(OpenDB)=Open database"};  // the toolbar has 14 places
    for (int i = 0; i < 13; ++i)
        crowded << QStringLiteral("Item(Extra%1)=x").arg(i);
    // line replaced, lines put in its place, the run-time error, the message, the counts
    const std::vector<std::tuple<QString, QStringList, int32_t, QString, QString>> cases = {
        {"", {}, 0, "", kAll},
        {"Vorbex Language Table", {"Vorbex Language table"}, 0, kBanner, kNone},
        // Any version up to 1 is taken, negative or none too.
        {"Version=1", {"Version=abc"}, 0, "", kAll},
        {"Version=1", {"Version=-3"}, 0, "", kAll},
        {"Version=1", {"Version=1.01"}, 0, kVersion, kNone},
        // A header key runs up to and including the first "=".
        {"Version=1", {"Version =1"}, 0, kStructural, kNone},
        {"Version=1", {"Version"}, 0, kStructural, kNone},
        {"EngCaption=English", {"EngCaption:English"}, 0, kStructural, kNone},
        {"OutCaption=English", {"outCaption=English"}, 0, kStructural, kNone},
        {"HelpFile=help.chm", {"HelpFile =help.chm"}, 0, kStructural, kNone},
        // Numbered lines count from "1" in plain decimal; "2=" is the key "2=", so no
        // caption can be empty.
        {"2=Cancel", {"3=Cancel"}, 0, kStructural, "1 0 0 0 0 0 0 0 0 0 0 0 0 0"},
        {"1=OK", {"01=OK"}, 0, kStructural, kNone},
        {"2=Open table", {"2="}, 0, kStructural, "2 2 1 0 0 0 0 0 0 0 0 0 0 0"},
        // Skipped sections are checked for their opening line only.
        {"1=x", {"1=x", "Garbage \x01 line", "/Nested", "\\Nested"}, 0, "", kAll},
        {"/Tarifs", {"/Tariffs"}, 0, kStructural, "2 2 2 2 14 2 0 0 0 0 0 0 0 0"},
        {"/GraphPlot", {"/Graphplot"}, 0, kStructural, "2 2 2 2 14 2 1 1 1 0 0 0 0 0"},
        {"Item(0,1)=&Open", {"item(0,1)=&Open"}, 0, kStructural, "2 2 2 1 0 0 0 0 0 0 0 0 0 0"},
        // "\Table" ends the numbered part as "/Menu" does; after the toolbar the section
        // must close with its own name.
        {"/Menu", {"\\Table"}, 0, "", kAll},
        {"\\Statistic", {"\\Table"}, 0, kStructural, "2 2 2 2 14 2 1 1 1 0 0 0 0 0"},
        // Nothing after "\AddField" is read.
        {"\\AddField", {"\\AddField", "/HostOnly", "\x01\x02 not even text", ""}, 0, "", kAll},
        // What the loader does not handle reaches the caller without a message.
        {"2=Cancel", {""}, 9, "", "1 0 0 0 0 0 0 0 0 0 0 0 0 0"},  // GetToken on an empty line
        {"1=OK", {QString(40000, u'1')}, 6, "", kNone},           // a position past 32767
        {"\\Phisics", {"\\Physics"}, 62, "", "2 2 0 0 0 0 0 0 0 0 0 0 0 0"},  // never closed
        {"Item(0,1)=&Open", {"Item(0)=&Again"}, 457, "", "2 2 2 1 0 0 0 0 0 0 0 0 0 0"},
        {"Item(OpenDB)=Open database", {"Item(OpenDB)="}, 9, "", "2 2 2 2 14 0 0 0 0 0 0 0 0 0"},
        {"Item(OpenDB)=Open database", crowded, 9, "", "2 2 2 2 14 0 0 0 0 0 0 0 0 0"},
        {"1=Digitizer", {"1=Digitizer", "<end>"}, 62, "", "2 2 2 2 14 2 1 0 0 0 0 0 0 0"}};
    for (const auto& [old, replacement, error, message, counts] : cases) {
        const std::string what = old.toStdString() + " -> " + replacement.join(u'|').left(30).toStdString();
        EXPECT_EQ(load(old, replacement), error) << what;
        EXPECT_EQ(messages(), message) << what;
        EXPECT_EQ(captionCounts(lang), counts) << what;
    }
    // Line feeds alone do not end a line: such a file is no language table. One that ends
    // right after "\AddField", without a line break, is whole.
    EXPECT_EQ(loadBytes(tableBytes(smallLanguageTable(), "\n")), 0);
    EXPECT_EQ(messages(), kBanner);
    QByteArray whole = tableBytes(smallLanguageTable());
    whole.chop(2);
    EXPECT_EQ(loadBytes(whole), 0);
    EXPECT_EQ(captionCounts(lang), kAll);
}

TEST_F(LoaderTest, LoadReadsTheFileFromTheFolderTheMachineRootNames)
{
    host::Registry registry(dir.path());
    registry.write(host::HKEY_LOCAL_MACHINE, host::keys::Languages, QString(), dir.path());
    writeFile(dir.filePath("Test.lng"), "Something else\r\n");
    LanguageTableLoader loader(lang, registry, fake);
    EXPECT_FALSE(loader.load("Test.lng"));
    EXPECT_EQ(messages(), "Error loading file|48|This file ( " + dir.path() + "\\Test.lng )\r\ndon't language file");
    EXPECT_EQ(runTimeErrorOf([&] { loader.load("Missing.lng"); }), 53);
}
