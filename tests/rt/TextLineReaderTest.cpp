// Sequential text input and the ANSI code page it decodes with.

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "../support/TestSupport.h"

#include "rt/AnsiCodePage.h"

using rt::AnsiCodePage;
using rt::TextLineReader;

namespace {

QStringList allLines(TextLineReader& in)
{
    QStringList lines;
    while (!in.atEnd())
        lines << in.readLine();
    return lines;
}

}  // namespace

TEST(AnsiCodePage, EveryCharacterIsOneByteAndBack)
{
    const AnsiCodePage cp1251(QStringLiteral("windows-1251"));
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        if (b != 0x98)  // the one byte Windows-1251 leaves undefined
            all += static_cast<char>(b);
    EXPECT_EQ(cp1251.encode(cp1251.decode(all)), all);
    EXPECT_EQ(cp1251.encode(QString::fromUtf8("a中ü")), "a??");  // what it lacks becomes "?"
    EXPECT_EQ(AnsiCodePage(QStringLiteral("windows-1252")).decode("\xfc"), QString::fromUtf8("ü"));
    // Unknown names and encodings that are no single-byte code page give Windows-1251.
    EXPECT_EQ(AnsiCodePage(QStringLiteral("no-such-code-page")).decode("\xc0"), QString::fromUtf8("А"));
    EXPECT_EQ(AnsiCodePage(QStringLiteral("UTF-16LE")).decode("\xc0\x04"), QString::fromUtf8("А\x04"));
}

TEST(TextLineReader, LinesEndAtCrLfOrALoneCrAndReadingPastTheLastIsError62)
{
    auto in = readerOf("one\r\ntwo\rthree\nstill three\r\n\r\n\xcf\xf0\xe8\xe2\xe5\xf2");
    EXPECT_EQ(allLines(*in), QStringList({"one", "two", "three\nstill three", "", QString::fromUtf8("Привет")}));
    EXPECT_EQ(runTimeErrorOf([&] { in->readLine(); }), 62);
    EXPECT_EQ(runTimeErrorOf([] { readerOf("")->readLine(); }), 62);
    // The reader takes 64 KiB at a time: a CR that ends one chunk pairs with the LF that
    // begins the next.
    const QByteArray first(64 * 1024 - 1, 'a');
    EXPECT_EQ(allLines(*readerOf(first + "\r\nb\r\n")), QStringList({QString(first), "b"}));
}

TEST(TextLineReader, OverlongLinesAndFilesThatCannotBeReadAreRunTimeErrors)
{
    const QByteArray longest(TextLineReader::kMaxLineLength, 'x');
    EXPECT_EQ(readerOf(longest + "\r\n")->readLine().size(), TextLineReader::kMaxLineLength);
    EXPECT_EQ(runTimeErrorOf([&] { readerOf(longest + "x\r\n")->readLine(); }), 7);
    EXPECT_EQ(runTimeErrorOf([&] { readerOf(longest + longest)->readLine(); }), 7);
    QTemporaryDir dir;
    EXPECT_EQ(runTimeErrorOf([&] { TextLineReader::openFile(dir.path() + "/missing.lng"); }), 53);
    EXPECT_EQ(runTimeErrorOf([&] { TextLineReader::openFile(dir.path() + "/no/folder.lng"); }), 76);
    EXPECT_EQ(runTimeErrorOf([&] { TextLineReader::openFile(dir.path()); }), 75);
    writeFile(dir.path() + "/table.lng", "a\r\nb");
    EXPECT_EQ(allLines(*TextLineReader::openFile(dir.path() + "/table.lng")), QStringList({"a", "b"}));
}
