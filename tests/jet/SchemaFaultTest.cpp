// A failure at any write or sync of CREATE TABLE and DROP TABLE, a power loss included,
// leaves the file as it was before the statement or as it is after it: never a table half
// created or half dropped, and never one the catalogue lists without its definition.
#include <gtest/gtest.h>

#include <filesystem>

#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Database.h"
#include "jet/NewDatabase.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/TempDir.h"
#include "testkit/WritableCopy.h"

namespace {

using namespace jet::testkit;
using Fault = FaultInjectionEnv::Fault;
using CrashMode = FaultInjectionEnv::CrashMode;

struct Scenario {
    const char* name;
    std::string (*prepare)();  // the file before the statement
    const char* statement;
    const char* table;         // listed after the statement, not before (or the reverse)
    bool creates;
};

std::string newFileWithATable() {
    TempDir dir{TempDir::Place::InMemory};
    jet::createDatabase(dir.file("n.mdb"), jet::Version::Jet4);
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + dir.file("n.mdb"));
    cn.Execute("CREATE TABLE Before (a INTEGER)");
    cn.Close();
    return readAll(dir.file("n.mdb"));
}

std::string accessFile() { return readAll(fixturePath("test2V1997.mdb")); }

const Scenario scenarios[] = {
    {"CreateTable", newFileWithATable, "CREATE TABLE Added (Name VARCHAR (255), Notes MEMO, Amount DOUBLE);", "Added",
     true},
    {"DropAccessTable", accessFile, "DROP TABLE MSP_PROJECTS;", "MSP_PROJECTS", false},
};

class SchemaFaults : public ::testing::TestWithParam<std::tuple<Scenario, Fault>> {};

bool listed(const std::string& path, const char* table) {
    auto db = jet::Database::open(path);
    const jet::CheckReport report = jet::check(*db);
    EXPECT_TRUE(report.clean()) << report.issues.front().where << ": " << report.issues.front().problem;
    return db->catalog().findTable(table) != nullptr;
}

TEST_P(SchemaFaults, AFaultAtAnyOperationLeavesTheStatementDoneOrUndone) {
    const auto& [scenario, fault] = GetParam();
    const std::string before = scenario.prepare();
    TempDir dir{TempDir::Place::InMemory};
    const std::string path = dir.file("db.mdb");
    const std::string connection = "Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path;

    // A run without faults counts the statement's operations.
    uint64_t ops = 0;
    {
        writeAll(path, before);
        FaultInjectionEnv env;
        jet::Connection cn(env);
        cn.Open(connection);
        const uint64_t first = env.opCount();
        cn.Execute(scenario.statement);
        ops = env.opCount() - first;
        cn.Close();
        ASSERT_EQ(scenario.creates, listed(path, scenario.table));
    }
    ASSERT_GT(ops, 8u);

    int undone = 0;
    for (uint64_t i = 1; i <= ops; ++i) {
        SCOPED_TRACE("fault at operation " + std::to_string(i) + " of " + std::to_string(ops));
        // A lock file a crash left behind would change the count of operations.
        std::filesystem::remove(dir.file("db.ldb"));
        writeAll(path, before);
        FaultInjectionEnv env;
        bool reported = false;
        {
            jet::Connection cn(env);
            cn.Open(connection);
            env.injectFault(env.opCount() + i, fault);
            try {
                cn.Execute(scenario.statement);
            } catch (const jet::RuntimeError&) {
                reported = true;
            }
        }
        EXPECT_TRUE(reported) << "every operation of the statement matters";

        env.crash(CrashMode::KeepSomeUnsynced, uint32_t(i));
        const bool done = listed(path, scenario.table) == scenario.creates;
        if (!done) {
            ++undone;
            EXPECT_EQ(before, readAll(path)) << "undone means exactly the file before";
        }
        if (HasFailure()) break;
    }
    // A statement that reported its failure before its commit reached the disk is undone.
    EXPECT_GT(undone, 0);
}

INSTANTIATE_TEST_SUITE_P(Statements, SchemaFaults,
                         ::testing::Combine(::testing::ValuesIn(scenarios),
                                            ::testing::Values(Fault::IoError, Fault::PowerLoss)),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param).name) +
                                    (std::get<1>(info.param) == Fault::IoError ? "IoError" : "PowerLoss");
                         });

}  // namespace
