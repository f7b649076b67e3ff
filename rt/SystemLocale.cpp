#include "rt/SystemLocale.h"

namespace rt {

namespace {

bool isDateField(QChar c)
{
    return c == u'd' || c == u'M' || c == u'y';
}

}  // namespace

jet::Locale jetLocaleOf(const QLocale& locale)
{
    jet::Locale result;
    result.decimalSeparator = locale.decimalPoint().toStdString();

    // A short date format reads like "dd.MM.yyyy", "M/d/yy" or "yyyy-MM-dd": the first
    // field gives the order (the other two follow as every locale writes them), the first
    // character after it that is no field letter gives the separator.
    const QString format = locale.dateFormat(QLocale::ShortFormat);
    const qsizetype first = [&] {
        for (qsizetype i = 0; i < format.size(); ++i)
            if (isDateField(format[i]))
                return i;
        return qsizetype(-1);
    }();
    if (first < 0)
        return result;
    if (format[first] == u'd')
        result.dateOrder = jet::Locale::DateOrder::DayMonthYear;
    else if (format[first] == u'y')
        result.dateOrder = jet::Locale::DateOrder::YearMonthDay;
    else
        result.dateOrder = jet::Locale::DateOrder::MonthDayYear;
    qsizetype i = first;
    while (i < format.size() && format[i] == format[first])
        ++i;
    if (i < format.size() && !format[i].isLetter() && format[i].unicode() < 0x80 && format[i] != u'\'')
        result.dateSeparator = static_cast<char>(format[i].unicode());
    return result;
}

}  // namespace rt
