// Data-definition statements through Connection::Execute: what each one leaves in the file
// (definition, maps, catalogue and permission rows, dates, design properties), and every
// refusal with Jet's number, after which the file is exactly as it was.
#include <gtest/gtest.h>

#include <functional>

#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Database.h"
#include "jet/DateSerial.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"
#include "jet/Table.h"
#include "jet/UsageMap.h"
#include "jet/ValueReader.h"
#include "testkit/MdbReaderDump.h"
#include "testkit/TempDir.h"
#include "testkit/WritableCopy.h"

namespace {

using jet::Variant;
using jet::Version;
namespace err = jet::err;
using jet::testkit::TempDir;
using jet::testkit::WritableCopy;

std::string problems(const jet::CheckReport& r) {
    std::string out;
    for (const auto& i : r.issues) out += i.where + ": " + i.problem + "\n";
    return out;
}

// A database file and a connection on it, as the table engine holds them.
struct Session {
    explicit Session(std::string file) : path(std::move(file)) { open(); }
    void open() { cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path); }
    void execute(const std::string& sql) { cn.Execute(sql, nullptr, -1); }
    // The error number a statement fails with (0 when it succeeds).
    int32_t errorOf(const std::string& sql) {
        try {
            execute(sql);
        } catch (const jet::RuntimeError& e) {
            lastError = e.description();
            return e.number();
        }
        return 0;
    }
    jet::Database& db() { return *cn.database(); }
    const jet::TableDef& def(const std::string& table) { return db().openTable(table)->def(); }
    const jet::CatalogEntry& entry(const std::string& table) { return *db().catalog().findTable(table); }
    void expectClean() {
        const auto report = jet::check(db());
        EXPECT_TRUE(report.clean()) << problems(report);
    }
    std::vector<std::string> columnNames(const std::string& table) {
        std::vector<std::string> names;
        for (const auto& c : def(table).columns()) names.push_back(c.name);
        return names;
    }

    std::string path;
    jet::Connection cn;
    std::string lastError;
};

// A new file of each version, in a folder of its own.
struct NewFile {
    explicit NewFile(Version v, uint16_t codePage = 1251) : path(dir.file("db.mdb")) {
        jet::createDatabase(path, v, codePage);
    }
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
    const double after = jet::nowSerial();

    const auto& def = s.def("Orders");
    EXPECT_EQ(0x4E, def.tableType());
    EXPECT_EQ(5, def.maxColumns());
    EXPECT_EQ(2, def.varColumns());
    EXPECT_EQ((std::vector<std::string>{"Id", "Customer", "Notes", "Paid", "Total"}), s.columnNames("Orders"));
    EXPECT_TRUE(def.findColumn("Id")->isAutoNumber());
    EXPECT_EQ(GetParam() == Version::Jet3 ? 40 : 80, def.findColumn("customer")->length);
    EXPECT_EQ(0, def.findColumn("Paid")->fixedOffset) << "Yes/No values live in the null mask";
    EXPECT_EQ(4, def.findColumn("Total")->fixedOffset);
    ASSERT_EQ(1u, def.longValueMaps().size());
    EXPECT_EQ(def.findColumn("Notes")->number, def.longValueMaps()[0].columnNumber);

    const auto& e = s.entry("orders");
    EXPECT_EQ(int32_t(def.page()), e.id);
    EXPECT_TRUE(e.isUserTable());
    EXPECT_EQ(0u, e.flags);
    EXPECT_GE(e.dateCreate, before - 1.0 / 86400);
    EXPECT_LE(e.dateCreate, after + 1.0 / 86400);
    EXPECT_EQ(e.dateCreate, e.dateUpdate);

    // Listed by the schema rowset at once.
    auto schema = s.cn.OpenSchema(jet::ado::SchemaTables, {{}, {}, Variant::string("Orders")});
    ASSERT_EQ(1, schema->RecordCount());
    schema->MoveFirst();
    EXPECT_EQ("TABLE", schema->Fields()["TABLE_TYPE"].Value().asString());

