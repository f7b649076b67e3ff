#include <gtest/gtest.h>

#include "../support/RunTimeErrorOf.h"

#include "jet/RuntimeError.h"

#include "lang/CaptionList.h"
#include "lang/MenuCaptions.h"
#include "lang/ToolbarCaptions.h"

using namespace lang;

TEST(CaptionList, ItemsCountFromOneInTheOrderAdded)
{
    CaptionList list;
    list.Add("first");
    list.Add("second", "Key2");
    list.Add("third");
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Item(1), "first");
    EXPECT_EQ(list.Item(3), "third");
    EXPECT_EQ(list.Key(1), QString());
    EXPECT_EQ(list.Key(2), "Key2");
    EXPECT_EQ(runTimeErrorOf([&] { list.Item(0); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { list.Key(4); }), 9);
}

TEST(CaptionList, AKeyMayBeUsedOnceButUnkeyedItemsRepeat)
{
    CaptionList list;
    list.Add("a");
    list.Add("a");
    list.Add("b", "Scan");
    EXPECT_EQ(runTimeErrorOf([&] { list.Add("c", "SCAN"); }), 457);
    EXPECT_EQ(list.Count(), 3);
}

TEST(MenuCaptions, KeyedByMenuItemInTableOrder)
{
    MenuCaptions menu;
    menu.Add("&File", "0");
    menu.Add("&Open", "0,1");
    EXPECT_EQ(menu.Count(), 2);
    EXPECT_EQ(menu.Key(2), "0,1");
    EXPECT_EQ(menu.Item(2), "&Open");
    EXPECT_EQ(runTimeErrorOf([&] { menu.Add("again", "0,1"); }), 457);
    EXPECT_EQ(runTimeErrorOf([&] { menu.Item(3); }), 9);
}

TEST(ToolbarCaptions, FixedSizeTableAddressedByPositionWithAnEmptySlotZero)
{
    ToolbarCaptions toolbar;
    EXPECT_EQ(toolbar.Count(), 0);
    toolbar.SetSize(14);
    EXPECT_EQ(toolbar.Count(), 14);
    toolbar.SetItem("NewDB", 1, "New database");
    toolbar.SetItem("Stat", 14, "Statistics");
    EXPECT_EQ(toolbar.Key(0), QString());  // a form may walk 0..Count
    EXPECT_EQ(toolbar.Item(0), QString());
    EXPECT_EQ(toolbar.Key(14), "Stat");
    EXPECT_EQ(toolbar.Item(1), "New database");
    EXPECT_EQ(toolbar.Key(7), QString());
    EXPECT_EQ(runTimeErrorOf([&] { toolbar.SetItem("Extra", 15, "x"); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { toolbar.Item(-1); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { toolbar.SetItem("newdb", 2, "again"); }), 457);
    toolbar.SetItem("NewDB", 1, "replaced in place");
    EXPECT_EQ(toolbar.Item(1), "replaced in place");
    toolbar.SetSize(1);
    EXPECT_EQ(toolbar.Count(), 1);
    EXPECT_EQ(toolbar.Key(1), "NewDB");  // what still fits is kept
    EXPECT_EQ(runTimeErrorOf([&] { toolbar.SetSize(-1); }), 9);
}
