// Data-definition statements through Connection::Execute: what each one leaves in the file
// (definition, maps, catalogue and permission rows, dates, design properties, numbered
// rows), every refusal with Jet's number after which the file is exactly as it was, and a
// fault at any write or sync of CREATE TABLE and DROP TABLE, which leaves the statement
// done or undone, never half.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "format/UsageMap.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/DateSerial.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/Table.h"
#include "table/ValueReader.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/Session.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Variant;
using jet::Version;
namespace err = jet::err;

// A new file of a version, in a folder of its own.
struct NewFile {
    explicit NewFile(Version v, uint16_t codePage = 1251) : path(dir.file("db.mdb")) { jet::createDatabase(path, v, codePage); }
    TempDir dir;
    std::string path;
};

class SchemaBothVersions : public ::testing::TestWithParam<Version> {};
INSTANTIATE_TEST_SUITE_P(Versions, SchemaBothVersions, ::testing::Values(Version::Jet3, Version::Jet4),
                         [](const auto& info) { return info.param == Version::Jet3 ? "Jet3" : "Jet4"; });

TEST_P(SchemaBothVersions, CreateTableWritesDefinitionCatalogueRowAndPermissions) {
    NewFile f(GetParam());
    Session s(f.path);
    const double before = jet::nowSerial();
    s.execute("create table Orders (Id COUNTER, Customer VARCHAR (40), Notes MEMO, Paid BIT, Total CURRENCY)");
    const auto& def = s.def("Orders");
    EXPECT_EQ(0x4E, def.tableType());
    EXPECT_EQ(5, def.maxColumns());
    EXPECT_EQ(2, def.varColumns());
    EXPECT_TRUE(def.findColumn("Id")->isAutoNumber());
    EXPECT_EQ(GetParam() == Version::Jet3 ? 40 : 80, def.findColumn("customer")->length);
    EXPECT_EQ(0, def.findColumn("Paid")->fixedOffset) << "Yes/No values live in the null mask";
    EXPECT_EQ(4, def.findColumn("Total")->fixedOffset);
    ASSERT_EQ(1u, def.longValueMaps().size());
    EXPECT_EQ(def.findColumn("Notes")->number, def.longValueMaps()[0].columnNumber);
    const auto& e = s.entry("orders");
    EXPECT_EQ(int32_t(def.page()), e.id);
    EXPECT_TRUE(e.isUserTable());
    EXPECT_NEAR(before, e.dateCreate, 2.0 / 86400);
    EXPECT_EQ(e.dateCreate, e.dateUpdate);
    auto schema = s.cn.OpenSchema(jet::ado::SchemaTables, {{}, {}, Variant::string("Orders")});
    EXPECT_EQ(1, schema->RecordCount()) << "listed at once";

    // The permission rows Access derives from the Tables container: its two entries that
    // are not the inheritable limited one, with the rights 0xFFEFF, the Admin user first.
    auto aces = s.db().openTable("MSysACEs");
    auto value = [&](jet::RowLocation at, const char* name) {
        const jet::Column& c = *aces->def().findColumn(name);
        return jet::readValue(s.db(), c, aces->reader(at).column(c));
    };
    std::vector<std::pair<std::vector<uint8_t>, int32_t>> granted;
    for (auto at : aces->rowLocations())
        if (value(at, "ObjectId").asLong() == e.id) granted.emplace_back(value(at, "SID").asBytes(), value(at, "ACM").asLong());
    ASSERT_EQ(2u, granted.size());
    EXPECT_EQ(GetParam() == Version::Jet3 ? hex("03 01") : hex("07 E8"), granted[0].first);
    for (const auto& g : granted) EXPECT_EQ(0xFFEFF, g.second);
    s.expectClean();
}