    // The permission rows Access derives from the Tables container: its two entries that
    // are not the inheritable limited one, with the rights 0xFFEFF.
    auto aces = s.db().openTable("MSysACEs");
    const auto& cols = aces->def();
    std::vector<std::pair<std::vector<uint8_t>, int32_t>> granted;
    for (auto at : aces->rowLocations()) {
        auto row = aces->reader(at);
        if (jet::readValue(s.db(), *cols.findColumn("ObjectId"), row.column(*cols.findColumn("ObjectId"))).asLong() !=
            e.id)
            continue;
        granted.emplace_back(jet::readValue(s.db(), *cols.findColumn("SID"), row.column(*cols.findColumn("SID"))).asBytes(),
                             jet::readValue(s.db(), *cols.findColumn("ACM"), row.column(*cols.findColumn("ACM"))).asLong());
    }
    ASSERT_EQ(2u, granted.size());
    for (const auto& g : granted) EXPECT_EQ(0xFFEFF, g.second);
    EXPECT_EQ(GetParam() == Version::Jet3 ? (std::vector<uint8_t>{0x03, 0x01}) : (std::vector<uint8_t>{0x07, 0xE8}),
              granted[0].first)
        << "the Admin user first, as the container lists it";
    s.expectClean();
}

TEST_P(SchemaBothVersions, AlterTableKeepsOldRowsAndColumnNumbersAndStampsTheDefinitionsDate) {
    NewFile f(GetParam());
    Session s(f.path);
    s.execute("CREATE TABLE T (__custom INTEGER);");
    {
        jet::Recordset rs;
        rs.Open("SELECT * FROM T", s.cn, 2, 4, -1);
        for (int i = 1; i <= 3; ++i) {
            rs.AddNew();
            rs.Fields()[0].setValue(Variant::longValue(i));
            rs.Update();
        }
    }
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
    EXPECT_EQ(3, def.findColumn("Note")->number);
    EXPECT_EQ(1, def.findColumn("Note")->varIndex);

    jet::Recordset rs;
    rs.Open("SELECT * FROM T", s.cn, 2, 4, -1);
    ASSERT_EQ(3, rs.RecordCount());
    rs.MoveFirst();
    EXPECT_EQ(1, rs.Fields()["__custom"].Value().asLong());
    EXPECT_TRUE(rs.Fields()["Note"].Value().isNull());
    rs.Fields()["Note"].setValue(Variant::string("ten chars!"));
    rs.Fields()["Amount"].setValue(Variant::doubleValue(0.5));
    rs.UpdateBatch(3);
    rs.MoveLast();
    EXPECT_EQ(3, rs.Fields()["__custom"].Value().asLong());
    rs.Close();
    s.execute("ALTER TABLE T RENAME Note TO Remark");
    rs.Open("SELECT * FROM T", s.cn, 2, 4, -1);
    rs.MoveFirst();
    EXPECT_EQ("ten chars!", rs.Fields()["Remark"].Value().asString());
    EXPECT_EQ(0.5, rs.Fields()["amount"].Value().asDouble());
    s.expectClean();
}

