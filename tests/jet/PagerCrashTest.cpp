// Real processes killed with SIGKILL in the middle of their transactions; the short run of
// the crash loop (the long one is jet_pager_crash_marathon).
#include <gtest/gtest.h>

#include "testkit/CrashLoop.h"
#include "testkit/PacedEnv.h"
#include "testkit/PageWorkload.h"
#include "testkit/TempDir.h"

namespace {

using namespace jet::testkit;

TEST(PagerCrash, KilledWritersLeaveExactlyTheLastCommittedState) {
    TempDir dir;
    const std::string path = dir.file("pages.db");
    // Writes paced so that kills land between them as well as inside the syncs.
    PacedEnv paced(jet::Env::posix(), std::chrono::microseconds(200));
    PageWorkload workload(16, 10, 160, paced);
    workload.create(jet::Env::posix(), path);

    CrashLoopOptions options;
    options.kills = 40;
    options.seed = 20240601;
    options.maxLifetime = std::chrono::milliseconds(50);
    const CrashLoopResult result = runCrashLoop(workload, path, options);

    for (const std::string& failure : result.failures) ADD_FAILURE() << failure;
    EXPECT_EQ(options.kills, result.kills);
    RecordProperty("kills", result.kills);
    RecordProperty("rolled_back", result.rolledBack);
    RecordProperty("transactions", int(result.transactions));
    std::printf("%d kills, %d left a hot journal, %d between commit and report, %llu transactions committed\n",
                result.kills, result.rolledBack, result.committedUnreported,
                static_cast<unsigned long long>(result.transactions));
}

}  // namespace
