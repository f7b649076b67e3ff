// Variant kinds and VB's CStr rules under the locale the application sets, and the date
// serials behind them.
#include <gtest/gtest.h>

#include <cmath>

#include "jet/DateSerial.h"
#include "jet/RuntimeError.h"
#include "jet/Variant.h"

namespace {

using jet::Locale;
using jet::Variant;

const Locale us{".", Locale::DateOrder::MonthDayYear, '/'};
const Locale russian{",", Locale::DateOrder::DayMonthYear, '.'};

TEST(VariantText, EveryKindAsCStrPrintsIt) {
    const double d2004 = jet::dateSerial({2004, 6, 5, 13, 6, 59});
    unsigned __int128 big = (unsigned __int128)1 << 100;
    const std::tuple<Variant, const Locale*, const char*> cases[] = {
        {Variant(), &us, ""},
        {Variant::boolean(true), &us, "True"},
        {Variant::boolean(false), &us, "False"},
        {Variant::byte(255), &us, "255"},
        {Variant::integer(-32768), &us, "-32768"},
        {Variant::longValue(INT32_MIN), &us, "-2147483648"},
        {Variant::single(1.5f), &russian, "1,5"},
        {Variant::single(0.1f), &us, "0.1"},  // seven digits hide the float's error
        {Variant::single(1234567.0f), &us, "1234567"},
        {Variant::single(12345678.0f), &us, "1.234568E+07"},
        {Variant::doubleValue(-94.43000000000001), &us, "-94.43"},  // fifteen digits
        {Variant::doubleValue(123456789012345.0), &us, "123456789012345"},
        {Variant::doubleValue(1e15), &us, "1E+15"},
        {Variant::doubleValue(0.00001), &us, "1E-05"},
        {Variant::doubleValue(0.0001), &russian, "0,0001"},
        {Variant::doubleValue(0.0), &us, "0"},
        {Variant::doubleValue(-3.5e-7), &russian, "-3,5E-07"},
        {Variant::currency(35000), &us, "3.5"},
        {Variant::currency(-1), &russian, "-0,0001"},
        {Variant::currency(INT64_MIN), &us, "-922337203685477.5808"},
        {Variant::date(d2004), &russian, "05.06.2004 13:06:59"},
        {Variant::date(d2004), &us, "06/05/2004 13:06:59"},
        {Variant::date(std::floor(d2004)), &russian, "05.06.2004"},  // no time part
        {Variant::date(0.25), &russian, "06:00:00"},                 // day 0: the time only
        {Variant::date(-1.25), &russian, "29.12.1899 06:00:00"},     // before the epoch the time runs forward
        {Variant::decimal({true, 1234500, 4}), &russian, "-123,45"},
        {Variant::decimal({true, 0, 0}), &us, "0"},  // no negative zero
        {Variant::decimal({false, big, 0}), &us, "1267650600228229401496703205376"},
        {Variant::decimal({false, 5, 2}), &us, "0.05"},
        {Variant::string("\u00E9t\u00E9"), &us, "\u00E9t\u00E9"},
        {Variant::bytes({'H', 0, 'i', 0}), &us, "Hi"},  // a byte array reads as UTF-16 text
    };
    for (const auto& [v, locale, text] : cases) EXPECT_EQ(text, v.toString(*locale)) << text;
    try {
        Variant::null().toString(us);
        FAIL() << "CStr(Null) must raise";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(94, e.number());
        EXPECT_EQ("Invalid use of Null", e.description());
    }
    EXPECT_EQ("-123.4500", (jet::Decimal{true, 1234500, 4}).toString(".", false));
    const Locale saved = Locale::current();
    Locale::setCurrent(russian);
    EXPECT_EQ("2,5", Variant::doubleValue(2.5).toString()) << "the setting in force";
    Locale::setCurrent(saved);
}

TEST(Variant, AccessorsOfTheWrongKindAreTypeMismatch) {
    EXPECT_EQ(42, Variant::longValue(42).asLong());
    EXPECT_THROW(Variant::longValue(42).asInteger(), jet::RuntimeError);
    EXPECT_THROW(Variant::date(1).asDouble(), jet::RuntimeError);
    EXPECT_THROW(Variant::null().asString(), jet::RuntimeError);
    EXPECT_EQ(8209, int(Variant::bytes({}).type()));
    EXPECT_NE(Variant::date(1), Variant::doubleValue(1));
}

TEST(DateSerial, CalendarConversionsBothWays) {
    const std::pair<double, jet::DateParts> cases[] = {
        {0.0, {1899, 12, 30, 0, 0, 0}},     {1.5, {1899, 12, 31, 12, 0, 0}},   {2.0, {1900, 1, 1, 0, 0, 0}},
        {-1.25, {1899, 12, 29, 6, 0, 0}},   {-2.75, {1899, 12, 28, 18, 0, 0}}, {36526.0, {2000, 1, 1, 0, 0, 0}},
        {-84533.0, {1668, 7, 20, 0, 0, 0}}, {60.0, {1900, 2, 28, 0, 0, 0}},    {61.0, {1900, 3, 1, 0, 0, 0}},
    };
    for (const auto& [serial, parts] : cases) {
        const jet::DateParts p = jet::dateParts(serial);
        EXPECT_EQ(std::tie(parts.year, parts.month, parts.day, parts.hour), std::tie(p.year, p.month, p.day, p.hour))
            << serial;
        EXPECT_DOUBLE_EQ(serial, jet::dateSerial(parts)) << serial;
    }
    const jet::DateParts late = jet::dateParts(1.0 - 0.4 / 86400);  // 23:59:59.6 rounds into the next day
    EXPECT_EQ(31, late.day);
    EXPECT_EQ(0, late.hour);
    EXPECT_THROW(jet::dateParts(NAN), jet::RuntimeError);
    EXPECT_THROW(jet::dateParts(1e300), jet::RuntimeError);
}

}  // namespace
