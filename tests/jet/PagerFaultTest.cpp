// A failure at any single write or sync of a commit, or of the rollback at open, must leave
// the file in the state before the transaction or after it, never a mix; and what commit()
// told its caller decides which.
#include <gtest/gtest.h>

#include <filesystem>

#include "jet/Journal.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PageWorkload.h"
#include "testkit/TempDir.h"

namespace {

using namespace jet::testkit;
using jet::OpenMode;
using jet::Pager;
using Fault = FaultInjectionEnv::Fault;
using CrashMode = FaultInjectionEnv::CrashMode;

// The file after transactions 1 and 2 of a workload whose transaction 3 changes about 30
// pages and appends some, so that its commit is a long run of operations.
struct Prepared {
    PageWorkload workload{48, 40, 200};
    std::string bytes;

    Prepared() {
        TempDir dir{TempDir::Place::InMemory};
        const std::string path = dir.file("pages.db");
        workload.create(jet::Env::posix(), path, 2);
        bytes = readAll(path);
    }

    // How many operations a commit of transaction 3 takes when nothing fails.
    uint64_t commitOps() {
        TempDir dir{TempDir::Place::InMemory};
        const std::string path = dir.file("pages.db");
        writeAll(path, bytes);
        FaultInjectionEnv env;
        auto pager = Pager::open(env, path, OpenMode::ReadWrite, PageWorkload::probe);
        pager->begin();
        workload.change(*pager, 3);
        const uint64_t first = env.opCount();
        pager->commit();
        return env.opCount() - first;
    }
};

Prepared& prepared() {
    static Prepared p;
    return p;
}

class PagerFaultSweep : public ::testing::TestWithParam<std::tuple<Fault, CrashMode>> {};

TEST_P(PagerFaultSweep, AFaultAtAnyOperationOfACommitLeavesBeforeOrAfterNeverAMix) {
    const auto [fault, mode] = GetParam();
    Prepared& p = prepared();
    const uint64_t commitOps = p.commitOps();
    ASSERT_GT(commitOps, 40u) << "the transaction should be long enough to be interesting";

    int endedBefore = 0;
    for (uint64_t i = 1; i <= commitOps; ++i) {
        SCOPED_TRACE("fault at operation " + std::to_string(i) + " of " + std::to_string(commitOps));
        TempDir dir{TempDir::Place::InMemory};
        const std::string path = dir.file("pages.db");
        writeAll(path, p.bytes);
        FaultInjectionEnv env;
        bool committed = true;
        {
            auto pager = Pager::open(env, path, OpenMode::ReadWrite, PageWorkload::probe);
            pager->begin();
            p.workload.change(*pager, 3);
            env.injectFault(env.opCount() + i, fault);
            try {
                pager->commit();
            } catch (const jet::IoError&) {
                committed = false;
            }
            ASSERT_FALSE(committed) << "every operation of the commit matters";
            EXPECT_FALSE(pager->inTransaction());
            EXPECT_EQ(2u, p.workload.check(*pager)) << "a failed commit shows the state before";
            if (fault != Fault::PowerLoss) {
                // The disk still works: the file is restored at once, the pager goes on, and
                // the same transaction can be committed again.
                EXPECT_EQ(p.bytes, readAll(path));
                EXPECT_FALSE(std::filesystem::exists(jet::Journal::pathFor(path)));
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
        auto pager = Pager::open(env, path, OpenMode::ReadOnly, PageWorkload::probe);
        EXPECT_EQ(committed ? 3u : 2u, p.workload.check(*pager));
        if (!committed) ++endedBefore;
        if (HasFailure()) break;
    }
    if (fault == Fault::PowerLoss) {
        EXPECT_EQ(int(commitOps), endedBefore);
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
    const uint64_t commitOps = p.commitOps();
    for (uint64_t late : {commitOps - 2, commitOps - 1, commitOps}) {
        uint64_t restoreOps = 0;
        for (uint64_t j = 1; restoreOps == 0 || j <= restoreOps; ++j) {
            SCOPED_TRACE("late error at operation " + std::to_string(late) + ", power lost at operation " +
                         std::to_string(j) + " of the undo");
            TempDir dir{TempDir::Place::InMemory};
            const std::string path = dir.file("pages.db");
            writeAll(path, p.bytes);
            FaultInjectionEnv env;
            {
                auto pager = Pager::open(env, path, OpenMode::ReadWrite, PageWorkload::probe);
                pager->begin();
                p.workload.change(*pager, 3);
                const uint64_t first = env.opCount();
                env.injectFault(first + late, Fault::LateError);
                if (restoreOps > 0) env.injectFault(first + commitOps + j, Fault::PowerLoss);
                EXPECT_THROW(pager->commit(), jet::IoError);
                if (restoreOps == 0) {
                    // A dry run: count the undo's operations, which all succeed.
                    restoreOps = env.opCount() - first - commitOps;
                    ASSERT_GT(restoreOps, 4u);
                    EXPECT_EQ(p.bytes, readAll(path));
                    j = 0;
                    continue;
                }
                EXPECT_THROW(pager->begin(), jet::RuntimeError);
            }
            env.crash(j % 2 ? CrashMode::DropUnsynced : CrashMode::KeepSomeUnsynced, uint32_t(j));
            auto pager = Pager::open(env, path, OpenMode::ReadOnly, PageWorkload::probe);
            const uint64_t state = p.workload.check(*pager);  // throws on a mix
            if (late < commitOps) {
                EXPECT_EQ(2u, state) << "the journal was still on disk";
            } else {
                // The removal of the journal was durable although its sync failed: the
                // transaction was committed then. The undo may bring the state before back
                // or, when the power fails first, leave the state after; never a mix.
                EXPECT_TRUE(state == 2u || state == 3u) << state;
            }
            if (HasFailure()) return;
        }
    }
}

TEST(PagerRecoveryFaults, ARollbackCutShortAtOpenIsDoneAgainAtTheNextOpen) {
    Prepared& p = prepared();
    const uint64_t commitOps = p.commitOps();
    TempDir dir{TempDir::Place::InMemory};
    const std::string path = dir.file("pages.db");
    const std::string journal = jet::Journal::pathFor(path);

    // A writer killed just before syncing the database: every page written, the journal hot.
    writeAll(path, p.bytes);
    {
        FaultInjectionEnv env;
        auto pager = Pager::open(env, path, OpenMode::ReadWrite, PageWorkload::probe);
        pager->begin();
        p.workload.change(*pager, 3);
        env.injectFault(env.opCount() + commitOps - 2, Fault::PowerLoss);
        ASSERT_THROW(pager->commit(), jet::IoError);
    }
    const std::string hotDatabase = readAll(path);
    const std::string hotJournal = readAll(journal);
    ASSERT_NE(p.bytes, hotDatabase);

    uint64_t recoveryOps = 0;
    {
        FaultInjectionEnv env;
        auto pager = Pager::open(env, path, OpenMode::ReadOnly, PageWorkload::probe);
        EXPECT_EQ(jet::JournalRecovery::Outcome::RolledBack, pager->recovery().outcome);
        EXPECT_EQ(2u, p.workload.check(*pager));
        recoveryOps = env.opCount();
    }
    EXPECT_EQ(p.bytes, readAll(path));
    ASSERT_GT(recoveryOps, 5u);

    for (uint64_t i = 1; i <= recoveryOps; ++i) {
        SCOPED_TRACE("power lost at operation " + std::to_string(i) + " of the rollback");
        writeAll(path, hotDatabase);
        writeAll(journal, hotJournal);
        FaultInjectionEnv env;
        env.injectFault(i, Fault::PowerLoss);
        EXPECT_THROW(Pager::open(env, path, OpenMode::ReadWrite, PageWorkload::probe), jet::IoError);
        env.crash(CrashMode::KeepSomeUnsynced, uint32_t(i));
        auto pager = Pager::open(env, path, OpenMode::ReadWrite, PageWorkload::probe);
        EXPECT_EQ(jet::JournalRecovery::Outcome::RolledBack, pager->recovery().outcome);
        EXPECT_EQ(2u, p.workload.check(*pager));
        pager.reset();
        EXPECT_EQ(p.bytes, readAll(path));
    }
}

}  // namespace
