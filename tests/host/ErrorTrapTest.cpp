#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "host/ErrorTrap.h"
#include "host/VbError.h"

using namespace host;

TEST(ErrorTrap, HandsBackTheErrorThatEndedTheCode)
{
    int reached = 0;
    const auto error = trapError([&] {
        ++reached;
        throw vbError(vberr::Overflow);
        ++reached;
    });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number(), vberr::Overflow);
    EXPECT_EQ(reached, 1);
    EXPECT_FALSE(trapError([] {}));
}

TEST(ErrorTrap, EveryExceptionCountsAsARunTimeError)
{
    EXPECT_EQ(trapError([] { throw std::bad_alloc(); })->number(), vberr::OutOfMemory);
    const auto other = trapError([] { throw std::logic_error("broken"); });
    EXPECT_EQ(other->number(), vberr::InternalError);
    EXPECT_EQ(descriptionOf(*other), "Internal error: broken");
    EXPECT_EQ(trapError([] { throw 42; })->number(), vberr::InternalError);
}

TEST(ErrorTrap, ResumeNextEndsOnlyTheStatementThatFailed)
{
    std::vector<int> ran;
    resumeNext({
        [&] { ran.push_back(1); },
        [&] {
            ran.push_back(2);
            throw vbError(vberr::SubscriptOutOfRange);
        },
        [&] {
            throw std::bad_alloc();
        },
        [&] { ran.push_back(4); },
    });
    EXPECT_EQ(ran, (std::vector<int>{1, 2, 4}));
}
