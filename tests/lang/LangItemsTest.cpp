#include <gtest/gtest.h>

#include "jet/RuntimeError.h"

#include <limits>

#include "lang/ClassIDGenerator.h"
#include "lang/LangApp.h"

using namespace lang;

TEST(LangItems, EveryContainerExistsOnFirstReadAndStaysTheSame)
{
    const LangApp lang;
    EXPECT_EQ(lang.Table().Menu().Count(), 0);  // usable before any load
    EXPECT_EQ(&lang.Table(), &lang.Table());
    EXPECT_EQ(&lang.Table().Common(), &lang.Table().Common());
    EXPECT_EQ(&lang.Statistic().ToolBar(), &lang.Statistic().ToolBar());
    EXPECT_NE(&lang.Buttons(), &lang.NumberType());
    EXPECT_NE(&lang.Table().Login(), &lang.Table().NewDataBase());
    EXPECT_EQ(lang.TransUnitFrame().Count(), 0);
    EXPECT_EQ(lang.Version(), 0);
    EXPECT_EQ(lang.EngCaption(), QString());
}

TEST(LangItems, SettingAPropertyReplacesTheObject)
{
    LangApp lang;
    lang.Table().Common().Add("old");
    auto replacement = std::make_shared<CaptionList>();
    replacement->Add("new");
    lang.Table().setCommon(replacement);
    EXPECT_EQ(lang.Table().Common().Item(1), "new");
    EXPECT_EQ(&lang.Table().Common(), replacement.get());
    lang.setTable(nullptr);
    EXPECT_EQ(lang.Table().Common().Count(), 0);  // emptied: created again on the next read
}

TEST(LangItems, StatisticItemsGetConsecutiveDebugIds)
{
    StatisticLangItem first;
    StatisticLangItem second;
    EXPECT_GT(first.ClassDebugID(), 0);
    EXPECT_EQ(second.ClassDebugID(), first.ClassDebugID() + 1);
}

TEST(LangItems, TheIdGeneratorOverflowsLikeA32BitCounter)
{
    ClassIDGenerator fresh;
    EXPECT_EQ(fresh.next(), 1);
    EXPECT_EQ(fresh.next(), 2);
    ClassIDGenerator nearlyFull(std::numeric_limits<int32_t>::max() - 1);
    EXPECT_EQ(nearlyFull.next(), std::numeric_limits<int32_t>::max());
    try {
        nearlyFull.next();
        ADD_FAILURE() << "expected overflow";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(e.number(), 6);
    }
}
