#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include "jet/Locale.h"
#include "rt/VariantText.h"

TEST(VariantText, CStrFollowsTheLocaleAndRefusesNullWhichConcatenationDrops)
{
    const jet::Locale saved = jet::Locale::current();
    jet::Locale comma;
    comma.decimalSeparator = ",";
    jet::Locale::setCurrent(comma);
    EXPECT_EQ(rt::CStr(jet::Variant::doubleValue(2.5)), "2,5");
    EXPECT_EQ(rt::concatenationText(jet::Variant::boolean(true)), "True");
    jet::Locale::setCurrent(saved);
    EXPECT_EQ(rt::CStr(rt::stringVariant(QString::fromUtf8("Таблица"))), QString::fromUtf8("Таблица"));
    EXPECT_EQ(rt::concatenationText(jet::Variant::null()), "");
    EXPECT_EQ(runTimeErrorOf([] { rt::CStr(jet::Variant::null()); }), 94);
}
