// The caption containers and the language item objects that hold them.

#include <gtest/gtest.h>

#include <limits>

#include "../support/TestSupport.h"

#include "lang/ClassIDGenerator.h"
#include "lang/LangApp.h"

using namespace lang;

TEST(CaptionList, CountsFromOneAndTakesAKeyOnceWhateverItsCase)
{
    CaptionList list;
    list.Add("first");
    list.Add("first");
    list.Add("second", "Scan");
    EXPECT_EQ(QStringList({list.Item(1), list.Key(1), list.Item(3), list.Key(3)}), QStringList({"first", "", "second", "Scan"}));
    EXPECT_EQ(runTimeErrorOf([&] { list.Add("again", "SCAN"); }), 457);
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(runTimeErrorOf([&] { list.Item(0); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { list.Key(4); }), 9);
    EXPECT_EQ(captionOr(list, 2, "design") + u'|' + captionOr(list, 4, "design"), "first|design");
    MenuCaptions menu;
    menu.Add("&File", "0");
    menu.Add("&Open", "0,1");
    EXPECT_EQ(menu.Key(2) + u'|' + menu.Item(2), "0,1|&Open");
    EXPECT_EQ(runTimeErrorOf([&] { menu.Add("again", "0,1"); }), 457);
}

TEST(ToolbarCaptions, AFixedTableByPositionWithAnEmptySlotZero)
{
    ToolbarCaptions toolbar;
    EXPECT_EQ(toolbar.Count(), 0);
    toolbar.SetSize(14);
    toolbar.SetItem("NewDB", 1, "New database");
    // A form may walk 0..Count; beyond is error 9, a key taken again in any case 457.
    EXPECT_EQ(toolbar.Key(0) + toolbar.Item(0) + u'|' + toolbar.Item(1), "|New database");
    EXPECT_EQ(runTimeErrorOf([&] { toolbar.Item(-1); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { toolbar.SetItem("Extra", 15, "x"); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { toolbar.SetItem("newdb", 2, "again"); }), 457);
}

TEST(LangItems, ContainersAreMadeOnFirstReadAndStatisticItemsNumberedFromOne)
{
    LangApp lang;
    EXPECT_EQ(lang.Table().Menu().Count(), 0);  // usable before any load
    StatisticLangItem first;
    StatisticLangItem second;
    EXPECT_EQ(second.ClassDebugID(), first.ClassDebugID() + 1);
    ClassIDGenerator fresh;
    EXPECT_EQ(fresh.next(), 1);
    ClassIDGenerator nearlyFull(std::numeric_limits<int32_t>::max() - 1);
    EXPECT_EQ(nearlyFull.next(), std::numeric_limits<int32_t>::max());
    EXPECT_EQ(runTimeErrorOf([&] { nearlyFull.next(); }), 6);
}