TEST_P(SchemaBothVersions, AlterTableKeepsOldRowsAndColumnNumbersAndNumbersRowsForANewCounter) {
    NewFile f(GetParam());
    Session s(f.path);
    s.execute("CREATE TABLE T (__custom INTEGER);");
    s.addRows("T", {{{"__custom", Variant::longValue(1)}}, {{"__custom", Variant::longValue(2)}}, {{"__custom", Variant::longValue(3)}}});
    ASSERT_EQ(0, s.def("T").varColumns()) << "rows without a variable section so far";
    const double created = s.entry("T").dateCreate;
    s.execute("ALTER TABLE T ADD Label VARCHAR (255)");
    EXPECT_GE(s.entry("T").dateUpdate, created);
    EXPECT_EQ(created, s.entry("T").dateCreate);
    s.execute("ALTER TABLE T ADD Amount DOUBLE");
    s.execute("ALTER TABLE T DROP Label");
    s.execute("ALTER TABLE T ADD Note TEXT(10)");
    const auto& def = s.def("T");
    EXPECT_EQ(4, def.maxColumns()) << "numbers of dropped columns are not given out again";
    EXPECT_EQ(2, def.varColumns()) << "nor their variable slots";
    EXPECT_EQ(1, def.findColumn("Note")->varIndex);
    {
        jet::Recordset rs;
        rs.Open("SELECT * FROM T", s.cn, 2, 4, -1);
        rs.MoveFirst();
        EXPECT_TRUE(rs.Fields()["Note"].Value().isNull());
        rs.Fields()["Note"].setValue(Variant::string("ten chars!"));
        rs.Fields()["Amount"].setValue(Variant::doubleValue(0.5));
        rs.UpdateBatch(3);
    }
    s.execute("ALTER TABLE T RENAME Note TO Remark");
    EXPECT_EQ(Variant::string("ten chars!"), s.column("T", "Remark")[0]);
    EXPECT_EQ((std::vector<Variant>{Variant::longValue(1), Variant::longValue(2), Variant::longValue(3)}),
              s.column("T", "__custom"));

    // A COUNTER added to rows that exist numbers them in physical order, and counts on.
    s.execute("ALTER TABLE T ADD Number COUNTER");
    EXPECT_EQ((std::vector<Variant>{Variant::longValue(1), Variant::longValue(2), Variant::longValue(3)}),
              s.column("T", "Number"));
    EXPECT_EQ(3u, s.def("T").autoNumber());
    s.addRows("T", {{{"__custom", Variant::longValue(4)}}});
    EXPECT_EQ(Variant::longValue(4), s.column("T", "Number").back());
    s.expectClean();
}

// The statements are refused as Jet refuses them, and a refused statement writes nothing.
TEST_P(SchemaBothVersions, EveryRefusalHasJetsNumberAndLeavesTheFileAsItWas) {
    NewFile f(GetParam());
    Session s(f.path);
    s.execute("CREATE TABLE T (a INTEGER, b TEXT(20))");
    s.execute("CREATE TABLE One (only INTEGER)");
    const std::string original = readAll(f.path);
    const std::string tooLong(65, 'n');
    std::string columns;
    for (int i = 0; i < 256; ++i) columns += (i ? ", c" : "c") + std::to_string(i) + " BYTE";
    const std::pair<std::string, int32_t> cases[] = {
        {"CREATE TABLE my table (a INTEGER)", err::SyntaxError},
        {"CREATE TABLE table (a INTEGER)", err::SyntaxError},
        {"ALTER TABLE T ADD select INTEGER", err::SyntaxError},
        {"ALTER TABLE T ADD x WIDGET", err::SyntaxError},
        {"DROP TABLE Nowhere", err::NoSuchTable},
        {"ALTER TABLE Nowhere ADD x INTEGER", err::NoSuchTable},
        {"ALTER TABLE T DROP zz", err::NoSuchColumn},
        {"ALTER TABLE T RENAME zz TO yy", err::NoSuchColumn},
        {"CREATE TABLE t (x INTEGER)", err::ObjectExists},
        {"CREATE TABLE MSysObjects (x INTEGER)", err::ObjectExists},
        {"ALTER TABLE T ADD B DOUBLE", err::ObjectExists},
        {"CREATE TABLE U (x INTEGER, X TEXT)", err::ObjectExists},
        {"ALTER TABLE T RENAME a TO B", err::ObjectExists},
        {"ALTER TABLE One DROP only", err::Unspecified},
        {"CREATE TABLE [" + tooLong + "] (a INTEGER)", err::SyntaxError},
        {"ALTER TABLE T ADD [" + tooLong + "] INTEGER", err::SyntaxError},
        {"CREATE TABLE [a.b] (a INTEGER)", err::SyntaxError},
        {"ALTER TABLE T RENAME a TO [x!y]", err::SyntaxError},
        {"CREATE TABLE [ lead] (a INTEGER)", err::SyntaxError},
        {"CREATE TABLE Wide (" + columns + ")", err::Unspecified},
        {"ALTER TABLE MSysACEs ADD x INTEGER", err::ReadOnly},
        {"DROP TABLE MSysQueries", err::ReadOnly},
    };
    for (const auto& [sql, number] : cases) EXPECT_EQ(number, s.errorOf(sql)) << sql;
    s.errorOf("DROP TABLE Nowhere");
    EXPECT_EQ("Table 'Nowhere' does not exist.", s.lastError);
    s.errorOf("CREATE TABLE t (x INTEGER)");
    EXPECT_EQ("Table 't' already exists.", s.lastError);
    s.errorOf("ALTER TABLE T ADD B DOUBLE");
    EXPECT_EQ("Field 'B' already exists in table 'T'.", s.lastError);
    EXPECT_EQ(original, readAll(f.path));
    EXPECT_EQ(GetParam() == Version::Jet3 ? err::SyntaxError : 0, s.errorOf("ALTER TABLE T ADD d DECIMAL(10,2)"))
        << "Decimal exists in Jet 4 only";
    jet::Connection closed;
    EXPECT_THROW(closed.Execute("DROP TABLE T"), jet::RuntimeError);
}

