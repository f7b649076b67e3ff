// The registry object over its two settings files, IniDocument's format included.

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "../support/TestSupport.h"

#include "host/Registry.h"

using namespace host;

namespace {

const QString kPro = QStringLiteral("Software\\Vorbex\\Pro");
const QString kDatabase = QStringLiteral("SOFTWARE\\Vorbex\\Settings\\Database");

int32_t writeError(Registry& registry)
{
    return runTimeErrorOf([&] { registry.write(HKEY_LOCAL_MACHINE, kPro, "TypeNum", "1"); });
}

}  // namespace

TEST(Registry, ValuesPersistPerRootUnderNamesThatIgnoreCase)
{
    QTemporaryDir dir;
    Registry first(dir.path() + "/Vorbex");  // the folder is made by the first write
    EXPECT_EQ(first.read(HKEY_CURRENT_USER, kPro, "TypeNum") + first.read(HKEY_CURRENT_USER, kPro, "TypeNum", "d"), "d");
    first.write(HKEY_CURRENT_USER, kPro, "TableSepparator", "59");
    first.write(HKEY_LOCAL_MACHINE, "SOFTWARE\\VORBEX\\PRO", "tablesepparator", "9");
    first.write(HKEY_LOCAL_MACHINE, kPro, "TABLESEPPARATOR", "44");
    first.write(HKEY_LOCAL_MACHINE, kDatabase, "", "/db");  // the key's default value
    first.write(HKEY_LOCAL_MACHINE, kDatabase, "@", "at");
    Registry again(dir.path() + "/Vorbex");
    EXPECT_EQ(QStringList({again.read(HKEY_CURRENT_USER, "software\\vorbex\\pro", "TABLESEPPARATOR"),
                           again.read(HKEY_LOCAL_MACHINE, kPro, "TableSepparator"),
                           again.read(HKEY_LOCAL_MACHINE, "Software\\Vorbex\\Settings\\Database", ""),
                           again.read(HKEY_LOCAL_MACHINE, kDatabase, "@"), again.read(HKEY_CURRENT_USER, kDatabase, "")}),
              QStringList({"59", "44", "/db", "at", ""}));
    // The first spelling stays; nothing is left beside the two files.
    EXPECT_EQ(readFile(again.filePath(HKEY_LOCAL_MACHINE)),
              "[SOFTWARE\\VORBEX\\PRO]\ntablesepparator=44\n\n[SOFTWARE\\Vorbex\\Settings\\Database]\n@=/db\n%40=at\n");
    EXPECT_EQ(QDir(again.folder()).entryList(QDir::Files), QStringList({"HKEY_CURRENT_USER.ini", "HKEY_LOCAL_MACHINE.ini"}));
}

TEST(Registry, AnyTextRoundTripsAndLinesNotChangedAreWrittenBackAsTheyWere)
{
    QTemporaryDir dir;
    Registry registry(dir.path());
    const QStringList texts = {"C:\\Program Files", "a=b=c", "line1\nline2\r\n", "  padded  ", "%41", "[section]",
                               "; no comment", "# nor this", QString::fromUtf8("Кириллица 中文"), "@", "tab\there",
                               QString(QChar(0)) + "nul", "]"};
    for (const QString& text : texts)
        registry.write(HKEY_CURRENT_USER, text, text, text);
    for (const QString& text : texts)
        EXPECT_EQ(Registry(dir.path()).read(HKEY_CURRENT_USER, text, text), text) << text.toStdString();

    const QString file = registry.filePath(HKEY_LOCAL_MACHINE);
    const QByteArray byHand = "; by hand\r\nstray\n[Software\\Vorbex\\Pro]\n  TypeNum   =  2  \nnot a value\n# c\n\n"
                              "[Other]\nx=%zz\n[software\\vorbex\\PRO]\nWinX=1\n";
    writeFile(file, byHand);
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, kPro, "TypeNum") + registry.read(HKEY_LOCAL_MACHINE, "Other", "x") +
                  registry.read(HKEY_LOCAL_MACHINE, kPro, "WinX"),
              "2%zz1");  // a repeated section goes on the first
    registry.write(HKEY_LOCAL_MACHINE, kPro, "typenum", "2");  // unchanged: not written
    EXPECT_EQ(readFile(file), byHand);
    registry.write(HKEY_LOCAL_MACHINE, kPro, "TypeNum", "1");
    EXPECT_EQ(readFile(file), "; by hand\r\nstray\n[Software\\Vorbex\\Pro]\nTypeNum=1\nnot a value\n# c\n\nWinX=1\n"
                              "[Other]\nx=%zz\n");
    // What another process writes is seen, and written on top of rather than over.
    writeFile(file, "[Software\\Vorbex\\Pro]\nTypeNum=3\n");
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, kPro, "TypeNum"), "3");
    Registry(dir.path()).write(HKEY_LOCAL_MACHINE, kPro, "Other", "x");
    registry.write(HKEY_LOCAL_MACHINE, kPro, "Mine", "y");
    EXPECT_EQ(Registry(dir.path()).read(HKEY_LOCAL_MACHINE, kPro, "Other"), "x");
}

TEST(Registry, AFileThatCannotBeReadReadsEmptyAndIsNeverWrittenOver)
{
    QTemporaryDir dir;
    Registry registry(dir.path());
    const QString file = registry.filePath(HKEY_LOCAL_MACHINE);
    ASSERT_TRUE(QDir().mkpath(file));  // a folder cannot be read by anyone, root included
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, kPro, "TypeNum"), "");
    EXPECT_EQ(writeError(registry), 75);
    ASSERT_TRUE(QDir().rmdir(file));
    const QByteArray huge = "[Software\\Vorbex\\Pro]\nTypeNum=2\n" + QByteArray(IniDocument::kMaxFileSize, '#');
    writeFile(file, huge);
    EXPECT_EQ(registry.read(HKEY_LOCAL_MACHINE, kPro, "TypeNum"), "");
    EXPECT_EQ(writeError(registry), 75);
    EXPECT_EQ(QFileInfo(file).size(), huge.size());
    Registry blocked(file + "/Vorbex");  // nor can a folder be made below a file
    EXPECT_EQ(writeError(blocked), 75);
}
