#include <gtest/gtest.h>

#include "../support/RunTimeErrorOf.h"

#include "host/StringList.h"

using host::StringList;

TEST(StringList, KeepsItemsInOrderCountingFromOne)
{
    StringList list;
    list.Add("Orders");
    list.Add("");
    list.Add("Orders");
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Item(1), "Orders");
    EXPECT_EQ(list.Item(2), "");
    list.Remove(1);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Item(2), "Orders");
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

TEST(StringList, ItemsThatAreNotThereReadEmptyButCannotBeRemoved)
{
    StringList list;
    EXPECT_EQ(list.Item(1), "");
    list.Add("a");
    EXPECT_EQ(list.Item(0), "");
    EXPECT_EQ(list.Item(2), "");
    EXPECT_EQ(runTimeErrorOf([&] { list.Remove(2); }), 9);
    EXPECT_EQ(runTimeErrorOf([&] { list.Remove(0); }), 9);
    EXPECT_EQ(list.items(), QStringList{"a"});
}
