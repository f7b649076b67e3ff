// A failure at any single write or sync of a commit, or of the rollback at open, must leave
// the file in the state before the transaction or after it, never a mix; and what commit()
// told its caller decides which.
#include <gtest/gtest.h>

#include <filesystem>

#include "pager/Journal.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PageWorkload.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::OpenMode;
using Fault = FaultInjectionEnv::Fault;
using CrashMode = FaultInjectionEnv::CrashMode;

// The file after transactions 1 and 2 of a workload whose transaction 3 changes about 30
// pages and appends some, so that its commit is a long run of operations.
struct Prepared {
    PageWorkload workload{48, 40, 200};
    TempDir dir{TempDir::Place::InMemory};
    std::string path = dir.file("pages.db");
    std::string bytes;
    uint64_t commitOps = 0;  // operations of transaction 3's commit when nothing fails

    Prepared() {
        workload.create(jet::Env::posix(), path, 2);
        bytes = readAll(path);
        FaultInjectionEnv env;
        auto pager = begin3(env);
        const uint64_t first = env.opCount();
        pager->commit();
        commitOps = env.opCount() - first;
    }
    // Transaction 3 begun on a fresh copy of the file after 2, its commit still to come.
    std::unique_ptr<jet::Pager> begin3(jet::Env& env) {
        writeAll(path, bytes);
        std::filesystem::remove(jet::Journal::pathFor(path));  // what an earlier run's crash left
        std::filesystem::remove(dir.file("pages.ldb"));
        auto pager = PageWorkload::open(env, path);
        pager->begin();
        workload.change(*pager, 3);
        return pager;
    }
    uint64_t state() { return workload.check(*PageWorkload::open(jet::Env::posix(), path, OpenMode::ReadOnly)); }
};

Prepared& prepared() {
    static Prepared p;
    return p;
}

class PagerFaultSweep : public ::testing::TestWithParam<std::tuple<Fault, CrashMode>> {};

TEST_P(PagerFaultSweep, AFaultAtAnyOperationOfACommitLeavesBeforeOrAfterNeverAMix) {
    const auto [fault, mode] = GetParam();
    Prepared& p = prepared();
    ASSERT_GT(p.commitOps, 40u) << "the transaction should be long enough to be interesting";
    for (uint64_t i = 1; i <= p.commitOps; ++i) {
        SCOPED_TRACE("fault at operation " + std::to_string(i) + " of " + std::to_string(p.commitOps));
        FaultInjectionEnv env;
        bool committed = false;
        {
            auto pager = p.begin3(env);
            env.injectFault(env.opCount() + i, fault);
            EXPECT_THROW(pager->commit(), jet::IoError) << "every operation of the commit matters";
            EXPECT_FALSE(pager->inTransaction());
            EXPECT_EQ(2u, p.workload.check(*pager)) << "a failed commit shows the state before";
            if (fault != Fault::PowerLoss) {
                // The disk still works: the file is restored at once, the pager goes on, and
                // the same transaction can be committed again.
                EXPECT_EQ(p.bytes, readAll(p.path));
                EXPECT_FALSE(std::filesystem::exists(jet::Journal::pathFor(p.path)));
                pager->begin();
                p.workload.change(*pager, 3);
                pager->commit();
                committed = true;
            } else {
                // Once the file was touched the pager refuses to begin; before that, the
                // next commit fails on the dead disk. Either way nothing changes.
                EXPECT_THROW(
                    {
                        pager->begin();
                        p.workload.change(*pager, 3);
                        pager->commit();
                    },
                    jet::RuntimeError);
                EXPECT_EQ(2u, p.workload.check(*pager));
            }
        }
        env.crash(mode, uint32_t(i));
        EXPECT_EQ(committed ? 3u : 2u, p.state());
        if (HasFailure()) break;
    }
}

std::string sweepName(const ::testing::TestParamInfo<PagerFaultSweep::ParamType>& info) {
    static const char* const faults[] = {"IoError", "DiskFull", "ShortWrite", "PowerLoss", "LateError"};
    return std::string(faults[int(std::get<0>(info.param))]) +
           (std::get<1>(info.param) == CrashMode::DropUnsynced ? "DropUnsynced" : "KeepSomeUnsynced");
}

