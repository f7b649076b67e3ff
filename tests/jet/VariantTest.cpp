// Variant kinds and VB's CStr rules, with the locale setting the application fixes.
#include <gtest/gtest.h>

#include <cmath>

#include "jet/DateSerial.h"
#include "jet/RuntimeError.h"
#include "jet/Variant.h"

namespace {

using jet::Locale;
using jet::Variant;

Locale russian() {
    Locale l;
    l.decimalSeparator = ",";
    l.dateOrder = Locale::DateOrder::DayMonthYear;
    l.dateSeparator = '.';
    return l;
}

Locale us() { return Locale{".", Locale::DateOrder::MonthDayYear, '/'}; }

TEST(VariantText, NullIsError94AndEmptyIsEmpty) {
    try {
        Variant::null().toString(us());
        FAIL() << "CStr(Null) must raise";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(94, e.number());
        EXPECT_EQ("Invalid use of Null", e.description());
    }
    EXPECT_EQ("", Variant().toString(us()));
    EXPECT_TRUE(Variant().isEmpty());
}

TEST(VariantText, BooleansAndIntegers) {
    EXPECT_EQ("True", Variant::boolean(true).toString(us()));
    EXPECT_EQ("False", Variant::boolean(false).toString(us()));
    EXPECT_EQ("255", Variant::byte(255).toString(us()));
    EXPECT_EQ("-32768", Variant::integer(-32768).toString(us()));
    EXPECT_EQ("-2147483648", Variant::longValue(INT32_MIN).toString(us()));
}

TEST(VariantText, SingleAndDoubleUseVbDigitsAndTheLocaleSeparator) {
    EXPECT_EQ("1.5", Variant::single(1.5f).toString(us()));
    EXPECT_EQ("1,5", Variant::single(1.5f).toString(russian()));
    EXPECT_EQ("0.1", Variant::single(0.1f).toString(us())) << "seven digits hide the float's error";
    EXPECT_EQ("1234567", Variant::single(1234567.0f).toString(us()));
    EXPECT_EQ("1.234568E+07", Variant::single(12345678.0f).toString(us()));
    EXPECT_EQ("0.1", Variant::doubleValue(0.1).toString(us()));
    EXPECT_EQ("-94.43", Variant::doubleValue(-94.43000000000001).toString(us())) << "15 digits";
    EXPECT_EQ("123456789012345", Variant::doubleValue(123456789012345.0).toString(us()));
    EXPECT_EQ("1E+15", Variant::doubleValue(1e15).toString(us()));
    EXPECT_EQ("1E-05", Variant::doubleValue(0.00001).toString(us()));
    EXPECT_EQ("0,0001", Variant::doubleValue(0.0001).toString(russian()));
    EXPECT_EQ("0", Variant::doubleValue(0.0).toString(us()));
    EXPECT_EQ("-3,5E-07", Variant::doubleValue(-3.5e-7).toString(russian()));
}

TEST(VariantText, CurrencyDropsTrailingZerosUpToFourDecimals) {
    EXPECT_EQ("3.5", Variant::currency(35000).toString(us()));
    EXPECT_EQ("0", Variant::currency(0).toString(us()));
    EXPECT_EQ("-834573.75", Variant::currency(-8345737500).toString(us()));
    EXPECT_EQ("-0,0001", Variant::currency(-1).toString(russian()));
    EXPECT_EQ("922337203685477.5807", Variant::currency(INT64_MAX).toString(us()));
    EXPECT_EQ("-922337203685477.5808", Variant::currency(INT64_MIN).toString(us()));
}

TEST(VariantText, DatesShowDateTimeOrBothAsVbDoes) {
    double d2004 = jet::dateSerial({2004, 6, 5, 13, 6, 59});
    EXPECT_EQ("05.06.2004 13:06:59", Variant::date(d2004).toString(russian()));
    EXPECT_EQ("06/05/2004 13:06:59", Variant::date(d2004).toString(us()));
    EXPECT_EQ("05.06.2004", Variant::date(std::floor(d2004)).toString(russian())) << "no time part";
    EXPECT_EQ("06:00:00", Variant::date(0.25).toString(russian())) << "day 0 shows the time only";
    EXPECT_EQ("00:00:00", Variant::date(0).toString(russian()));
    Locale iso{".", Locale::DateOrder::YearMonthDay, '-'};
    EXPECT_EQ("1899-12-29 06:00:00", Variant::date(-1.25).toString(iso)) << "before the epoch the time runs forward";
}

TEST(VariantText, DecimalStringAndBytes) {
    jet::Decimal d{true, 1234500, 4};
    EXPECT_EQ("-123,45", Variant::decimal(d).toString(russian()));
    EXPECT_EQ("-123.4500", d.toString(".", false));
    EXPECT_EQ("0.05", (jet::Decimal{false, 5, 2}).toString());
    EXPECT_EQ("0", (jet::Decimal{true, 0, 0}).toString()) << "no negative zero";
    unsigned __int128 big = (unsigned __int128)1 << 100;
    EXPECT_EQ("1267650600228229401496703205376", (jet::Decimal{false, big, 0}).toString());
    EXPECT_EQ("\u00E9t\u00E9", Variant::string("\u00E9t\u00E9").toString(us()));
    EXPECT_EQ("Hi", Variant::bytes({'H', 0, 'i', 0}).toString(us())) << "a byte array reads as UTF-16 text";
}

TEST(Variant, AccessorsOfTheWrongKindAreTypeMismatch) {
    EXPECT_EQ(42, Variant::longValue(42).asLong());
    EXPECT_THROW(Variant::longValue(42).asInteger(), jet::RuntimeError);
    EXPECT_THROW(Variant::date(1).asDouble(), jet::RuntimeError);
    EXPECT_THROW(Variant::doubleValue(1).asDate(), jet::RuntimeError);
    EXPECT_THROW(Variant::null().asString(), jet::RuntimeError);
    EXPECT_EQ(Variant::Type::ByteArray, Variant::bytes({}).type());
    EXPECT_EQ(8209, int(Variant::Type::ByteArray));
    EXPECT_NE(Variant::date(1), Variant::doubleValue(1));
}

TEST(DateSerial, CalendarConversionsBothWays) {
    struct Case {
        double serial;
        jet::DateParts parts;
    } cases[] = {
        {0.0, {1899, 12, 30, 0, 0, 0}},     {1.5, {1899, 12, 31, 12, 0, 0}},  {2.0, {1900, 1, 1, 0, 0, 0}},
        {-1.25, {1899, 12, 29, 6, 0, 0}},   {-2.75, {1899, 12, 28, 18, 0, 0}}, {36526.0, {2000, 1, 1, 0, 0, 0}},
        {-84533.0, {1668, 7, 20, 0, 0, 0}}, {60.0, {1900, 2, 28, 0, 0, 0}},   {61.0, {1900, 3, 1, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        jet::DateParts p = jet::dateParts(c.serial);
        EXPECT_EQ(c.parts.year, p.year) << c.serial;
        EXPECT_EQ(c.parts.month, p.month) << c.serial;
        EXPECT_EQ(c.parts.day, p.day) << c.serial;
        EXPECT_EQ(c.parts.hour, p.hour) << c.serial;
        EXPECT_DOUBLE_EQ(c.serial, jet::dateSerial(c.parts)) << c.serial;
    }
    jet::DateParts late = jet::dateParts(1.0 - 0.4 / 86400);  // 23:59:59.6 rounds into the next day
    EXPECT_EQ(31, late.day);
    EXPECT_EQ(0, late.hour);
    EXPECT_THROW(jet::dateParts(NAN), jet::RuntimeError);
    EXPECT_THROW(jet::dateParts(1e300), jet::RuntimeError);
}

TEST(Locale, TheSettingInForceCanBeReplaced) {
    Locale saved = Locale::current();
    Locale::setCurrent(russian());
    EXPECT_EQ("2,5", Variant::doubleValue(2.5).toString());
    Locale::setCurrent(us());
    EXPECT_EQ("2.5", Variant::doubleValue(2.5).toString());
    Locale::setCurrent(saved);
}

}  // namespace
