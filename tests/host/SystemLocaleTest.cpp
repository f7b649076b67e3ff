#include <gtest/gtest.h>

#include "host/SystemLocale.h"

using host::jetLocaleOf;
using Order = jet::Locale::DateOrder;

TEST(SystemLocale, TakesTheDecimalSeparatorAndTheShortDateOrder)
{
    const jet::Locale russian = jetLocaleOf(QLocale(QLocale::Russian, QLocale::Russia));
    EXPECT_EQ(russian.decimalSeparator, ",");
    EXPECT_EQ(russian.dateOrder, Order::DayMonthYear);
    EXPECT_EQ(russian.dateSeparator, '.');

    const jet::Locale american = jetLocaleOf(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(american.decimalSeparator, ".");
    EXPECT_EQ(american.dateOrder, Order::MonthDayYear);
    EXPECT_EQ(american.dateSeparator, '/');

    const jet::Locale swedish = jetLocaleOf(QLocale(QLocale::Swedish, QLocale::Sweden));
    EXPECT_EQ(swedish.dateOrder, Order::YearMonthDay);
    EXPECT_EQ(swedish.dateSeparator, '-');

    const jet::Locale british = jetLocaleOf(QLocale(QLocale::English, QLocale::UnitedKingdom));
    EXPECT_EQ(british.dateOrder, Order::DayMonthYear);
    EXPECT_EQ(british.dateSeparator, '/');
}
