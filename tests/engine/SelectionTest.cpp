// The selection classes: a VB array of area references with element 0 unused.

#include <gtest/gtest.h>

#include "../support/TestSupport.h"
#include "Selections.h"

using namespace engine;

TEST(Table_Selection, KeepsAreaReferencesAtOneToCountWithElementZeroEmpty)
{
    Table_Selection s;
    EXPECT_EQ(s.Count(), 0);
    EXPECT_EQ(runTimeErrorOf([&] { s.Item(0); }), 9);  // erased: not even element 0
    const auto a = area({1, 1, 1, 1}), b = area({2, 2, 2, 2}), c = area({3, 3, 3, 3});
    for (const auto& added : {a, b, c})
        s.AddSelection(added);
    s.setCount(5);  // kept where nothing reads it
    EXPECT_EQ(s.Count(), 3);
    EXPECT_EQ(s.Item(0), nullptr);
    EXPECT_EQ(s.Item(2), b);
    for (const int16_t outside : {4, -1})
        EXPECT_EQ(runTimeErrorOf([&] { s.Item(outside); }), 9);
    a->Start().setRow(7);  // references, not copies
    EXPECT_EQ(s.Item(1)->Start().Row(), 7);

    EXPECT_FALSE(s.DeleteSelection(2));  // closes the gap
    EXPECT_EQ(s.Count(), 2);
    EXPECT_EQ(s.Item(2), c);
    EXPECT_EQ(runTimeErrorOf([&] { s.DeleteSelection(5); }), 9);
    EXPECT_FALSE(s.DeleteSelection(1));
    EXPECT_FALSE(s.DeleteSelection(1));
    EXPECT_EQ(s.Count(), 0);
    EXPECT_EQ(s.Item(0), nullptr);  // bounds 0..0 remain after the last delete
    s.AddSelection(a);
    EXPECT_FALSE(s.ClearSelection());
    EXPECT_EQ(s.Count(), 0);
    EXPECT_EQ(runTimeErrorOf([&] { s.Item(0); }), 9);
}