// The statements are refused as Jet refuses them, and a refused statement writes nothing.
TEST_P(SchemaBothVersions, EveryRefusalHasJetsNumberAndLeavesTheFileAsItWas) {
    NewFile f(GetParam());
    Session s(f.path);
    s.execute("CREATE TABLE T (a INTEGER, b TEXT(20))");
    s.execute("CREATE TABLE One (only INTEGER)");
    const std::string original = jet::testkit::readAll(f.path);
    const std::string tooLong(65, 'n');
    std::string columns;
    for (int i = 0; i < 256; ++i) columns += (i ? ", c" : "c") + std::to_string(i) + " BYTE";

    struct Case {
        const char* why;
        std::string sql;
        int32_t number;
    } cases[] = {
        {"a blank in a bare name", "CREATE TABLE my table (a INTEGER)", err::SyntaxError},
        {"a reserved word", "CREATE TABLE table (a INTEGER)", err::SyntaxError},
        {"a reserved word as column", "ALTER TABLE T ADD select INTEGER", err::SyntaxError},
        {"no such statement", "SELECT * FROM T", err::SyntaxError},
        {"an unknown type", "ALTER TABLE T ADD x WIDGET", err::SyntaxError},
        {"unknown table", "DROP TABLE Nowhere", err::NoSuchTable},
        {"unknown table to alter", "ALTER TABLE Nowhere ADD x INTEGER", err::NoSuchTable},
        {"unknown column to drop", "ALTER TABLE T DROP zz", err::NoSuchColumn},
        {"unknown column to rename", "ALTER TABLE T RENAME zz TO yy", err::NoSuchColumn},
        {"table exists, any case", "CREATE TABLE t (x INTEGER)", err::ObjectExists},
        {"system table's name", "CREATE TABLE MSysObjects (x INTEGER)", err::ObjectExists},
        {"column exists", "ALTER TABLE T ADD B DOUBLE", err::ObjectExists},
        {"column twice", "CREATE TABLE U (x INTEGER, X TEXT)", err::ObjectExists},
        {"rename onto another column", "ALTER TABLE T RENAME a TO B", err::ObjectExists},
        {"the last column", "ALTER TABLE One DROP only", err::Unspecified},
        {"a name too long", "CREATE TABLE [" + tooLong + "] (a INTEGER)", err::SyntaxError},
        {"a column name too long", "ALTER TABLE T ADD [" + tooLong + "] INTEGER", err::SyntaxError},
        {"a dot", "CREATE TABLE [a.b] (a INTEGER)", err::SyntaxError},
        {"an exclamation mark", "ALTER TABLE T RENAME a TO [x!y]", err::SyntaxError},
        {"a leading blank", "CREATE TABLE [ lead] (a INTEGER)", err::SyntaxError},
        {"more than 255 columns", "CREATE TABLE Wide (" + columns + ")", err::Unspecified},
        {"a system table", "ALTER TABLE MSysACEs ADD x INTEGER", err::ReadOnly},
        {"dropping a system table", "DROP TABLE MSysQueries", err::ReadOnly},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.number, s.errorOf(c.sql)) << c.why << ": " << c.sql;
        EXPECT_FALSE(s.lastError.empty());
    }
    // Texts a user can read.
    s.errorOf("DROP TABLE Nowhere");
    EXPECT_EQ("Table 'Nowhere' does not exist.", s.lastError);
    s.errorOf("CREATE TABLE t (x INTEGER)");
    EXPECT_EQ("Table 't' already exists.", s.lastError);
    s.errorOf("ALTER TABLE T ADD B DOUBLE");
    EXPECT_EQ("Field 'B' already exists in table 'T'.", s.lastError);

    EXPECT_EQ(original, jet::testkit::readAll(f.path));
    s.expectClean();

    // Decimal exists in Jet 4 only.
    EXPECT_EQ(GetParam() == Version::Jet3 ? err::SyntaxError : 0, s.errorOf("ALTER TABLE T ADD d DECIMAL(10,2)"));

    jet::Connection closed;
    try {
        closed.Execute("DROP TABLE T");
        ADD_FAILURE() << "a closed connection runs nothing";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(err::NotAllowedNow, e.number());
    }
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
    // Dropping makes no room: Jet counts every column number ever given.
    s.execute("ALTER TABLE Wide DROP c0");
    EXPECT_EQ(err::Unspecified, s.errorOf("ALTER TABLE Wide ADD one_more BYTE"));
    const std::vector<uint32_t> pages = s.def("Wide").pages();
    ASSERT_GT(pages.size(), 1u) << "a definition over several pages";
    // Shrunk back onto one page, it gives its continuation pages back.
    for (int i = 1; i < 254; ++i) s.execute("ALTER TABLE Wide DROP c" + std::to_string(i));
    EXPECT_EQ(std::vector<uint32_t>{pages.front()}, s.def("Wide").pages());
    const auto free = jet::UsageMap::read(s.db().pager(), s.db().format(), 1u << 8);
    for (size_t i = 1; i < pages.size(); ++i) EXPECT_TRUE(free.contains(pages[i]));
    EXPECT_EQ((std::vector<std::string>{"last"}), s.columnNames("Wide"));
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
    EXPECT_EQ(nullptr, s.db().catalog().findTable("Таблица"));

    s.execute("CREATE TABLE Sheet (Имя VARCHAR (255))");
    s.execute("ALTER TABLE Sheet ADD Цена DOUBLE");
    jet::Recordset rs;
    rs.Open("SELECT * FROM Sheet", s.cn, 2, 4, -1);
    rs.AddNew();
    rs.Fields()["имя"].setValue(Variant::string("Ёжик в тумане"));
    rs.Update();
    rs.Close();
    rs.Open("SELECT * FROM Sheet", s.cn, 2, 4, -1);
    rs.MoveFirst();
    EXPECT_EQ("Ёжик в тумане", rs.Fields()["Имя"].Value().asString());
    EXPECT_EQ("Цена", rs.Fields()[1].Name());
    s.expectClean();

    // A name the code page cannot hold at all is no valid name.
    EXPECT_EQ(err::SyntaxError, s.errorOf("ALTER TABLE Sheet ADD 名前 INTEGER"));

    // Jet 4 text is Unicode: no such limit.
    NewFile four(Version::Jet4);
    Session s4(four.path);
    s4.execute("CREATE TABLE Таблица (名前 TEXT(10))");
    EXPECT_NE(nullptr, s4.db().catalog().findTable("таблица"));
    s4.expectClean();
}

