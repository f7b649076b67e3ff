#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "../support/TestSupport.h"

#include "app/HostSetup.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "table/Database.h"

using namespace app;
using host::HKEY_CURRENT_USER;
using host::HKEY_LOCAL_MACHINE;
namespace keys = host::keys;

namespace {

class HostSetupTest : public testing::Test {
protected:
    SetupDefaults defaults() const
    {
        return {.languageFolder = "/opt/languages", .databaseFolder = dir.filePath("data/Database")};
    }
    QTemporaryDir dir;
    host::Registry registry{dir.filePath("registry")};
};

}  // namespace

TEST_F(HostSetupTest, WritesWhatIsMissingIntoBothRootsAndNeverOverwrites)
{
    registry.write(HKEY_CURRENT_USER, keys::Pro, keys::TableSeparator, "9");
    registry.write(HKEY_LOCAL_MACHINE, "software\\vorbex\\pro", "typenum", "2");
    registry.write(HKEY_CURRENT_USER, keys::Languages, keys::LanguageFile, "Russian.lng");
    registry.write(HKEY_LOCAL_MACHINE, keys::Plugin, keys::WinX, "");  // empty reads as missing
    const QStringList done = HostSetup(registry, defaults()).run();
    const QString database = dir.filePath("data/Database");
    const std::vector<std::tuple<QString, QString, QString, QString>> expected = {
        // key, value name, then what each root holds now: HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE
        {keys::Languages, "", "/opt/languages", "/opt/languages"},
        {keys::Languages, keys::LanguageFile, "Russian.lng", "English.lng"},
        {keys::Pro, keys::TableSeparator, "9", "59"},
        {keys::Pro, keys::TypeNum, "0", "2"},
        {keys::Plugin, keys::UseLogin, "0", "0"},
        {keys::Plugin, keys::WinX, "12000", "12000"},
        {keys::Plugin, keys::WinY, "9000", "9000"},
        {keys::Database, "", database, database}};
    for (const auto& [key, name, user, machine] : expected) {
        EXPECT_EQ(registry.read(HKEY_CURRENT_USER, key, name), user) << name.toStdString();
        EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, key, name), machine) << name.toStdString();
    }
    EXPECT_TRUE(QDir(database).exists());
    EXPECT_EQ(done.size(), 2 * 8 - 3 + 1);  // sixteen values, three kept, one folder made
    EXPECT_TRUE(HostSetup(registry, defaults()).run().isEmpty());
}

TEST_F(HostSetupTest, MakesTheTemplateOnceInTheFolderTheRegistryNames)
{
    const QString own = dir.filePath("my databases");
    registry.write(HKEY_LOCAL_MACHINE, keys::Database, QString(), own);
    QStringList made;
    const auto maker = [&](const QString& path) {
        made << path;
        writeFile(path, "template");
    };
    HostSetup(registry, defaults(), maker).run();
    HostSetup(registry, defaults(), maker).run();
    EXPECT_EQ(made, QStringList{own + "/empty97.mdb"});
    EXPECT_FALSE(QDir(dir.filePath("data/Database")).exists());
    // A folder that cannot be made (below a file) is a run-time error.
    host::Registry other(dir.filePath("other"));
    SetupDefaults blocked = defaults();
    blocked.databaseFolder = own + "/empty97.mdb/Database";
    EXPECT_EQ(runTimeErrorOf([&] { HostSetup(other, blocked).run(); }), 75);
}

TEST(SetupProgram, WritesTheDefaultsAndAnEmptyAccess97TemplateWhereTheEnvironmentPoints)
{
    QTemporaryDir dir;
    QProcess setup;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("SHEETWRIGHT_REGISTRY", dir.filePath("registry"));
    environment.insert("XDG_DATA_HOME", dir.filePath("data"));
    setup.setProcessEnvironment(environment);
    setup.start(QStringLiteral(SHEETWRIGHT_SETUP_PROGRAM), {});
    ASSERT_TRUE(setup.waitForFinished(30000));
    EXPECT_EQ(setup.exitCode(), 0) << setup.readAllStandardError().toStdString();
    host::Registry registry(dir.filePath("registry"));
    EXPECT_TRUE(QFile::exists(registry.read(HKEY_LOCAL_MACHINE, keys::Languages, QString()) + "/English.lng"));
    const QString folder = dir.filePath("data/Vorbex/Database");
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, keys::Database, QString()), folder);
    // The template, in the program's code page, takes what a new database goes through first.
    const std::string path = (folder + "/empty97.mdb").toStdString();
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.3.51;Data Source=" + path);
    EXPECT_EQ(cn.database()->version(), jet::Version::Jet3);
    EXPECT_EQ(cn.database()->header().codePage(), jet::programCodePage());
    EXPECT_TRUE(cn.database()->catalog().userTables().empty());
    cn.Execute("CREATE TABLE Table1 (__custom INTEGER);");
    cn.Close();
    EXPECT_TRUE(jet::check(path).clean());
}
