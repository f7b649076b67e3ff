#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "host/Registry.h"
#include "host/VbError.h"

using namespace host;

namespace {

const QString kKey = QStringLiteral("Software\\Vorbex\\Pro");

QByteArray fileBytes(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

int32_t writeError(Registry& registry)
{
    try {
        registry.write(HKEY_LOCAL_MACHINE, kKey, QStringLiteral("TypeNum"), QStringLiteral("1"));
    } catch (const jet::RuntimeError& e) {
        return e.number();
    }
    return 0;
}

}  // namespace

TEST(Registry, MissingFolderReadsAsTheDefault)
{
    QTemporaryDir dir;
    Registry registry(dir.path() + QStringLiteral("/not/there"));
    EXPECT_EQ(registry.read(HKEY_CURRENT_USER, kKey, QStringLiteral("TypeNum")), QString());
    EXPECT_EQ(registry.read(HKEY_CURRENT_USER, kKey, QStringLiteral("TypeNum"), QStringLiteral("d")), "d");
}

TEST(Registry, WrittenValuesPersistPerRootAndCaseInsensitively)
{
    QTemporaryDir dir;
    {
        Registry registry(dir.path() + QStringLiteral("/Vorbex"));  // the folder is made on first write
        registry.write(HKEY_CURRENT_USER, kKey, QStringLiteral("TableSepparator"), QStringLiteral("59"));
        registry.write(HKEY_LOCAL_MACHINE, kKey, QStringLiteral("TableSepparator"), QStringLiteral("9"));
        registry.write(HKEY_LOCAL_MACHINE, QStringLiteral("SOFTWARE\\Vorbex\\Settings\\Database"), QString(),
                       QString::fromUtf8("/home/пользователь/db"));
    }
    Registry again(dir.path() + QStringLiteral("/Vorbex"));
    EXPECT_EQ(again.read(HKEY_CURRENT_USER, QStringLiteral("software\\VORBEX\\pro"), QStringLiteral("tablesepparator")), "59");
    EXPECT_EQ(again.read(HKEY_LOCAL_MACHINE, kKey, QStringLiteral("TableSepparator")), "9");
    EXPECT_EQ(again.read(HKEY_LOCAL_MACHINE, QStringLiteral("Software\\Vorbex\\Settings\\Database"), QString()),
              QString::fromUtf8("/home/пользователь/db"));
    EXPECT_EQ(again.read(HKEY_CURRENT_USER, QStringLiteral("SOFTWARE\\Vorbex\\Settings\\Database"), QString()), QString());
    EXPECT_TRUE(QFile::exists(again.filePath(HKEY_CURRENT_USER)));
    EXPECT_TRUE(again.filePath(HKEY_LOCAL_MACHINE).endsWith("/HKEY_LOCAL_MACHINE.ini"));
    // The atomic write leaves no temporary files behind.
    EXPECT_EQ(QDir(again.folder()).entryList(QDir::Files).size(), 2);
}

TEST(Registry, SeesChangesMadeByAnotherProcess)
{
    QTemporaryDir dir;
    Registry registry(dir.path());
    EXPECT_EQ(registry.read(HKEY_CURRENT_USER, kKey, QStringLiteral("TypeNum")), QString());
    writeFile(registry.filePath(HKEY_CURRENT_USER), "[Software\\Vorbex\\Pro]\nTypeNum=2\n");
    EXPECT_EQ(registry.read(HKEY_CURRENT_USER, kKey, QStringLiteral("TypeNum")), "2");
    Registry other(dir.path());
    other.write(HKEY_CURRENT_USER, kKey, QStringLiteral("TypeNum"), QStringLiteral("1"));
    EXPECT_EQ(registry.read(HKEY_CURRENT_USER, kKey, QStringLiteral("TypeNum")), "1");
    // ...and writes on top of them rather than over them.
    other.write(HKEY_CURRENT_USER, kKey, QStringLiteral("Other"), QStringLiteral("x"));
    registry.write(HKEY_CURRENT_USER, kKey, QStringLiteral("Mine"), QStringLiteral("y"));
    EXPECT_EQ(Registry(dir.path()).read(HKEY_CURRENT_USER, kKey, QStringLiteral("Other")), "x");
}

TEST(Registry, AnUnreadableFileReadsEmptyAndIsNeverOverwritten)
{
    QTemporaryDir dir;
    Registry registry(dir.path());
    // A folder where the file should be cannot be read by anyone, root included.
    ASSERT_TRUE(QDir().mkpath(registry.filePath(HKEY_LOCAL_MACHINE)));
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, kKey, QStringLiteral("TypeNum")), QString());
    EXPECT_EQ(writeError(registry), 75);
    EXPECT_TRUE(QFileInfo(registry.filePath(HKEY_LOCAL_MACHINE)).isDir());
}

TEST(Registry, AnOversizedFileIsLeftAlone)
{
    QTemporaryDir dir;
    Registry registry(dir.path());
    QByteArray huge = "[Software\\Vorbex\\Pro]\nTypeNum=2\n";
    huge += QByteArray(IniDocument::kMaxFileSize, '#');
    writeFile(registry.filePath(HKEY_LOCAL_MACHINE), huge);
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, kKey, QStringLiteral("TypeNum")), QString());
    EXPECT_EQ(writeError(registry), 75);
    EXPECT_EQ(QFileInfo(registry.filePath(HKEY_LOCAL_MACHINE)).size(), huge.size());
}

TEST(Registry, AFolderThatCannotBeMadeIsRunTimeError75)
{
    QTemporaryDir dir;
    writeFile(dir.path() + QStringLiteral("/blocker"), "a file, not a folder");
    Registry registry(dir.path() + QStringLiteral("/blocker/Vorbex"));
    EXPECT_EQ(writeError(registry), 75);
}

TEST(Registry, UnchangedValuesAreNotRewritten)
{
    QTemporaryDir dir;
    Registry registry(dir.path());
    writeFile(registry.filePath(HKEY_LOCAL_MACHINE), "[Software\\Vorbex\\Pro]\n  TypeNum = 1 \n");
    registry.write(HKEY_LOCAL_MACHINE, kKey, QStringLiteral("typenum"), QStringLiteral("1"));
    EXPECT_EQ(fileBytes(registry.filePath(HKEY_LOCAL_MACHINE)), "[Software\\Vorbex\\Pro]\n  TypeNum = 1 \n");
}

TEST(Registry, DefaultFolderFollowsTheEnvironment)
{
    const QByteArray savedRegistry = qgetenv("SHEETWRIGHT_REGISTRY");
    const QByteArray savedConfig = qgetenv("XDG_CONFIG_HOME");
    qputenv("SHEETWRIGHT_REGISTRY", "/tmp/chosen");
    EXPECT_EQ(Registry::defaultFolder(), "/tmp/chosen");
    qunsetenv("SHEETWRIGHT_REGISTRY");
    qputenv("XDG_CONFIG_HOME", "/tmp/config");
    EXPECT_EQ(Registry::defaultFolder(), "/tmp/config/Vorbex");
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(Registry::defaultFolder(), QDir::homePath() + "/.config/Vorbex");
    qputenv("SHEETWRIGHT_REGISTRY", savedRegistry);
    qputenv("XDG_CONFIG_HOME", savedConfig);
    if (savedRegistry.isEmpty())
        qunsetenv("SHEETWRIGHT_REGISTRY");
    if (savedConfig.isEmpty())
        qunsetenv("XDG_CONFIG_HOME");
}
