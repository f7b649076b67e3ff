// The long crash test: thousands of writer processes killed at random moments, each
// followed by a full check of the file. Prints the figures; exits non-zero on the first
// file that is not exactly a committed state.
//   jet_pager_crash_marathon [--kills N] [--seed S] [--max-lifetime-us U]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "testkit/CrashLoop.h"
#include "testkit/PacedEnv.h"
#include "testkit/PageWorkload.h"
#include "testkit/TempDir.h"

int main(int argc, char** argv) {
    using namespace jet::testkit;
    CrashLoopOptions options;
    options.kills = 3000;
    options.seed = 1;
    options.maxLifetime = std::chrono::milliseconds(50);
    for (int i = 1; i + 1 < argc; i += 2) {
        const long long value = std::atoll(argv[i + 1]);
        if (std::strcmp(argv[i], "--kills") == 0) options.kills = int(value);
        else if (std::strcmp(argv[i], "--seed") == 0) options.seed = uint32_t(value);
        else if (std::strcmp(argv[i], "--max-lifetime-us") == 0) options.maxLifetime = std::chrono::microseconds(value);
        else {
            std::fprintf(stderr, "usage: %s [--kills N] [--seed S] [--max-lifetime-us U]\n", argv[0]);
            return 2;
        }
    }

    TempDir dir;
    const std::string path = dir.file("pages.db");
    // Writes paced so that kills land between them as well as inside the syncs.
    PacedEnv paced(jet::Env::posix(), std::chrono::microseconds(200));
    PageWorkload workload(16, 10, 160, paced);
    workload.create(jet::Env::posix(), path);
    const auto start = std::chrono::steady_clock::now();
    const CrashLoopResult result = runCrashLoop(workload, path, options);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    std::printf("kills: %d of %d\n", result.kills, options.kills);
    std::printf("hot journals rolled back: %d\n", result.rolledBack);
    std::printf("kills between a commit and its report: %d\n", result.committedUnreported);
    std::printf("transactions committed: %llu\n", static_cast<unsigned long long>(result.transactions));
    std::printf("time: %.1f s\n", seconds);
    for (const std::string& failure : result.failures) std::printf("FAILED: %s\n", failure.c_str());
    return result.failures.empty() && result.kills == options.kills ? 0 : 1;
}
