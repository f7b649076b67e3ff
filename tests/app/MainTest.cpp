#include <gtest/gtest.h>

#include "../support/FreshProgram.h"
#include "../support/ShownBoxes.h"

#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"

using namespace app;
using host::HKEY_CURRENT_USER;
using host::HKEY_LOCAL_MACHINE;
namespace keys = host::keys;

namespace {

const QString kLanguages = QStringLiteral(SHEETWRIGHT_SOURCE_DIR "/share/languages");

class MainTest : public testing::Test {
protected:
    void set(host::RegistryRoot root, const QString& key, const QString& name, const QString& value)
    {
        host::Registry(program.path("registry")).write(root, key, name, value);
    }
    // Runs Main; returns what the main window found when it was shown, or "" when it was not.
    QString start()
    {
        shown.clear();
        program.fake.whenFormShown("frmTable", [&] {
            shown = QStringLiteral("%1 box(es) before, caption '%2'")
                        .arg(program.fake.boxes().size())
                        .arg(lang::captionOr(gLang().Table().Common(), 1, QString()));
        });
        Main();
        return shown;
    }

    FreshProgram program;
    QString shown;
};

}  // namespace

TEST_F(MainTest, NumbersAreReadWithValAndRoundedHalvesToEven)
{
    const std::vector<std::pair<QString, QString>> separators = {{"59", ";"},  {"9", "\t"},  {"59.6", "<"},
                                                                 {"59.5", "<"}, {"60.5", "<"}, {"abc", QString(QChar(0))},
                                                                 {"", QString(QChar(0))}};
    for (const auto& [stored, separator] : separators) {
        set(HKEY_CURRENT_USER, keys::Pro, keys::TableSeparator, stored);
        start();
        EXPECT_EQ(gTableSeparator, separator) << stored.toStdString();
    }
    const std::vector<std::pair<QString, bool>> logins = {{"1", true},    {"2", true},    {"-1", true}, {"0.6", true},
                                                          {"0.4", false}, {"0.5", false}, {"0", false}, {"x", false}};
    for (const auto& [stored, asks] : logins) {
        set(HKEY_CURRENT_USER, keys::Plugin, keys::UseLogin, stored);
        start();
        EXPECT_EQ(gUseLogin, asks) << stored.toStdString();
    }
}

TEST_F(MainTest, ReadsTheUsersValuesAndHasTheirLanguageTableLoadedWhenTheWindowShows)
{
    set(HKEY_CURRENT_USER, keys::Pro, keys::TypeNum, "2");
    set(HKEY_CURRENT_USER, keys::Plugin, keys::WinX, "9600.5");
    set(HKEY_CURRENT_USER, keys::Plugin, keys::WinY, "7200");
    set(HKEY_CURRENT_USER, keys::Languages, keys::LanguageFile, "English.lng");
    set(HKEY_LOCAL_MACHINE, keys::Languages, QString(), kLanguages);
    // What the options dialog wrote machine-wide is not what Main reads.
    set(HKEY_LOCAL_MACHINE, keys::Pro, keys::TypeNum, "1");
    set(HKEY_LOCAL_MACHINE, keys::Pro, keys::TableSeparator, "44");
    set(HKEY_LOCAL_MACHINE, keys::Languages, keys::LanguageFile, "Russian.lng");
    EXPECT_EQ(start(), "0 box(es) before, caption 'Sheetwright - Access database tables'");
    EXPECT_EQ(gTypeNum, 2);
    EXPECT_FLOAT_EQ(gWinX, 9600.5f);
    EXPECT_FLOAT_EQ(gWinY, 7200.0f);
    EXPECT_EQ(gTableSeparator, QString(QChar(0)));
}

TEST_F(MainTest, AnErrorOfTheLanguageTableIsShownAndTheWindowOpensWithWhatWasRead)
{
    // With no settings at all there is no language table either.
    ASSERT_EQ(start(), "1 box(es) before, caption ''");
    EXPECT_TRUE(shownBoxes(program.fake)[0].startsWith("Sheetwright|16|Run-time error '"));
    EXPECT_TRUE(gTableSeparator == QString(QChar(0)) && gTypeNum == 0 && !gUseLogin && gWinX == 0 && gWinY == 0);
    const QByteArray english = readFile(kLanguages + "/English.lng");
    writeFile(program.path("Broken.lng"), english.left(english.indexOf("/TableOptions")));  // ends early
    set(HKEY_LOCAL_MACHINE, keys::Languages, QString(), program.dir.path());
    set(HKEY_CURRENT_USER, keys::Languages, keys::LanguageFile, "Broken.lng");
    program.fake.clear();
    ASSERT_EQ(start(), "1 box(es) before, caption 'Sheetwright - Access database tables'");
    EXPECT_EQ(shownBoxes(program.fake), QStringList{"Sheetwright|16|Run-time error '62':\n\nInput past end of file"});
    EXPECT_EQ(gLang().Table().TableOptions().Count(), 0);
}

TEST_F(MainTest, ASettingOutOfRangeEndsStartUpBeforeTheWindow)
{
    set(HKEY_CURRENT_USER, keys::Plugin, keys::UseLogin, "40000");  // beyond a 16-bit Integer
    EXPECT_EQ(runTimeErrorOf([&] { start(); }), 6);
    EXPECT_EQ(shown, "");
    set(HKEY_CURRENT_USER, keys::Plugin, keys::UseLogin, "0");
    set(HKEY_CURRENT_USER, keys::Pro, keys::TableSeparator, "300");  // no such character
    EXPECT_EQ(runTimeErrorOf([&] { start(); }), 5);
    EXPECT_EQ(shown, "");
}
