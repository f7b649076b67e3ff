#pragma once
// Real row writes for the crash tests: transaction k inserts row 1000 + k into a copy of a
// fixture table with a unique index, a memo of one of three size classes (inline, one
// long-value row, a chain), rewrites the memo of the row before it every third time and
// deletes the row two before it every fourth time. A state is recognised by recomputing
// the rows after transaction T and comparing the whole table, after the integrity checker
// found nothing.

#include <map>
#include <optional>
#include <string>

#include "CrashLoop.h"
#include "os/Env.h"

namespace jet {
class Database;
}

namespace jet::testkit {

class RowWorkload final : public CrashWorkload {
public:
    // The database is a copy of a fixture with the table MSP_PROJECTS (test2V1997.mdb or
    // test2V2003.mdb).
    // The rows the workload owns (id -> memo) after `transactions` transactions.
    static std::map<int32_t, std::string> expected(uint64_t transactions);
    // The rows the database holds, after checking it; throws when it does not check clean.
    static std::map<int32_t, std::string> rowsOf(Database& db);
    // Runs transaction k on an open database.
    static void transaction(Database& db, uint64_t k);

    void runTransactions(Env& env, const std::string& path, uint64_t next,
                         const std::function<void(uint64_t)>& committed) override;
    CommittedState committedState(const std::string& path) override;
};

}  // namespace jet::testkit