TEST(SchemaWriter, TheLastOfTwoHundredAndFiftyFiveColumnsIsAddedAndTheNextRefused) {
    NewFile f(Version::Jet4);
    Session s(f.path);
    std::string columns;
    for (int i = 0; i < 254; ++i) columns += (i ? ", c" : "c") + std::to_string(i) + " BYTE";
    s.execute("CREATE TABLE Wide (" + columns + ")");
    EXPECT_EQ(0, s.errorOf("ALTER TABLE Wide ADD last BYTE"));
    EXPECT_EQ(err::Unspecified, s.errorOf("ALTER TABLE Wide ADD one_more BYTE"));
    EXPECT_EQ("Too many fields defined.", s.lastError);
    s.execute("ALTER TABLE Wide DROP c0");
    EXPECT_EQ(err::Unspecified, s.errorOf("ALTER TABLE Wide ADD one_more BYTE")) << "Jet counts every number ever given";
    const std::vector<uint32_t> pages = s.def("Wide").pages();
    ASSERT_GT(pages.size(), 1u) << "a definition over several pages";
    for (int i = 1; i < 254; ++i) s.execute("ALTER TABLE Wide DROP c" + std::to_string(i));
    EXPECT_EQ(std::vector<uint32_t>{pages.front()}, s.def("Wide").pages()) << "shrunk onto one page";
    const auto free = jet::UsageMap::read(s.db().pager(), s.db().format(), 1u << 8);
    for (size_t i = 1; i < pages.size(); ++i) EXPECT_TRUE(free.contains(pages[i])) << "continuation pages go back";
    s.expectClean();
}

// Access 97 files of this program are in code page 1251, whose Jet 3 index keys are not
// known: Cyrillic can be stored but not put into an index, and table names are indexed.
TEST(SchemaWriter, CyrillicInAnAccess97FileGoesIntoColumnsButNotIntoTableNames) {
    NewFile f(Version::Jet3, 1251);
    Session s(f.path);
    EXPECT_EQ(err::Unspecified, s.errorOf("CREATE TABLE Таблица (a INTEGER)"));
    EXPECT_NE(std::string::npos, s.lastError.find("ParentIdName")) << s.lastError;
    EXPECT_NE(std::string::npos, s.lastError.find("Cyrillic")) << s.lastError;
    s.execute("CREATE TABLE Sheet (Имя VARCHAR (255))");
    s.execute("ALTER TABLE Sheet ADD Цена DOUBLE");
    s.addRows("Sheet", {{{"имя", Variant::string("Ёжик в тумане")}}});
    EXPECT_EQ(Variant::string("Ёжик в тумане"), s.column("Sheet", "Имя")[0]);
    EXPECT_EQ(err::SyntaxError, s.errorOf("ALTER TABLE Sheet ADD 名前 INTEGER")) << "not in the code page";
    s.expectClean();
    NewFile four(Version::Jet4);
    Session s4(four.path);
    s4.execute("CREATE TABLE Таблица (名前 TEXT(10))");
    EXPECT_NE(nullptr, s4.db().catalog().findTable("таблица")) << "Jet 4 text is Unicode";
    s4.expectClean();
}

