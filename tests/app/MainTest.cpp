#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "app/ModMain.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/RuntimeError.h"
#include "lang/LangApp.h"
#include "ui/ScriptedUiServices.h"

using namespace app;
using host::HKEY_CURRENT_USER;
using host::HKEY_LOCAL_MACHINE;
namespace keys = host::keys;

namespace {

class MainTest : public testing::Test {
protected:
    void SetUp() override
    {
        saved_ = qgetenv("SHEETWRIGHT_REGISTRY");
        qputenv("SHEETWRIGHT_REGISTRY", QFile::encodeName(dir.path()));
        resetModuleGlobals();
    }
    void TearDown() override
    {
        resetModuleGlobals();
        if (saved_.isEmpty())
            qunsetenv("SHEETWRIGHT_REGISTRY");
        else
            qputenv("SHEETWRIGHT_REGISTRY", saved_);
    }
    void setUser(const QString& key, const QString& name, const QString& value)
    {
        host::Registry(dir.path()).write(HKEY_CURRENT_USER, key, name, value);
    }
    // Runs Main; returns whether the main window was shown.
    bool start()
    {
        bool shown = false;
        Main([&] { shown = true; });
        return shown;
    }
    void useShippedLanguageTable(const QString& file)
    {
        host::Registry(dir.path()).write(HKEY_LOCAL_MACHINE, keys::Languages, QString(),
                                         QStringLiteral(SHEETWRIGHT_SOURCE_DIR "/share/languages"));
        setUser(keys::Languages, keys::LanguageFile, file);
    }

    QTemporaryDir dir;
    ui::ScriptedUiServices fake;
    ui::UiServicesScope use{fake};
    QByteArray saved_;
};

}  // namespace

TEST_F(MainTest, WithNoSettingsAtAllTheWindowStillOpens)
{
    EXPECT_TRUE(start());
    EXPECT_EQ(gTableSeparator, QString(QChar(0)));
    EXPECT_EQ(gTypeNum, 0);
    EXPECT_FALSE(gUseLogin);
    EXPECT_EQ(gWinX, 0);
    EXPECT_EQ(gWinY, 0);
    // The language table could not be opened: the run-time error box, then the window.
    ASSERT_EQ(fake.boxes().size(), 1u);
    EXPECT_TRUE(fake.boxes()[0].prompt.startsWith("Run-time error '")) << fake.boxes()[0].prompt.toStdString();
    EXPECT_EQ(fake.boxes()[0].style, ui::vbCritical);
    EXPECT_EQ(gLang().Table().Common().Count(), 0);
}

TEST_F(MainTest, SeparatorIsTheCharacterOfTheRoundedCode)
{
    const std::vector<std::pair<QString, QString>> cases = {
        {"59", ";"}, {"9", "\t"}, {"59.6", "<"}, {"59.5", "<"}, {"60.5", "<"}, {"abc", QString(QChar(0))}, {"", QString(QChar(0))}};
    for (const auto& [stored, expected] : cases) {
        setUser(keys::Pro, keys::TableSeparator, stored);
        start();
        EXPECT_EQ(gTableSeparator, expected) << stored.toStdString();
    }
}

TEST_F(MainTest, UseLoginIsTrueForAnyNonZeroRoundedValue)
{
    const std::vector<std::pair<QString, bool>> cases = {
        {"1", true}, {"2", true}, {"-1", true}, {"0.6", true}, {"0.4", false}, {"0.5", false}, {"0", false}, {"x", false}};
    for (const auto& [stored, expected] : cases) {
        setUser(keys::Plugin, keys::UseLogin, stored);
        start();
        EXPECT_EQ(gUseLogin, expected) << stored.toStdString();
    }
}

TEST_F(MainTest, ReadsTheUsersValuesNotTheMachineWideOnes)
{
    setUser(keys::Pro, keys::TypeNum, "2");
    setUser(keys::Plugin, keys::WinX, "9600.5");
    setUser(keys::Plugin, keys::WinY, "7200");
    host::Registry machine(dir.path());
    machine.write(HKEY_LOCAL_MACHINE, keys::Pro, keys::TypeNum, "1");
    machine.write(HKEY_LOCAL_MACHINE, keys::Pro, keys::TableSeparator, "44");
    start();
    EXPECT_EQ(gTypeNum, 2);
    EXPECT_FLOAT_EQ(gWinX, 9600.5f);
    EXPECT_FLOAT_EQ(gWinY, 7200.0f);
    EXPECT_EQ(gTableSeparator, QString(QChar(0)));
}

TEST_F(MainTest, AValueOutOfRangeEndsStartUpBeforeTheWindow)
{
    setUser(keys::Plugin, keys::UseLogin, "40000");  // beyond a 16-bit Integer
    bool shown = false;
    try {
        Main([&] { shown = true; });
        ADD_FAILURE() << "expected overflow";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(e.number(), 6);
    }
    EXPECT_FALSE(shown);
    setUser(keys::Plugin, keys::UseLogin, "0");
    setUser(keys::Pro, keys::TableSeparator, "300");  // no such character
    try {
        start();
        ADD_FAILURE() << "expected invalid procedure call";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(e.number(), 5);
    }
}

TEST_F(MainTest, LoadsTheChosenLanguageTable)
{
    useShippedLanguageTable("English.lng");
    EXPECT_TRUE(start());
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(gLang().Table().Common().Item(1), "Sheetwright - Access database tables");
}

TEST_F(MainTest, ABrokenLanguageTableIsReportedAndTheWindowOpensWithWhatWasRead)
{
    const QString folder = dir.path() + "/languages";
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile source(QStringLiteral(SHEETWRIGHT_SOURCE_DIR "/share/languages/English.lng"));
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QByteArray whole = source.readAll();
    QFile broken(folder + "/Broken.lng");
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write(whole.left(whole.indexOf("/TableOptions")));  // ends early
    broken.close();
    host::Registry(dir.path()).write(HKEY_LOCAL_MACHINE, keys::Languages, QString(), folder);
    setUser(keys::Languages, keys::LanguageFile, "Broken.lng");

    EXPECT_TRUE(start());
    ASSERT_EQ(fake.boxes().size(), 1u);
    EXPECT_EQ(fake.boxes()[0].prompt, "Run-time error '62':\n\nInput past end of file");
    EXPECT_EQ(gLang().Table().Common().Item(1), "Sheetwright - Access database tables");
    EXPECT_EQ(gLang().Table().TableOptions().Count(), 0);
}

TEST_F(MainTest, GlobalsAreCreatedOnFirstUseAndReset)
{
    lang::LangApp& first = gLang();
    EXPECT_EQ(&first, &gLang());
    EXPECT_EQ(gRegistry().folder(), dir.path());
    gLastResult = "42";
    gLoginAccepted = true;
    resetModuleGlobals();
    EXPECT_EQ(gLastResult, QString());
    EXPECT_FALSE(gLoginAccepted);
    EXPECT_EQ(gLang().Table().Common().Count(), 0);
}
