// The order of a commit's writes and syncs is what makes it atomic; these tests read it
// off the operations the fault-injecting Env logs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "jet/Journal.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PlainDatabase.h"
#include "testkit/TempDir.h"

namespace {

using namespace jet::testkit;
using Kind = FaultInjectionEnv::OpKind;

class PagerCommitOrder : public ::testing::Test {
protected:
    void SetUp() override { makePlainDatabase(path, 8); }

    // The operations of one commit that changes pages 5, 1 and 3 and appends two pages.
    std::vector<FaultInjectionEnv::Op> commitOps() {
        auto pager = openPlain(env, path);
        pager->begin();
        for (uint32_t n : {5u, 1u, 3u}) std::memset(pager->writable(n), 0xC0 + int(n), 64);
        std::memset(pager->writable(pager->append()), 0xE1, 64);
        std::memset(pager->writable(pager->append()), 0xE2, 64);
        const size_t first = env.ops().size();
        pager->commit();
        return {env.ops().begin() + long(first), env.ops().end()};
    }

    TempDir dir{TempDir::Place::InMemory};
    std::string path = dir.file("plain.db");
    std::string journal = jet::Journal::pathFor(path);
    FaultInjectionEnv env;
};

TEST_F(PagerCommitOrder, TheJournalIsDurableBeforeAnyPageIsOverwrittenAndRemovedLast) {
    const auto ops = commitOps();
    ASSERT_GE(ops.size(), 10u);
    auto is = [&](size_t i, Kind kind, const std::string& p) { return ops[i].kind == kind && ops[i].path == p; };

    // Journal: created, header and one record per changed page, synced, folder synced.
    EXPECT_TRUE(is(0, Kind::Create, journal));
    size_t i = 1;
    while (i < ops.size() && is(i, Kind::Write, journal)) ++i;
    EXPECT_EQ(1u + 3u, i - 1) << "a header and the three originals; appended pages have none";
    EXPECT_TRUE(is(i++, Kind::Sync, journal));
    EXPECT_TRUE(is(i++, Kind::SyncDirectory, dir.path()));

    // Database: the changed and the appended pages, then its sync.
    std::vector<uint64_t> written;
    while (i < ops.size() && is(i, Kind::Write, path)) written.push_back(ops[i++].offset / plainPageSize);
    EXPECT_EQ((std::vector<uint64_t>{1, 3, 5, 8, 9}), written);
    EXPECT_TRUE(is(i++, Kind::Sync, path));

    // Only then the journal goes, and its removal is made durable.
    EXPECT_TRUE(is(i++, Kind::Remove, journal));
    EXPECT_TRUE(is(i++, Kind::SyncDirectory, dir.path()));
    EXPECT_EQ(ops.size(), i) << "nothing after the folder sync";
}

TEST_F(PagerCommitOrder, TheJournalHoldsTheOriginalsNotTheNewContents) {
    // Stop the commit right after the journal is durable and look at what it holds.
    auto pager = openPlain(env, path);
    pager->begin();
    std::memset(pager->writable(2), 0x77, plainPageSize);
    std::memset(pager->writable(6), 0x66, plainPageSize);
    // After create, 3 writes, sync and folder sync, the power fails at the first page write.
    env.injectFault(env.opCount() + 7, FaultInjectionEnv::Fault::PowerLoss);
    EXPECT_THROW(pager->commit(), jet::IoError);
    pager.reset();
    env.crash();

    jet::Journal j = jet::Journal::read(env, journal);
    ASSERT_TRUE(j.hot()) << j.defect();
    EXPECT_EQ(8u, j.originalPageCount());
    EXPECT_EQ(2u, j.recordCount());
    auto asString = [](std::span<const uint8_t> s) { return std::string(s.begin(), s.end()); };
    EXPECT_EQ(plainPage(2), asString(j.original(2)));
    EXPECT_EQ(plainPage(6), asString(j.original(6)));
    EXPECT_TRUE(j.original(3).empty());
}

}  // namespace
