#pragma once
// The user's regional settings as far as the engine's text conversions need them: the
// decimal separator of numbers and the order and separator of short dates. The
// application sets them once at start; the command-line tool and tests fix them.
//
// Text of a date is always rendered as "dd.mm.yyyy hh:nn:ss" with the fields in the
// locale's order and separator (day and month two digits, year four, 24-hour time).

#include <string>

namespace jet {

struct Locale {
    enum class DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };

    std::string decimalSeparator = ".";
    DateOrder dateOrder = DateOrder::MonthDayYear;
    char dateSeparator = '/';

    // What the C library's current locale (LC_NUMERIC, LC_TIME) says.
    static Locale fromCLibrary();
    // The setting in force: fromCLibrary() until setCurrent() is called.
    static const Locale& current();
    static void setCurrent(const Locale& locale);
};

}  // namespace jet
