#pragma once
// The crash test with real processes: a child process commits numbered transactions on a
// database and reports each commit to the parent as soon as commit returned; the parent
// kills it with SIGKILL at a random moment, opens the database (which rolls back whatever
// the child left half-done) and checks that it holds exactly the state after the last
// reported transaction, or after the one that was committing when the kill came. Then the
// next child goes on from there.
//
// A workload decides what a transaction does and how a state is recognised; the loop
// knows nothing about pages or rows, so the same loop drives raw page writes and row
// changes checked by the integrity checker.

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "os/Env.h"

namespace jet::testkit {

struct CommittedState {
    uint64_t transaction = 0;  // 0: the state before the first transaction
    bool rolledBack = false;   // opening found a hot journal and rolled it back
};

class CrashWorkload {
public:
    virtual ~CrashWorkload() = default;
    // In the child: opens the database through `env` and commits transactions next,
    // next + 1, ... until it is killed, calling committed(k) right after commit of
    // transaction k returned.
    virtual void runTransactions(Env& env, const std::string& path, uint64_t next,
                                 const std::function<void(uint64_t)>& committed) = 0;
    // In the parent after each kill: opens the database, checks it completely and tells
    // which transaction's state it holds. Throws (any std::exception) when it holds the
    // state after no transaction at all: a mix, a damaged file, lost data.
    virtual CommittedState committedState(const std::string& path) = 0;
};

struct CrashLoopOptions {
    int kills = 20;
    uint32_t seed = 1;
    // Each child lives for a random time up to this long before it is killed.
    std::chrono::microseconds maxLifetime{20000};
    // The child pauses after every write, so that a kill often lands between two page
    // writes of a commit instead of almost always inside a sync, which takes far longer.
    std::chrono::microseconds writePause{0};
};

struct CrashLoopResult {
    int kills = 0;                 // children killed and checked afterwards
    int rolledBack = 0;            // kills that left a hot journal behind
    int committedUnreported = 0;   // kills between a commit and its report
    uint64_t transactions = 0;     // transactions committed in the end
    std::vector<std::string> failures;  // the loop stops at the first one
};

// Runs the loop on the database at path, which must already hold a state the workload
// recognises.
CrashLoopResult runCrashLoop(CrashWorkload& workload, const std::string& path, const CrashLoopOptions& options);

}  // namespace jet::testkit
