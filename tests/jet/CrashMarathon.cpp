// The long crash tests: thousands of writer processes killed at random moments, each
// followed by a full check of the file: raw page transactions, or row changes checked by
// the integrity checker and against the rows they must leave. Prints the figures; exits
// non-zero on the first file that is not exactly a committed state.
//   jet_crash_marathon pages|rows [--kills N] [--seed S] [--file test2V1997.mdb|test2V2003.mdb]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "testkit/CrashLoop.h"
#include "testkit/PageWorkload.h"
#include "testkit/RowWorkload.h"
#include "testkit/TestFiles.h"

int main(int argc, char** argv) {
    using namespace jet::testkit;
    const bool rows = argc > 1 && std::strcmp(argv[1], "rows") == 0;
    CrashLoopOptions options;
    options.kills = 2000;
    options.maxLifetime = std::chrono::milliseconds(rows ? 120 : 50);
    options.writePause = std::chrono::microseconds(rows ? 100 : 200);
    std::string file = "test2V2003.mdb";
    for (int i = 2; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--kills") == 0) options.kills = std::atoi(argv[i + 1]);
        else if (std::strcmp(argv[i], "--seed") == 0) options.seed = uint32_t(std::atoll(argv[i + 1]));
        else if (std::strcmp(argv[i], "--file") == 0) file = argv[i + 1];
        else argc = 0;
    }
    if (argc < 2 || (!rows && std::strcmp(argv[1], "pages") != 0)) {
        std::fprintf(stderr, "usage: %s pages|rows [--kills N] [--seed S] [--file NAME]\n", argv[0]);
        return 2;
    }
    WritableCopy copy(file);
    const std::string path = rows ? copy.path() : copy.dir().file("pages.db");
    std::unique_ptr<CrashWorkload> workload;
    if (rows) {
        workload = std::make_unique<RowWorkload>();
    } else {
        auto pages = std::make_unique<PageWorkload>();
        pages->create(jet::Env::posix(), path);
        workload = std::move(pages);
    }
    const auto start = std::chrono::steady_clock::now();
    const CrashLoopResult result = runCrashLoop(*workload, path, options);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%s: %d of %d kills, %d hot journals rolled back, %d kills between a commit and its report, "
                "%llu transactions committed, %.1f s\n",
                rows ? file.c_str() : "pages", result.kills, options.kills, result.rolledBack,
                result.committedUnreported, static_cast<unsigned long long>(result.transactions), seconds);
    for (const std::string& failure : result.failures) std::printf("FAILED: %s\n", failure.c_str());
    return result.failures.empty() && result.kills == options.kills ? 0 : 1;
}
