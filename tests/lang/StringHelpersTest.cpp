#include <gtest/gtest.h>

#include "../support/RunTimeErrorOf.h"

#include <QStringList>

#include "host/HostDiagnostics.h"
#include "host/VbError.h"
#include "lang/StringHelpers.h"

using namespace lang;

namespace {

QString token(const QString& text, int16_t start, const QString& delimiter, bool drop, int16_t count = 0,
              bool dropTrailing = false, int16_t* after = nullptr)
{
    int16_t position = start;
    const QString piece = GetToken(text, position, delimiter, drop, count, dropTrailing);
    if (after)
        *after = position;
    return piece;
}

}  // namespace

TEST(GetToken, ReturnsThePieceUpToTheDelimiterAndMovesThePosition)
{
    int16_t after = 0;
    EXPECT_EQ(token("Version=1", 1, "=", false, 0, false, &after), "Version=");
    EXPECT_EQ(after, 9);
    EXPECT_EQ(token("2=x=y", 1, "=", true, 0, false, &after), "2");
    EXPECT_EQ(after, 3);
    EXPECT_FALSE(gTokenAtEnd);
    EXPECT_EQ(token("2=x=y", 3, "=", true, 0, false, &after), "x");
    EXPECT_EQ(after, 5);
    EXPECT_EQ(token("a\\b\\c\\d\\e\\f.mdb", 1, "\\", false, 4), "a\\b\\c\\d\\");
    EXPECT_EQ(token("C:\\a", 1, "\\", false, 4), "C:\\a");  // fewer than four: the whole text
}

TEST(GetToken, KeepsADelimiterThatIsTheLastCharacterUnlessDropTrailing)
{
    EXPECT_EQ(token("1=", 1, "=", true), "1=");
    EXPECT_TRUE(gTokenAtEnd);
    EXPECT_EQ(token("1=", 1, "=", true, 0, true), "1");
    EXPECT_EQ(token("abc", 1, "=", true, 0, true), "abc");  // no delimiter: nothing to drop
    EXPECT_EQ(token("ab=", 1, "=", false, 0, true), "ab=");  // without drop nothing is dropped
}

TEST(GetToken, AtEndIsSetWhenThePositionReachesTheLength)
{
    int16_t after = 0;
    token("ab=c", 1, "=", true, 0, false, &after);
    EXPECT_EQ(after, 4);
    EXPECT_TRUE(gTokenAtEnd);  // one character is left, yet the flag is set: kept as it is
    token("ab=cd", 1, "=", true);
    EXPECT_FALSE(gTokenAtEnd);
}

TEST(GetToken, EmptyTextOrPositionOutsideIsError9)
{
    EXPECT_EQ(runTimeErrorOf([] { token("", 1, "=", true); }), 9);
    EXPECT_EQ(runTimeErrorOf([] { token("abc", 4, "=", true); }), 9);
    EXPECT_EQ(runTimeErrorOf([] { token("abc", 0, "=", true); }), 9);
}

TEST(GetToken, APositionBeyond32767IsOverflow)
{
    EXPECT_EQ(runTimeErrorOf([] { token(QString(40000, u'x'), 1, "=", true); }), 6);
    EXPECT_EQ(runTimeErrorOf([] { token(QString(32767, u'x'), 1, "=", true); }), 6);  // the position after it
    EXPECT_EQ(token(QString(32766, u'x'), 1, "=", true).size(), 32766);
    // A delimiter early in a long line stops the scan in time.
    EXPECT_EQ(token("1=" + QString(40000, u'x'), 1, "=", true), "1");
}

TEST(GetToken, WorksOnAnsiBytes)
{
    EXPECT_EQ(token(QString::fromUtf8("Имя=Значение"), 1, "=", true), QString::fromUtf8("Имя"));
    // Characters the code page lacks come back as "?".
    EXPECT_EQ(token(QString::fromUtf8("中文=x"), 1, "=", true), "??");
    EXPECT_EQ(token(QString::fromUtf8("a中b"), 1, QString::fromUtf8("中"), true), QString::fromUtf8("a?b"));
}

TEST(PathHelpers, FileNameAndExtension)
{
    EXPECT_EQ(GetFileName("C:\\a\\b.txt"), "b.txt");
    EXPECT_EQ(GetFileName("/home/user/data.mdb"), "data.mdb");
    EXPECT_EQ(GetFileName("file.txt"), "ile.txt");  // callers always pass full paths
    EXPECT_EQ(GetFileName("C:\\a\\"), "");
    EXPECT_EQ(GetFileExtension("C:\\a\\b.tar.xml"), "xml");
    EXPECT_EQ(GetFileExtension("C:\\a\\README"), "README");
    EXPECT_EQ(GetFileExtension("/t/table.TXT"), "TXT");
    EXPECT_EQ(runTimeErrorOf([] { GetFileExtension("C:\\a\\"); }), 9);
}

TEST(ColorToHex, RedGreenBlueFromTheLowByteUp)
{
    EXPECT_EQ(ColorToHex(255), "FF0000");
    EXPECT_EQ(ColorToHex(0xFF00), "00FF00");
    EXPECT_EQ(ColorToHex(0x123456), "563412");
    EXPECT_EQ(ColorToHex(0x0A0B0C), "0C0B0A");
    EXPECT_EQ(ColorToHex(0x01000000), "000000");  // only three bytes are taken
    EXPECT_EQ(ColorToHex(0x0A0B0C, false), "121110");
    EXPECT_EQ(ColorToHex(-1), "FFFFFFFF0000");
}

namespace {

class RecordingDiagnostics : public host::HostDiagnostics {
public:
    QStringList traces;
    QStringList errors;
    bool failTrace = false;
    void trace(const QString& text) override
    {
        traces << text;
        if (failTrace)
            throw host::vbError(host::vberr::ObjectNotSet);
    }
    void reportError(int32_t number, const QString&, const QString& procedure, const QString& scope,
                     const QString& component) override
    {
        errors << QStringLiteral("%1 %2 %3 %4").arg(number).arg(procedure, scope, component);
    }
};

}  // namespace

TEST(ToPoint, TrimsSpacesReplacesCommasAndWritesBack)
{
    RecordingDiagnostics diagnostics;
    host::HostDiagnostics::install(&diagnostics);
    QString value = " 3,14 ";
    EXPECT_EQ(ToPoint(value), "3.14");
    EXPECT_EQ(value, "3.14");
    QString tabbed = "\t1,000,5 ";
    EXPECT_EQ(ToPoint(tabbed), "\t1.000.5");  // only spaces are trimmed
    EXPECT_EQ(diagnostics.traces, (QStringList{"Function: ToPoint( 3,14 )", "Function: ToPoint(\t1,000,5 )"}));
    EXPECT_TRUE(diagnostics.errors.isEmpty());
    host::HostDiagnostics::install(nullptr);
}

TEST(ToPoint, ErrorsGoToTheHostLibrary)
{
    RecordingDiagnostics diagnostics;
    diagnostics.failTrace = true;
    host::HostDiagnostics::install(&diagnostics);
    QString value = "2,5";
    EXPECT_EQ(ToPoint(value), QString());
    EXPECT_EQ(value, "2,5");
    EXPECT_EQ(diagnostics.errors, QStringList{"91 ToPoint global Functions"});
    host::HostDiagnostics::install(nullptr);
}
