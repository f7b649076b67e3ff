#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "app/HostSetup.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Database.h"
#include "jet/NewDatabase.h"
#include "jet/RuntimeError.h"

using namespace app;
using host::HKEY_CURRENT_USER;
using host::HKEY_LOCAL_MACHINE;
namespace keys = host::keys;

namespace {

class HostSetupTest : public testing::Test {
protected:
    SetupDefaults defaults() const
    {
        SetupDefaults d;
        d.languageFolder = "/opt/languages";
        d.databaseFolder = dir.path() + "/data/Database";
        return d;
    }
    QTemporaryDir dir;
    host::Registry registry{dir.path() + "/registry"};
};

}  // namespace

TEST_F(HostSetupTest, WritesEveryDefaultIntoBothRoots)
{
    HostSetup(registry, defaults()).run();
    for (const auto root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        EXPECT_EQ(registry.read(root, keys::Languages, QString()), "/opt/languages");
        EXPECT_EQ(registry.read(root, keys::Languages, keys::LanguageFile), "English.lng");
        EXPECT_EQ(registry.read(root, keys::Pro, keys::TableSeparator), "59");
        EXPECT_EQ(registry.read(root, keys::Pro, keys::TypeNum), "0");
        EXPECT_EQ(registry.read(root, keys::Plugin, keys::UseLogin), "0");
        EXPECT_EQ(registry.read(root, keys::Plugin, keys::WinX), "12000");
        EXPECT_EQ(registry.read(root, keys::Plugin, keys::WinY), "9000");
        EXPECT_EQ(registry.read(root, keys::Database, QString()), dir.path() + "/data/Database");
    }
    EXPECT_TRUE(QDir(dir.path() + "/data/Database").exists());
}

TEST_F(HostSetupTest, NeverOverwritesWhatAUserSet)
{
    registry.write(HKEY_CURRENT_USER, keys::Pro, keys::TableSeparator, "9");
    registry.write(HKEY_LOCAL_MACHINE, QStringLiteral("software\\vorbex\\pro"), QStringLiteral("typenum"), "2");
    registry.write(HKEY_CURRENT_USER, keys::Languages, keys::LanguageFile, "Russian.lng");
    registry.write(HKEY_LOCAL_MACHINE, keys::Plugin, keys::WinX, "");  // empty reads as missing
    const QStringList done = HostSetup(registry, defaults()).run();
    EXPECT_EQ(registry.read(HKEY_CURRENT_USER, keys::Pro, keys::TableSeparator), "9");
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, keys::Pro, keys::TypeNum), "2");
    EXPECT_EQ(registry.read(HKEY_CURRENT_USER, keys::Languages, keys::LanguageFile), "Russian.lng");
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, keys::Languages, keys::LanguageFile), "English.lng");
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, keys::Plugin, keys::WinX), "12000");
    EXPECT_EQ(done.size(), 2 * 8 - 3 + 1);  // sixteen values, three kept, one folder made
    // A second run finds nothing to do.
    EXPECT_TRUE(HostSetup(registry, defaults()).run().isEmpty());
}

TEST_F(HostSetupTest, UsesTheDatabaseFolderTheRegistryNames)
{
    const QString own = dir.path() + "/my databases";
    registry.write(HKEY_LOCAL_MACHINE, keys::Database, QString(), own);
    QStringList made;
    HostSetup(registry, defaults(), [&](const QString& path) { made << path; }).run();
    EXPECT_TRUE(QDir(own).exists());
    EXPECT_FALSE(QDir(dir.path() + "/data/Database").exists());
    EXPECT_EQ(made, QStringList{own + "/empty97.mdb"});
}

TEST_F(HostSetupTest, MakesTheTemplateOnlyWhenItIsMissing)
{
    int calls = 0;
    const auto maker = [&](const QString& path) {
        ++calls;
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    };
    HostSetup(registry, defaults(), maker).run();
    HostSetup(registry, defaults(), maker).run();
    EXPECT_EQ(calls, 1);
}

TEST_F(HostSetupTest, AFolderThatCannotBeMadeIsARunTimeError)
{
    QFile blocker(dir.path() + "/blocker");
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    SetupDefaults d = defaults();
    d.databaseFolder = dir.path() + "/blocker/Database";
    try {
        HostSetup(registry, d).run();
        ADD_FAILURE() << "expected error 75";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(e.number(), 75);
    }
}

TEST(SetupProgram, WritesTheDefaultsWhereTheEnvironmentPoints)
{
    QTemporaryDir dir;
    QProcess setup;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("SHEETWRIGHT_REGISTRY", dir.path() + "/registry");
    env.insert("XDG_DATA_HOME", dir.path() + "/data");
    setup.setProcessEnvironment(env);
    setup.start(QStringLiteral(SHEETWRIGHT_SETUP_PROGRAM), {});
    ASSERT_TRUE(setup.waitForFinished(30000));
    EXPECT_EQ(setup.exitCode(), 0) << setup.readAllStandardError().toStdString();
    host::Registry registry(dir.path() + "/registry");
    const QString languages = registry.read(HKEY_LOCAL_MACHINE, keys::Languages, QString());
    EXPECT_TRUE(QFile::exists(languages + "/English.lng")) << languages.toStdString();
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, keys::Database, QString()), dir.path() + "/data/Vorbex/Database");
    EXPECT_TRUE(QDir(dir.path() + "/data/Vorbex/Database").exists());
    // The template an empty database is copied from, made by the engine.
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.3.51;Data Source=" + (dir.path() + "/data/Vorbex/Database/empty97.mdb").toStdString());
    EXPECT_EQ(jet::Version::Jet3, cn.database()->version());
}

TEST_F(HostSetupTest, TheTemplateIsAnEmptyAccess97DatabaseInTheProgramsCodePage)
{
    HostSetup(registry, defaults(), makeTemplateDatabase).run();
    const std::string path = (dir.path() + "/data/Database/empty97.mdb").toStdString();
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.3.51;Data Source=" + path);
    EXPECT_EQ(jet::programCodePage(), cn.database()->header().codePage());
    EXPECT_TRUE(cn.database()->catalog().userTables().empty());
    // What a new database of the program then goes through first.
    cn.Execute("CREATE TABLE Table1 (__custom INTEGER);");
    EXPECT_NE(nullptr, cn.database()->catalog().findTable("Table1"));
    cn.Close();
    EXPECT_TRUE(jet::check(path).clean());
}
