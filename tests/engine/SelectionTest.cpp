// The selection classes: a VB array of area references with element 0 unused.

#include <gtest/gtest.h>

#include "../support/RunTimeErrorOf.h"

#include "Areas.h"

using namespace engine;

TEST(Table_Selection, GrowsByOneAreaAtATimeAndKeepsElementZeroEmpty)
{
    Table_Selection s;
    EXPECT_EQ(s.Count(), 0);
    EXPECT_EQ(runTimeErrorOf([&] { s.Item(0); }), 9);  // erased: not even element 0
    const auto first = area(1, 1, 2, 2);
    s.AddSelection(first);
    EXPECT_EQ(s.Count(), 1);
    EXPECT_EQ(s.Item(1), first);
    EXPECT_EQ(s.Item(0), nullptr);
    s.AddSelection(area(3, 3, 3, 3));
    EXPECT_EQ(s.Count(), 2);
    EXPECT_EQ(s.Item(2)->Start().Column(), 3);
    EXPECT_EQ(runTimeErrorOf([&] { s.Item(3); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { s.Item(-1); }), 9);
}

TEST(Table_Selection, StoresReferencesSoTheSameAreaAddedTwiceShowsItsLatestCorners)
{
    Table_Selection s;
    const auto range = std::make_shared<Rows_Selection>();
    range->Start().setRow(1);
    s.AddSelection(range);
    range->Start().setRow(7);
    s.AddSelection(range);
    EXPECT_EQ(s.Count(), 2);
    EXPECT_EQ(s.Item(1)->Start().Row(), 7);
    EXPECT_EQ(s.Item(2)->Start().Row(), 7);
}

TEST(Table_Selection, DeleteClosesTheGapAndClearErases)
{
    Table_Selection s;
    const auto a = area(1, 1, 1, 1), b = area(2, 2, 2, 2), c = area(3, 3, 3, 3);
    s.AddSelection(a);
    s.AddSelection(b);
    s.AddSelection(c);
    EXPECT_FALSE(s.DeleteSelection(2));
    EXPECT_EQ(s.Count(), 2);
    EXPECT_EQ(s.Item(1), a);
    EXPECT_EQ(s.Item(2), c);
    EXPECT_EQ(runTimeErrorOf([&] { s.DeleteSelection(5); }), 9);
    EXPECT_EQ(s.Count(), 2);

    EXPECT_FALSE(s.DeleteSelection(1));
    EXPECT_FALSE(s.DeleteSelection(1));
    EXPECT_EQ(s.Count(), 0);
    EXPECT_EQ(s.Item(0), nullptr);  // bounds 0..0 remain after the last delete

    s.AddSelection(a);
    EXPECT_FALSE(s.ClearSelection());
    EXPECT_EQ(s.Count(), 0);
    EXPECT_EQ(runTimeErrorOf([&] { s.Item(0); }), 9);
}

TEST(Table_Selection, CountLetChangesNothing)
{
    Table_Selection s;
    s.AddSelection(area(1, 1, 1, 1));
    s.setCount(5);
    EXPECT_EQ(s.Count(), 1);
}

TEST(Rows_Selection, CornersAreMadeOnFirstReadAndReplacedBySet)
{
    Rows_Selection r;
    Simple_Row& start = r.Start();
    EXPECT_EQ(start.Column(), 0);
    EXPECT_EQ(start.Row(), 0);
    start.setColumn(4);
    EXPECT_EQ(&r.Start(), &start);
    EXPECT_EQ(r.Start().Column(), 4);
    auto corner = std::make_shared<Simple_Row>();
    corner->setRow(9);
    r.setFinish(corner);
    EXPECT_EQ(&r.Finish(), corner.get());
    EXPECT_EQ(r.Finish().Row(), 9);
}
