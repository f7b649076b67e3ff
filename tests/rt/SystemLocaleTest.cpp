#include <gtest/gtest.h>

#include "rt/SystemLocale.h"

using Order = jet::Locale::DateOrder;

TEST(SystemLocale, TakesTheDecimalSeparatorAndTheShortDateOrder)
{
    const std::vector<std::tuple<QLocale, std::string, Order, char>> cases = {
        {QLocale(QLocale::Russian, QLocale::Russia), ",", Order::DayMonthYear, '.'},
        {QLocale(QLocale::English, QLocale::UnitedStates), ".", Order::MonthDayYear, '/'},
        {QLocale(QLocale::Swedish, QLocale::Sweden), ",", Order::YearMonthDay, '-'},
        {QLocale(QLocale::English, QLocale::UnitedKingdom), ".", Order::DayMonthYear, '/'}};
    for (const auto& [locale, decimal, order, separator] : cases) {
        const jet::Locale taken = rt::jetLocaleOf(locale);
        EXPECT_TRUE(taken.decimalSeparator == decimal && taken.dateOrder == order && taken.dateSeparator == separator)
            << locale.name().toStdString();
    }
}
