// The program's numbered files: what is written arrives in the ANSI code page with CR LF,
// numbers are handed out and refused as the run time does, and closing all really closes
// every file.

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "../support/TestSupport.h"

#include "rt/TextFiles.h"

using rt::TextFiles;

namespace {

class TextFilesTest : public testing::Test {
protected:
    QString path(const QString& name) const { return dir.filePath(name); }

    QTemporaryDir dir;
    TextFiles files;
};

}  // namespace

TEST_F(TextFilesTest, LinesWrittenAreReadBackAndAppendKeepsWhatIsThere)
{
    const int16_t out = files.FreeFile();
    files.Open(path("t.txt"), TextFiles::Mode::Output, out);
    files.PrintLine(out, "a;b");
    files.PrintLine(out, QString::fromUtf8("Привет"));
    files.Close(out);
    files.Open(path("t.txt"), TextFiles::Mode::Append, out);
    files.PrintLine(out, "");
    files.Close(out);
    EXPECT_EQ(readFile(path("t.txt")), QByteArray("a;b\r\n\xcf\xf0\xe8\xe2\xe5\xf2\r\n\r\n"));

    files.Open(path("t.txt"), TextFiles::Mode::Input, 7);
    QStringList lines;
    while (!files.Eof(7))
        lines << files.LineInput(7);
    EXPECT_EQ(lines, QStringList({"a;b", QString::fromUtf8("Привет"), ""}));
    EXPECT_EQ(runTimeErrorOf([&] { files.LineInput(7); }), 62);
    // Output truncates.
    files.Open(path("t.txt"), TextFiles::Mode::Output, 8);
    files.Close(8);
    EXPECT_EQ(readFile(path("t.txt")), QByteArray());
}

TEST_F(TextFilesTest, NumbersAndModesAreCheckedAsTheRunTimeChecksThem)
{
    writeFile(path("in.txt"), "x\r\n");
    files.Open(path("in.txt"), TextFiles::Mode::Input, 1);
    files.Open(path("out.txt"), TextFiles::Mode::Output, 3);
    EXPECT_EQ(files.FreeFile(), 2);
    const std::vector<std::pair<const char*, std::function<void()>>> refused = {
        {"55", [&] { files.Open(path("in.txt"), TextFiles::Mode::Input, 1); }},
        {"52", [&] { files.Open(path("in.txt"), TextFiles::Mode::Input, 0); }},
        {"52", [&] { files.Open(path("in.txt"), TextFiles::Mode::Input, 512); }},
        {"52", [&] { files.LineInput(2); }},
        {"54", [&] { files.PrintLine(1, "no"); }},
        {"54", [&] { files.LineInput(3); }},
        {"53", [&] { files.Open(path("missing.txt"), TextFiles::Mode::Input, 4); }},
        {"76", [&] { files.Open(path("no/such/folder.txt"), TextFiles::Mode::Output, 4); }},
        {"75", [&] { files.Open(dir.path(), TextFiles::Mode::Output, 4); }},
    };
    for (const auto& [number, code] : refused)
        EXPECT_EQ(QString::number(runTimeErrorOf(code)), number);
    EXPECT_FALSE(files.isOpen(4));
    files.Close(2);  // not open: nothing happens
    EXPECT_TRUE(files.isOpen(1) && files.isOpen(3));
}

TEST_F(TextFilesTest, CloseAllClosesEveryFileAndReportsAFailedWriteAfterClosingTheRest)
{
    files.Open(path("a.txt"), TextFiles::Mode::Output, files.FreeFile());
    files.PrintLine(1, "kept");
    files.Open("/dev/full", TextFiles::Mode::Output, files.FreeFile());
    files.PrintLine(2, "lost");  // buffered: the full disk shows when it is flushed
    files.Open(path("b.txt"), TextFiles::Mode::Append, files.FreeFile());
    EXPECT_EQ(runTimeErrorOf([&] { files.CloseAll(); }), 61);
    EXPECT_FALSE(files.isOpen(1) || files.isOpen(2) || files.isOpen(3));
    EXPECT_EQ(files.FreeFile(), 1);
    EXPECT_EQ(readFile(path("a.txt")), "kept\r\n");
    EXPECT_EQ(&TextFiles::program(), &TextFiles::program());
}