// Access-made tables carry design properties per column; they follow a rename and go with
// a dropped column. mdb-prop reads them independently.
TEST(SchemaWriter, ColumnPropertiesFollowRenameAndDrop) {
    for (const char* file : {"test2V1997.mdb", "test2V2003.mdb"}) {
        SCOPED_TRACE(file);
        WritableCopy copy(file);
        Session s(copy.path());
        s.execute("ALTER TABLE MSP_PROJECTS RENAME PROJ_NAME TO ProjectName");
        s.execute("ALTER TABLE MSP_PROJECTS DROP PROJ_PROP_AUTHOR");
        s.expectClean();
        s.cn.Close();
        if (jet::testkit::runCommand("command -v mdb-prop").empty()) continue;
        const std::string props = jet::testkit::runCommand("mdb-prop '" + copy.path() + "' MSP_PROJECTS");
        EXPECT_NE(std::string::npos, props.find("name: ProjectName\n")) << props.substr(0, 400);
        EXPECT_EQ(std::string::npos, props.find("name: PROJ_NAME\n"));
        EXPECT_EQ(std::string::npos, props.find("name: PROJ_PROP_AUTHOR\n"));
        EXPECT_NE(std::string::npos, props.find("name: PROJ_ID\n"));
    }
}

TEST(SchemaWriter, IndexedColumnsStayAndIndexesKeepWorkingAfterAlter) {
    WritableCopy copy("testV2000.mdb");
    Session s(copy.path());
    // Table1: B has an index, A is the primary key.
    EXPECT_EQ(err::Unspecified, s.errorOf("ALTER TABLE Table1 DROP B"));
    EXPECT_EQ("Cannot delete a field that is part of an index or is needed by the system.", s.lastError);
    s.execute("ALTER TABLE Table1 ADD Extra MEMO");
    s.execute("ALTER TABLE Table1 DROP C");
    s.execute("ALTER TABLE Table1 RENAME B TO Bee");
    jet::Recordset rs;
    rs.Open("SELECT * FROM Table1", s.cn, 2, 4, -1);
    rs.MoveFirst();
    const Variant key = rs.Fields()["A"].Value();
    rs.AddNew();
    rs.Fields()["A"].setValue(key);
    rs.Fields()["Extra"].setValue(Variant::string("dup"));
    EXPECT_THROW(rs.Update(), jet::RuntimeError) << "the primary key still refuses a duplicate";
    rs.CancelUpdate();
    rs.AddNew();
    rs.Fields()["A"].setValue(Variant::string("brand new key"));
    rs.Fields()["Bee"].setValue(Variant::string("indexed value"));
    rs.Fields()["Extra"].setValue(Variant::string(std::string(3000, 'm')));
    rs.Update();
    rs.Close();
    s.expectClean();  // includes every index against the rows
}

TEST(SchemaWriter, DroppingATableInARelationshipIsRefused) {
    WritableCopy copy("indexTestV1997.mdb");
    Session s(copy.path());
    int refused = 0;
    for (const auto* e : s.db().catalog().userTables())
        if (s.errorOf("DROP TABLE " + e->name) == err::Unspecified) ++refused;
    EXPECT_GE(refused, 2) << "both sides of the relationship stay";
    EXPECT_NE(std::string::npos, s.lastError.find("relationship")) << s.lastError;
    s.expectClean();
}

}  // namespace