TEST(SchemaWriter, AccessTablesKeepTheirIndexesRelationshipsAndColumnProperties) {
    WritableCopy copy("testV2000.mdb");
    Session s(copy.path());
    EXPECT_EQ(err::Unspecified, s.errorOf("ALTER TABLE Table1 DROP B")) << "B has an index";
    EXPECT_EQ("Cannot delete a field that is part of an index or is needed by the system.", s.lastError);
    s.execute("ALTER TABLE Table1 ADD Extra MEMO");
    s.execute("ALTER TABLE Table1 DROP C");
    s.execute("ALTER TABLE Table1 RENAME B TO Bee");
    const Variant key = s.column("Table1", "A")[0];
    EXPECT_THROW(s.addRows("Table1", {{{"A", key}}}), jet::RuntimeError) << "the primary key still refuses a duplicate";
    s.addRows("Table1", {{{"A", Variant::string("new key")}, {"Bee", Variant::string("indexed")}, {"Extra", Variant::string(std::string(3000, 'm'))}}});
    s.expectClean();

    WritableCopy related("indexTestV1997.mdb");
    Session r(related.path());
    int refused = 0;
    for (const auto* e : r.db().catalog().userTables()) refused += r.errorOf("DROP TABLE " + e->name) == err::Unspecified;
    EXPECT_GE(refused, 2) << "both sides of the relationship stay";
    EXPECT_NE(std::string::npos, r.lastError.find("relationship")) << r.lastError;

    // Design properties follow a renamed column and go with a dropped one; mdb-prop reads them.
    for (const char* file : {"test2V1997.mdb", "test2V2003.mdb"}) {
        WritableCopy projects(file);
        {
            Session p(projects.path());
            p.execute("ALTER TABLE MSP_PROJECTS RENAME PROJ_NAME TO ProjectName");
            p.execute("ALTER TABLE MSP_PROJECTS DROP PROJ_PROP_AUTHOR");
            p.expectClean();
        }
        if (runCommand("command -v mdb-prop").empty()) continue;
        const std::string props = runCommand("mdb-prop '" + projects.path() + "' MSP_PROJECTS");
        EXPECT_NE(std::string::npos, props.find("name: ProjectName\n")) << file;
        EXPECT_EQ(std::string::npos, props.find("name: PROJ_NAME\n")) << file;
        EXPECT_EQ(std::string::npos, props.find("name: PROJ_PROP_AUTHOR\n")) << file;
        EXPECT_NE(std::string::npos, props.find("name: PROJ_ID\n")) << file;
    }
}

struct Scenario {
    const char* name;
    std::string (*prepare)();  // the file before the statement
    const char* statement;
    const char* table;         // listed after the statement, not before (or the reverse)
    bool creates;
};

std::string newFileWithATable() {
    NewFile f(Version::Jet4);
    Session(f.path).execute("CREATE TABLE Before (a INTEGER)");
    return readAll(f.path);
}
std::string accessFile() { return readAll(fixturePath("test2V1997.mdb")); }

const Scenario scenarios[] = {
    {"CreateTable", newFileWithATable, "CREATE TABLE Added (Name VARCHAR (255), Notes MEMO, Amount DOUBLE);", "Added", true},
    {"DropAccessTable", accessFile, "DROP TABLE MSP_PROJECTS;", "MSP_PROJECTS", false},
};

using Fault = FaultInjectionEnv::Fault;
class SchemaFaults : public ::testing::TestWithParam<std::tuple<Scenario, Fault>> {};
INSTANTIATE_TEST_SUITE_P(Statements, SchemaFaults,
                         ::testing::Combine(::testing::ValuesIn(scenarios), ::testing::Values(Fault::IoError, Fault::PowerLoss)),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param).name) +
                                    (std::get<1>(info.param) == Fault::IoError ? "IoError" : "PowerLoss");
                         });

TEST_P(SchemaFaults, AFaultAtAnyOperationLeavesTheStatementDoneOrUndone) {
    const auto& [scenario, fault] = GetParam();
    const std::string before = scenario.prepare();
    TempDir dir{TempDir::Place::InMemory};
    const std::string path = dir.file("db.mdb");
    auto listed = [&] {
        auto db = jet::Database::open(path);
        EXPECT_EQ("", issuesOf(jet::check(*db)));
        return db->catalog().findTable(scenario.table) != nullptr;
    };
    // Runs the statement with a fault at operation `at` of it (none for 0); returns how many
    // operations it took and whether it reported a failure.
    auto run = [&](uint64_t at) {
        std::filesystem::remove(dir.file("db.ldb"));  // a lock file a crash left would change the count
        writeAll(path, before);
        FaultInjectionEnv env;
        uint64_t ops = 0;
        bool reported = false;
        {
            jet::Connection cn(env);
            cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path);
            const uint64_t first = env.opCount();
            if (at) env.injectFault(first + at, fault);
            try {
                cn.Execute(scenario.statement);
            } catch (const jet::RuntimeError&) {
                reported = true;
            }
            ops = env.opCount() - first;
        }
        env.crash(FaultInjectionEnv::CrashMode::KeepSomeUnsynced, uint32_t(at));
        return std::pair(ops, reported);
    };
    const uint64_t ops = run(0).first;
    ASSERT_EQ(scenario.creates, listed());
    ASSERT_GT(ops, 8u);
    int undone = 0;
    for (uint64_t i = 1; i <= ops && !HasFailure(); ++i) {
        SCOPED_TRACE("fault at operation " + std::to_string(i) + " of " + std::to_string(ops));
        EXPECT_TRUE(run(i).second) << "every operation of the statement matters";
        if (listed() != scenario.creates) {
            ++undone;
            EXPECT_EQ(before, readAll(path)) << "undone means exactly the file before";
        }
    }
    EXPECT_GT(undone, 0) << "a statement that failed before its commit reached the disk is undone";
}

}  // namespace
