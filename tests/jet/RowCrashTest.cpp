// Row writes that go wrong at every moment: a fault injected at each write and sync of one
// transaction (I/O error, full disk, torn write, power loss), and writer processes killed
// at random. Afterwards the file opens, checks clean and holds exactly the rows of the
// state before the transaction or after it. The long run is jet_row_crash_marathon.
#include <gtest/gtest.h>

#include <cstdio>

#include "jet/Database.h"
#include "testkit/CrashLoop.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PacedEnv.h"
#include "testkit/RowWorkload.h"
#include "testkit/WritableCopy.h"

namespace {

using namespace jet::testkit;
using Fault = FaultInjectionEnv::Fault;

class RowFaults : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(BothVersions, RowFaults, ::testing::Values("test2V1997.mdb", "test2V2003.mdb"));

// Transactions 1..3 are committed first; transaction 4 inserts, updates and deletes, and is
// the one that fails at each of its operations in turn.
TEST_P(RowFaults, AFaultAtEveryWriteOfATransactionLeavesTheStateBeforeOrAfter) {
    const auto before = RowWorkload::expected(3), after = RowWorkload::expected(4);
    ASSERT_NE(before, after);
    // Count the operations of the transaction once.
    uint64_t first = 0, last = 0;
    {
        WritableCopy copy(GetParam(), TempDir::Place::InMemory);
        FaultInjectionEnv env;
        auto db = jet::Database::open(copy.path(), env);
        for (uint64_t k = 1; k <= 3; ++k) RowWorkload::transaction(*db, k);
        first = env.opCount() + 1;
        RowWorkload::transaction(*db, 4);
        last = env.opCount();
    }
    ASSERT_GT(last, first);
    int runs = 0, rolledBack = 0, sawAfter = 0;
    for (Fault fault : {Fault::IoError, Fault::DiskFull, Fault::ShortWrite, Fault::PowerLoss, Fault::LateError}) {
        for (uint64_t op = first; op <= last; ++op) {
            SCOPED_TRACE("fault " + std::to_string(int(fault)) + " at operation " + std::to_string(op - first + 1));
            WritableCopy copy(GetParam(), TempDir::Place::InMemory);
            FaultInjectionEnv env;
            {
                auto db = jet::Database::open(copy.path(), env);
                for (uint64_t k = 1; k <= 3; ++k) RowWorkload::transaction(*db, k);
                env.injectFault(op, fault);
                try {
                    RowWorkload::transaction(*db, 4);
                } catch (const jet::RuntimeError&) {
                }
            }
            env.crash(FaultInjectionEnv::CrashMode::KeepSomeUnsynced, uint32_t(op));
            auto db = jet::Database::open(copy.path());
            rolledBack += db->pager().recovery().outcome == jet::JournalRecovery::Outcome::RolledBack;
            std::map<int32_t, std::string> rows;
            try {
                rows = RowWorkload::rowsOf(*db);
            } catch (const std::exception& e) {
                FAIL() << e.what();
            }
            EXPECT_TRUE(rows == before || rows == after) << rows.size() << " rows";
            sawAfter += rows == after;
            ++runs;
        }
    }
    std::printf("%d faulted transactions (%llu operations each), %d rolled back at open, %d ended committed\n", runs,
                static_cast<unsigned long long>(last - first + 1), rolledBack, sawAfter);
}

TEST(RowCrash, KilledRowWritersLeaveExactlyTheLastCommittedRows) {
    for (const char* file : {"test2V1997.mdb", "test2V2003.mdb"}) {
        WritableCopy copy(file);
        PacedEnv paced(jet::Env::posix(), std::chrono::microseconds(100));
        RowWorkload workload(paced);
        CrashLoopOptions options;
        options.kills = 15;
        options.seed = 777;
        options.maxLifetime = std::chrono::milliseconds(120);
        const CrashLoopResult result = runCrashLoop(workload, copy.path(), options);
        for (const std::string& failure : result.failures) ADD_FAILURE() << file << ": " << failure;
        EXPECT_EQ(options.kills, result.kills);
        std::printf("%s: %d kills, %d left a hot journal, %llu transactions committed\n", file, result.kills,
                    result.rolledBack, static_cast<unsigned long long>(result.transactions));
    }
}

}  // namespace
