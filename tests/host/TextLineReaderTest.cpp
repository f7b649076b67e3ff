#include <gtest/gtest.h>

#include "../support/RunTimeErrorOf.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include "host/TextLineReader.h"
#include "host/VbError.h"

using host::TextLineReader;

namespace {

std::unique_ptr<TextLineReader> readerOf(const QByteArray& bytes)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(bytes);
    buffer->open(QIODevice::ReadOnly);
    return std::make_unique<TextLineReader>(std::move(buffer));
}

QStringList allLines(TextLineReader& in)
{
    QStringList lines;
    while (!in.atEnd())
        lines << in.readLine();
    return lines;
}

}  // namespace

TEST(TextLineReader, LinesEndAtCrLfOrALoneCrButNotAtALoneLf)
{
    auto in = readerOf("one\r\ntwo\rthree\nstill three\r\n\r\nlast");
    EXPECT_EQ(allLines(*in), (QStringList{"one", "two", "three\nstill three", "", "last"}));
}

TEST(TextLineReader, ReadingPastTheLastLineIsError62)
{
    auto in = readerOf("only\r\n");
    EXPECT_EQ(in->readLine(), "only");
    EXPECT_TRUE(in->atEnd());
    EXPECT_EQ(runTimeErrorOf([&] { in->readLine(); }), 62);
    EXPECT_EQ(runTimeErrorOf([&] { readerOf("")->readLine(); }), 62);
}

TEST(TextLineReader, DecodesWindows1251)
{
    auto in = readerOf("\xcf\xf0\xe8\xe2\xe5\xf2\r\n");
    EXPECT_EQ(in->readLine(), QString::fromUtf8("Привет"));
}

TEST(TextLineReader, CrLfSplitAcrossReadChunksIsOneLineBreak)
{
    // The reader takes 64 KiB at a time: put the CR as the chunk's last byte.
    const QByteArray first(64 * 1024 - 1, 'a');
    auto in = readerOf(first + "\r\nb\r\n");
    EXPECT_EQ(allLines(*in), (QStringList{QString(first), "b"}));
}

TEST(TextLineReader, LinesLongerThanTheLimitAreError7)
{
    const QByteArray longest(TextLineReader::kMaxLineLength, 'x');
    EXPECT_EQ(readerOf(longest + "\r\n")->readLine().size(), TextLineReader::kMaxLineLength);
    EXPECT_EQ(runTimeErrorOf([&] { readerOf(longest + "x\r\n")->readLine(); }), 7);
    EXPECT_EQ(runTimeErrorOf([&] { readerOf(longest + longest)->readLine(); }), 7);
}

TEST(TextLineReader, OpeningFailuresAreTheRunTimesFileErrors)
{
    QTemporaryDir dir;
    EXPECT_EQ(runTimeErrorOf([&] { TextLineReader::openFile(dir.path() + "/missing.lng"); }), 53);
    EXPECT_EQ(runTimeErrorOf([&] { TextLineReader::openFile(dir.path() + "/no/folder.lng"); }), 76);
    EXPECT_EQ(runTimeErrorOf([&] { TextLineReader::openFile(dir.path()); }), 75);
    QFile file(dir.path() + "/table.lng");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("a\r\nb");
    file.close();
    auto in = TextLineReader::openFile(file.fileName());
    EXPECT_EQ(allLines(*in), (QStringList{"a", "b"}));
}
