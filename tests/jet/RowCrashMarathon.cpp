// The long crash test with real row writes: thousands of writer processes killed at random
// moments, each followed by a full check of the file and of its rows.
//   jet_row_crash_marathon [--kills N] [--seed S] [--file test2V1997.mdb|test2V2003.mdb]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "testkit/CrashLoop.h"
#include "testkit/PacedEnv.h"
#include "testkit/RowWorkload.h"
#include "testkit/WritableCopy.h"

int main(int argc, char** argv) {
    using namespace jet::testkit;
    CrashLoopOptions options;
    options.kills = 2000;
    options.seed = 1;
    options.maxLifetime = std::chrono::milliseconds(120);
    std::string file = "test2V2003.mdb";
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--kills") == 0) options.kills = std::atoi(argv[i + 1]);
        else if (std::strcmp(argv[i], "--seed") == 0) options.seed = uint32_t(std::atoll(argv[i + 1]));
        else if (std::strcmp(argv[i], "--file") == 0) file = argv[i + 1];
        else {
            std::fprintf(stderr, "usage: %s [--kills N] [--seed S] [--file NAME]\n", argv[0]);
            return 2;
        }
    }
    WritableCopy copy(file);
    PacedEnv paced(jet::Env::posix(), std::chrono::microseconds(100));
    RowWorkload workload(paced);
    const auto start = std::chrono::steady_clock::now();
    const CrashLoopResult result = runCrashLoop(workload, copy.path(), options);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("file: %s\nkills: %d of %d\nhot journals rolled back: %d\n", file.c_str(), result.kills, options.kills,
                result.rolledBack);
    std::printf("kills between a commit and its report: %d\ntransactions committed: %llu\ntime: %.1f s\n",
                result.committedUnreported, static_cast<unsigned long long>(result.transactions), seconds);
    for (const std::string& failure : result.failures) std::printf("FAILED: %s\n", failure.c_str());
    return result.failures.empty() && result.kills == options.kills ? 0 : 1;
}
