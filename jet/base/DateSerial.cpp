#include "jet/DateSerial.h"

#include <cmath>
#include <ctime>

#include "jet/RuntimeError.h"

namespace jet {

namespace {

// Days between 1970-01-01 and a proleptic Gregorian date, and back (H. Hinnant's method).
int64_t daysFromCivil(int64_t y, int64_t m, int64_t d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

void civilFromDays(int64_t z, DateParts& p) {
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    p.day = int32_t(doy - (153 * mp + 2) / 5 + 1);
    p.month = int32_t(mp < 10 ? mp + 3 : mp - 9);
    p.year = int32_t(yoe + era * 400 + (p.month <= 2));
}

const int64_t epochDays = daysFromCivil(1899, 12, 30);

}  // namespace

DateParts dateParts(double serial) {
    if (!std::isfinite(serial) || std::fabs(serial) > 1e7) throw RuntimeError(err::Overflow, "Overflow");
    double whole = std::trunc(serial);
    int64_t day = int64_t(whole);
    int64_t seconds = std::llround(std::fabs(serial - whole) * 86400.0);
    if (seconds >= 86400) {
        seconds -= 86400;
        day += 1;
    }
    DateParts p;
    civilFromDays(epochDays + day, p);
    p.hour = int32_t(seconds / 3600);
    p.minute = int32_t(seconds / 60 % 60);
    p.second = int32_t(seconds % 60);
    return p;
}

double dateSerial(const DateParts& p) {
    double day = double(daysFromCivil(p.year, p.month, p.day) - epochDays);
    double time = (p.hour * 3600.0 + p.minute * 60.0 + p.second) / 86400.0;
    return day >= 0 ? day + time : day - time;
}

double nowSerial() {
    const std::time_t t = std::time(nullptr);
    std::tm local{};
    localtime_r(&t, &local);
    return dateSerial({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                       local.tm_sec});
}

}  // namespace jet
