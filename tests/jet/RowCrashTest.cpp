// Row writes that go wrong at every moment: a fault injected at each write and sync of one
// transaction (I/O error, full disk, torn write, power loss, an error after the effect).
// Afterwards the file opens, checks clean and holds exactly the rows of the state before
// the transaction or after it. Writer processes killed at random are
// jet_row_crash_marathon's business (ctest -L long).
#include <gtest/gtest.h>

#include "table/Database.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/RowWorkload.h"
#include "testkit/TestFiles.h"

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
            std::map<int32_t, std::string> rows;
            try {
                rows = RowWorkload::rowsOf(*jet::Database::open(copy.path()));
            } catch (const std::exception& e) {
                FAIL() << e.what();
            }
            EXPECT_TRUE(rows == before || rows == after) << rows.size() << " rows";
        }
    }
}

}  // namespace
