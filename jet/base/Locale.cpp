#include "jet/Locale.h"

#include <langinfo.h>

#include <clocale>
#include <mutex>
#include <optional>

namespace jet {

namespace {

std::mutex mutex;
std::optional<Locale> installed;

}  // namespace

Locale Locale::fromCLibrary() {
    Locale l;
    if (const lconv* c = std::localeconv(); c && c->decimal_point && *c->decimal_point) l.decimalSeparator = c->decimal_point;
    // D_FMT looks like "%d.%m.%Y", "%m/%d/%y" or "%Y-%m-%d": its first field gives the
    // order, the character after it the separator.
    std::string fmt = nl_langinfo(D_FMT);
    if (fmt.size() >= 3 && fmt[0] == '%') {
        char first = fmt[1];
        if (first == 'd' || first == 'e') l.dateOrder = DateOrder::DayMonthYear;
        else if (first == 'Y' || first == 'y') l.dateOrder = DateOrder::YearMonthDay;
        else l.dateOrder = DateOrder::MonthDayYear;
        l.dateSeparator = fmt[2];
    }
    return l;
}

const Locale& Locale::current() {
    std::lock_guard lock(mutex);
    if (!installed) installed = fromCLibrary();
    return *installed;
}

void Locale::setCurrent(const Locale& locale) {
    std::lock_guard lock(mutex);
    installed = locale;
}

}  // namespace jet
