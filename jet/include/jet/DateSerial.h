#pragma once
// Date/time values as Jet and VB keep them: a double counting days since 1899-12-30,
// the fraction being the time of day. Before the epoch the whole part still counts days
// (backwards) and the fraction's absolute value is the time, added forward: -1.25 is
// 1899-12-29 06:00, not 1899-12-28 18:00.

#include <cstdint>

namespace jet {

struct DateParts {
    int32_t year = 1899, month = 12, day = 30;
    int32_t hour = 0, minute = 0, second = 0;
};

// The calendar date and time, rounded to the nearest second. Throws RuntimeError 6
// (overflow) for a value no calendar date has (not finite, or beyond +-10 million days).
DateParts dateParts(double serial);
double dateSerial(const DateParts& parts);
// The local time now, to the second (what Jet stamps on catalogue rows).
double nowSerial();

}  // namespace jet
