#include <gtest/gtest.h>

#include "../support/RunTimeErrorOf.h"

#include "host/VbConvert.h"
#include "host/VbError.h"

using namespace host;

TEST(Val, ReadsTheLeadingNumberAndIgnoresTheRest)
{
    EXPECT_DOUBLE_EQ(Val("59"), 59);
    EXPECT_DOUBLE_EQ(Val("59.6"), 59.6);
    EXPECT_DOUBLE_EQ(Val("  -12.5abc"), -12.5);
    EXPECT_DOUBLE_EQ(Val("+3"), 3);
    EXPECT_DOUBLE_EQ(Val(".5"), 0.5);
    EXPECT_DOUBLE_EQ(Val("5."), 5);
    EXPECT_DOUBLE_EQ(Val("1.2.3"), 1.2);
    EXPECT_DOUBLE_EQ(Val("12,5"), 12);  // only "." is a decimal point
}

TEST(Val, GivesZeroWithoutALeadingNumber)
{
    EXPECT_EQ(Val(""), 0);
    EXPECT_EQ(Val("abc"), 0);
    EXPECT_EQ(Val("-"), 0);
    EXPECT_EQ(Val("."), 0);
    EXPECT_EQ(Val("--5"), 0);
    EXPECT_EQ(Val("e5"), 0);
}

TEST(Val, IgnoresBlanksTabsAndLineFeedsInsideTheNumber)
{
    EXPECT_DOUBLE_EQ(Val("1 2 3"), 123);
    EXPECT_DOUBLE_EQ(Val("\t- 4\n2"), -42);
    EXPECT_DOUBLE_EQ(Val("1\r2"), 1);  // a carriage return is not ignored
}

TEST(Val, ReadsExponentsWithEOrD)
{
    EXPECT_DOUBLE_EQ(Val("1e3"), 1000);
    EXPECT_DOUBLE_EQ(Val("2D-2"), 0.02);
    EXPECT_DOUBLE_EQ(Val("1e"), 1);
    EXPECT_DOUBLE_EQ(Val("1e+"), 1);
    EXPECT_EQ(Val("1e-400"), 0);
    EXPECT_EQ(runTimeErrorOf([] { Val("1e400"); }), 6);
    EXPECT_EQ(runTimeErrorOf([] { Val(QString(400, u'9')); }), 6);
}

TEST(Val, ReadsHexadecimalAndOctalAsIntegerOrLong)
{
    EXPECT_EQ(Val("&HFF"), 255);
    EXPECT_EQ(Val("&hff"), 255);
    EXPECT_EQ(Val("&HFFFF"), -1);          // fits 16 bits: an Integer
    EXPECT_EQ(Val("&H8000"), -32768);
    EXPECT_EQ(Val("&H10000"), 65536);      // a Long
    EXPECT_EQ(Val("&HFFFFFFFF"), -1);
    EXPECT_EQ(Val("&O17"), 15);
    EXPECT_EQ(Val("&17"), 15);
    EXPECT_EQ(Val("&H"), 0);
    EXPECT_EQ(Val("&HG"), 0);
    EXPECT_EQ(runTimeErrorOf([] { Val("&H100000000"); }), 6);
}

TEST(Conversions, RoundHalvesToEven)
{
    EXPECT_EQ(CLng(2.5), 2);
    EXPECT_EQ(CLng(3.5), 4);
    EXPECT_EQ(CLng(-2.5), -2);
    EXPECT_EQ(CLng(-3.5), -4);
    EXPECT_EQ(CLng(59.6), 60);
    EXPECT_EQ(CLng(59.4), 59);
    EXPECT_EQ(CInt(0.4), 0);
    EXPECT_EQ(CInt(0.5), 0);
    EXPECT_EQ(CInt(0.6), 1);
    EXPECT_EQ(CInt(1.5), 2);
}

TEST(Conversions, OverflowOutsideTheTypesRange)
{
    EXPECT_EQ(CLng(2147483647.4), 2147483647);
    EXPECT_EQ(CLng(-2147483648.5), -2147483648);  // rounds to the even -2147483648
    EXPECT_EQ(runTimeErrorOf([] { CLng(2147483647.5); }), 6);
    EXPECT_EQ(runTimeErrorOf([] { CLng(std::nan("")); }), 6);
    EXPECT_EQ(CInt(32767.4), 32767);
    EXPECT_EQ(runTimeErrorOf([] { CInt(32767.5); }), 6);
    EXPECT_EQ(runTimeErrorOf([] { CInt(-32769); }), 6);
    EXPECT_FLOAT_EQ(CSng(12000), 12000.0f);
    EXPECT_EQ(runTimeErrorOf([] { CSng(1e39); }), 6);
}

TEST(Conversions, ChrAndAscUseTheAnsiCodePage)
{
    EXPECT_EQ(Chr(59), ";");
    EXPECT_EQ(Chr(9), "\t");
    EXPECT_EQ(Chr(0), QString(QChar(0)));
    EXPECT_EQ(Chr(0xC0), QString::fromUtf8("А"));  // Windows-1251
    EXPECT_EQ(runTimeErrorOf([] { Chr(256); }), 5);
    EXPECT_EQ(runTimeErrorOf([] { Chr(-1); }), 5);
    EXPECT_EQ(Asc(";;"), 59);
    EXPECT_EQ(Asc(QString::fromUtf8("я")), 0xFF);
    EXPECT_EQ(Asc(QString::fromUtf8("€")), 0x88);
    EXPECT_EQ(Asc(QString::fromUtf8("中")), '?');
    EXPECT_EQ(runTimeErrorOf([] { Asc(""); }), 5);
}