INSTANTIATE_TEST_SUITE_P(
    AllFaults, PagerFaultSweep,
    ::testing::Combine(::testing::Values(Fault::IoError, Fault::DiskFull, Fault::ShortWrite, Fault::PowerLoss,
                                         Fault::LateError),
                       ::testing::Values(CrashMode::DropUnsynced, CrashMode::KeepSomeUnsynced)),
    sweepName);

TEST(PagerRestoreFaults, APowerLossWhileUndoingAFailedCommitStillEndsBefore) {
    // The last steps of a commit fail after taking effect (the database synced, the journal
    // removed, the removal made durable); then the power fails at each step of the undo.
    Prepared& p = prepared();
    for (uint64_t late : {p.commitOps - 2, p.commitOps - 1, p.commitOps}) {
        uint64_t restoreOps = 0;
        for (uint64_t j = 0; j == 0 || j <= restoreOps; ++j) {
            SCOPED_TRACE("late error at operation " + std::to_string(late) + ", power lost at operation " +
                         std::to_string(j) + " of the undo");
            FaultInjectionEnv env;
            {
                auto pager = p.begin3(env);
                const uint64_t first = env.opCount();
                env.injectFault(first + late, Fault::LateError);
                if (j > 0) env.injectFault(first + p.commitOps + j, Fault::PowerLoss);
                EXPECT_THROW(pager->commit(), jet::IoError);
                if (j == 0) {
                    // A dry run: count the undo's operations, which all succeed.
                    restoreOps = env.opCount() - first - p.commitOps;
                    ASSERT_GT(restoreOps, 4u);
                    EXPECT_EQ(p.bytes, readAll(p.path));
                    continue;
                }
                EXPECT_THROW(pager->begin(), jet::RuntimeError);
            }
            env.crash(j % 2 ? CrashMode::DropUnsynced : CrashMode::KeepSomeUnsynced, uint32_t(j));
            const uint64_t state = p.state();  // throws on a mix
            // Once the journal's removal was durable the transaction was committed, though
            // its folder sync failed: the undo may then end before or, cut short, after.
            if (late < p.commitOps) EXPECT_EQ(2u, state) << "the journal was still on disk";
            else EXPECT_TRUE(state == 2u || state == 3u) << state;
            if (HasFailure()) return;
        }
    }
}

TEST(PagerRecoveryFaults, ARollbackCutShortAtOpenIsDoneAgainAtTheNextOpen) {
    Prepared& p = prepared();
    const std::string journal = jet::Journal::pathFor(p.path);
    // A writer killed just before syncing the database: every page written, the journal hot.
    {
        FaultInjectionEnv env;
        auto pager = p.begin3(env);
        env.injectFault(env.opCount() + p.commitOps - 2, Fault::PowerLoss);
        ASSERT_THROW(pager->commit(), jet::IoError);
    }
    const std::string hotDatabase = readAll(p.path), hotJournal = readAll(journal);
    ASSERT_NE(p.bytes, hotDatabase);
    uint64_t recoveryOps = 0;
    {
        FaultInjectionEnv env;
        auto pager = PageWorkload::open(env, p.path, OpenMode::ReadOnly);
        EXPECT_EQ(jet::JournalRecovery::Outcome::RolledBack, pager->recovery().outcome);
        recoveryOps = env.opCount();
    }
    EXPECT_EQ(p.bytes, readAll(p.path));
    ASSERT_GT(recoveryOps, 5u);
    for (uint64_t i = 1; i <= recoveryOps; ++i) {
        SCOPED_TRACE("power lost at operation " + std::to_string(i) + " of the rollback");
        writeAll(p.path, hotDatabase);
        writeAll(journal, hotJournal);
        FaultInjectionEnv env;
        env.injectFault(i, Fault::PowerLoss);
        EXPECT_THROW(PageWorkload::open(env, p.path), jet::IoError);
        env.crash(CrashMode::KeepSomeUnsynced, uint32_t(i));
        EXPECT_EQ(jet::JournalRecovery::Outcome::RolledBack, PageWorkload::open(env, p.path)->recovery().outcome);
        EXPECT_EQ(p.bytes, readAll(p.path));
    }
}

}  // namespace
