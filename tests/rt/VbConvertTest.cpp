#include <gtest/gtest.h>

#include <cmath>

#include "../support/TestSupport.h"

#include "rt/VbConvert.h"

using namespace rt;

TEST(Val, ReadsTheLeadingNumberOfAText)
{
    const std::vector<std::pair<QString, double>> cases = {
        {"59", 59}, {"59.6", 59.6}, {"  -12.5abc", -12.5}, {"+3", 3}, {".5", 0.5}, {"5.", 5}, {"1.2.3", 1.2},
        {"12,5", 12},  // only "." is a decimal point
        {"", 0}, {"abc", 0}, {"-", 0}, {".", 0}, {"--5", 0}, {"e5", 0},
        // Blanks, tabs and line feeds are ignored anywhere, a carriage return is not.
        {"1 2 3", 123}, {"\t- 4\n2", -42}, {"1\r2", 1},
        {"1e3", 1000}, {"2D-2", 0.02}, {"1e", 1}, {"1e+", 1}, {"1e-400", 0},
        // Hexadecimal and octal: what fits 16 bits is an Integer, the rest a Long.
        {"&HFF", 255}, {"&hff", 255}, {"&HFFFF", -1}, {"&H8000", -32768}, {"&H10000", 65536},
        {"&HFFFFFFFF", -1}, {"&O17", 15}, {"&17", 15}, {"&H", 0}, {"&HG", 0}};
    for (const auto& [text, value] : cases)
        EXPECT_DOUBLE_EQ(Val(text), value) << text.toStdString();
    for (const QString& tooLarge : {QString("1e400"), QString(400, u'9'), QString("&H100000000")})
        EXPECT_EQ(runTimeErrorOf([&] { Val(tooLarge); }), 6) << tooLarge.toStdString();
}

TEST(IsNumeric, TakesOnlyATextThatIsOneNumberWhole)
{
    for (const char* number : {"65", " 65 ", "-1", "+0", "6.5", ".5", "5.", "1e2", "1D-2", "&H41", "&hff", "&O17", "00"})
        EXPECT_TRUE(IsNumeric(number)) << number;
    for (const char* other : {"", " ", "x41", "#65", "1 2", "12a", "1e", "e5", ".", "-", "&H", "&HG", "&17", "1.2.3", "--5"})
        EXPECT_FALSE(IsNumeric(other)) << other;
}

TEST(Conversions, RoundHalvesToEvenAndOverflowOutsideTheTypesRange)
{
    const std::vector<std::pair<double, int32_t>> longs = {
        {2.5, 2}, {3.5, 4}, {-2.5, -2}, {-3.5, -4}, {59.6, 60}, {59.4, 59},
        {2147483647.4, 2147483647}, {-2147483648.5, -2147483648}};
    for (const auto& [value, rounded] : longs)
        EXPECT_EQ(CLng(value), rounded) << value;
    const std::vector<std::pair<double, int16_t>> integers = {{0.4, 0}, {0.5, 0}, {0.6, 1}, {1.5, 2}, {32767.4, 32767}};
    for (const auto& [value, rounded] : integers)
        EXPECT_EQ(CInt(value), rounded) << value;
    for (const double value : {2147483647.5, std::nan("")})
        EXPECT_EQ(runTimeErrorOf([&] { CLng(value); }), 6) << value;
    for (const double value : {32767.5, -32769.0})
        EXPECT_EQ(runTimeErrorOf([&] { CInt(value); }), 6) << value;
    EXPECT_FLOAT_EQ(CSng(12000), 12000.0f);
    EXPECT_EQ(runTimeErrorOf([] { CSng(1e39); }), 6);
}

TEST(Conversions, ChrAndAscUseTheAnsiCodePage)
{
    EXPECT_EQ(Chr(0) + Chr(59) + Chr(0xC0), QString(QChar(0)) + QString::fromUtf8(";А"));  // Windows-1251
    EXPECT_EQ(Asc(";;"), 59);
    EXPECT_EQ(Asc(QString::fromUtf8("я")), 0xFF);
    EXPECT_EQ(Asc(QString::fromUtf8("€")), 0x88);
    EXPECT_EQ(Asc(QString::fromUtf8("中")), '?');
    for (const int32_t code : {256, -1})
        EXPECT_EQ(runTimeErrorOf([&] { Chr(code); }), 5) << code;
    EXPECT_EQ(runTimeErrorOf([] { Asc(""); }), 5);
}
