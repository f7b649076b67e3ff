#include <gtest/gtest.h>

#include <QStringList>

#include "../support/TestSupport.h"

#include "host/HostDiagnostics.h"
#include "lang/StringHelpers.h"
#include "rt/VbError.h"

using namespace lang;

TEST(GetToken, ReturnsThePieceUpToTheCountedDelimiterAndMovesThePosition)
{
    // text, start, delimiter, drop it, count, drop a trailing one; piece, position after, at end
    const std::vector<std::tuple<QString, int16_t, QString, bool, int16_t, bool, QString, int16_t, bool>> cases = {
        {"Version=1", 1, "=", false, 0, false, "Version=", 9, true},
        {"2=x=y", 1, "=", true, 0, false, "2", 3, false},
        {"2=x=y", 3, "=", true, 0, false, "x", 5, true},
        {"a\\b\\c\\d\\e\\f.mdb", 1, "\\", false, 4, false, "a\\b\\c\\d\\", 9, false},
        {"C:\\a", 1, "\\", false, 4, false, "C:\\a", 5, true},  // fewer than four: the whole text
        // A delimiter that is the last character stays unless the last flag says so.
        {"1=", 1, "=", true, 0, false, "1=", 3, true},
        {"1=", 1, "=", true, 0, true, "1", 3, true},
        {"abc", 1, "=", true, 0, true, "abc", 4, true},
        {"ab=", 1, "=", false, 0, true, "ab=", 4, true},
        // The end flag is set when the position reaches the length, one character early.
        {"ab=c", 1, "=", true, 0, false, "ab", 4, true},
        {"ab=cd", 1, "=", true, 0, false, "ab", 4, false},
        // ANSI bytes: what the code page lacks is "?" and matches no delimiter.
        {QString::fromUtf8("Имя=Значение"), 1, "=", true, 0, false, QString::fromUtf8("Имя"), 5, false},
        {QString::fromUtf8("中文=x"), 1, "=", true, 0, false, "??", 4, true},
        {QString::fromUtf8("a中b"), 1, QString::fromUtf8("中"), true, 0, false, "a?b", 4, true},
        // A delimiter early in a long line stops the scan before the position overflows.
        {"1=" + QString(40000, u'x'), 1, "=", true, 0, false, "1", 3, false},
        {QString(32766, u'x'), 1, "=", true, 0, false, QString(32766, u'x'), 32767, true}};
    for (const auto& [text, start, delimiter, drop, count, dropTrailing, piece, after, atEnd] : cases) {
        int16_t position = start;
        EXPECT_EQ(GetToken(text, position, delimiter, drop, count, dropTrailing), piece) << text.left(20).toStdString();
        EXPECT_EQ(position, after) << text.left(20).toStdString();
        EXPECT_EQ(gTokenAtEnd, atEnd) << text.left(20).toStdString();
    }
    // An empty text or a start outside is error 9; a position past 32767 is Overflow.
    for (const auto& [text, start, error] : std::vector<std::tuple<QString, int16_t, int32_t>>{
             {"", 1, 9}, {"abc", 4, 9}, {"abc", 0, 9}, {QString(40000, u'x'), 1, 6}, {QString(32767, u'x'), 1, 6}}) {
        int16_t position = start;
        EXPECT_EQ(runTimeErrorOf([&] { GetToken(text, position, "=", true); }), error) << text.size();
    }
}

TEST(StringHelpers, FileNameExtensionAndColour)
{
    EXPECT_EQ(GetFileName("C:\\a\\b.txt") + u'|' + GetFileName("/home/user/data.mdb") + u'|' + GetFileName("C:\\a\\"),
              "b.txt|data.mdb|");
    EXPECT_EQ(GetFileName("file.txt"), "ile.txt");  // callers always pass full paths
    EXPECT_EQ(GetFileExtension("C:\\a\\b.tar.xml") + u'|' + GetFileExtension("C:\\a\\README"), "xml|README");
    EXPECT_EQ(runTimeErrorOf([] { GetFileExtension("C:\\a\\"); }), 9);
    QStringList colours;
    for (const int32_t colour : {255, 0xFF00, 0x123456, 0x0A0B0C, 0x01000000, -1})
        colours << ColorToHex(colour);
    // Red from the low byte up, three bytes only; the run time's Mod keeps the sign.
    EXPECT_EQ(colours, QStringList({"FF0000", "00FF00", "563412", "0C0B0A", "000000", "FFFFFFFF0000"}));
    EXPECT_EQ(ColorToHex(0x0A0B0C, false), "121110");
}

TEST(ToPoint, TrimsSpacesMakesCommasPointsAndHandsTraceAndErrorsToTheHost)
{
    struct Recording : host::HostDiagnostics {
        void trace(const QString& text) override
        {
            log << text;
            if (failTrace)
                throw rt::vbError(rt::vberr::ObjectNotSet);
        }
        void reportError(int32_t number, const QString&, const QString& procedure, const QString& scope,
                         const QString& component) override
        {
            log << QStringLiteral("%1 %2 %3 %4").arg(number).arg(procedure, scope, component);
        }
        QStringList log;
        bool failTrace = false;
    } diagnostics;
    host::HostDiagnostics::install(&diagnostics);
    QString value = " 3,14 ";
    EXPECT_EQ(ToPoint(value), "3.14");
    EXPECT_EQ(value, "3.14");
    QString tabbed = "\t1,000,5 ";
    EXPECT_EQ(ToPoint(tabbed), "\t1.000.5");  // only spaces are trimmed
    diagnostics.failTrace = true;
    QString failing = "2,5";
    EXPECT_EQ(ToPoint(failing), "");
    EXPECT_EQ(failing, "2,5");
    host::HostDiagnostics::install(nullptr);
    EXPECT_EQ(diagnostics.log, QStringList({"Function: ToPoint( 3,14 )", "Function: ToPoint(\t1,000,5 )",
                                            "Function: ToPoint(2,5)", "91 ToPoint global Functions"}));
}
