// Schema changes against the independent readers: new databases of both versions and
// copies of Access-made files, taken through CREATE TABLE with every column type, rows of
// every kind, ADD, DROP, RENAME and DROP TABLE. After every step our checker finds nothing
// and mdbtools and mdb-reader read the same tables, columns and rows as we do.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "Oracles.h"
#include "format/UsageMap.h"
#include "jet/Connection.h"
#include "jet/DateSerial.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/Table.h"
#include "testkit/Session.h"
#include "testkit/TestFiles.h"

namespace {

using jet::Variant;
using jet::Version;
using jet::testkit::Session;

// The readers look at the file on disk while the session lets go of it.
void expectReadersAgree(Session& s) {
    s.close();
    for (const std::string& d : sheetwright::testing::disagreements(s.path)) ADD_FAILURE() << d;
    s.reopen();
}

std::vector<uint8_t> bytesOf(size_t n, uint8_t seed) {
    std::vector<uint8_t> b(n);
    for (size_t i = 0; i < n; ++i) b[i] = uint8_t(seed + i * 7);
    return b;
}

class Oracles : public ::testing::Test {
protected:
    void SetUp() override {
        if (!sheetwright::testing::oraclesAvailable())
            GTEST_SKIP() << "mdbtools, python3 or mdb-reader missing (scripts/test installs them)";
    }
};

class NewFiles : public Oracles, public ::testing::WithParamInterface<Version> {};
INSTANTIATE_TEST_SUITE_P(Versions, NewFiles, ::testing::Values(Version::Jet3, Version::Jet4),
                         [](const auto& info) { return info.param == Version::Jet3 ? "Jet3" : "Jet4"; });

TEST_P(NewFiles, EveryColumnTypeThroughCreateFillAlterAndDrop) {
    const Version v = GetParam();
    jet::testkit::TempDir dir;
    jet::createDatabase(dir.file("types.mdb"), v, 1251);
    Session s(dir.file("types.mdb"));
    expectReadersAgree(s);
    std::string columns =
        "t TEXT(50), vc VARCHAR (255), c CHAR (255), nc NCHAR (255), tx TEXT, m MEMO, lt LONGTEXT, o OLEOBJECT, "
        "lb LONGBINARY, bin BINARY(16), l LONG, i INT, sh SHORT, si SMALLINT, byt BYTE, bt BIT, yn YESNO, cur CURRENCY, "
        "mon MONEY, dt DATETIME, d DATE, sg SINGLE, re REAL, fl FLOAT, db DOUBLE, ctr COUNTER, g GUID, it INTEGER";
    if (v == Version::Jet4) columns += ", dec DECIMAL(12,3)";
    s.execute("CREATE TABLE Everything (" + columns + ");");
    expectReadersAgree(s);
    const std::string longText(5000, 'x');
    s.addRows("Everything", {{{"t", Variant::string("short")},
                          {"vc", Variant::string("Привет, мир")},
                          {"c", Variant::string("")},
                          {"m", Variant::string(longText)},
                          {"lt", Variant::string("Ёлка")},
                          {"o", Variant::bytes(bytesOf(6000, 1))},
                          {"lb", Variant::bytes(bytesOf(30, 9))},
                          {"bin", Variant::bytes(bytesOf(16, 3))},
                          {"l", Variant::longValue(-2147483647)},
                          {"sh", Variant::integer(-32768)},
                          {"byt", Variant::byte(255)},
                          {"bt", Variant::boolean(true)},
                          {"cur", Variant::currency(123456789)},
                          {"dt", Variant::date(jet::dateSerial({2024, 2, 29, 13, 45, 10}))},
                          {"sg", Variant::single(1.5f)},
                          {"db", Variant::doubleValue(-94.43000000000001)},
                          {"g", Variant::string("{8E39276A-BCA8-4AC4-891E-49911D8438DD}")},
                          {"it", Variant::longValue(7)}},
                         {},  // every value Null, the counter counts on
                         {{"nc", Variant::string(std::string(255, 'n'))}, {"yn", Variant::boolean(true)},
                          {"d", Variant::date(-2.5)}, {"fl", Variant::doubleValue(1e300)}}});
    expectReadersAgree(s);
    jet::Recordset rs;
    rs.Open("SELECT * FROM Everything", s.cn, 2, 4, -1);
    rs.MoveFirst();
    EXPECT_EQ("Привет, мир", rs.Fields()["vc"].Value().asString());
    EXPECT_EQ(longText, rs.Fields()["m"].Value().asString());
    rs.MoveLast();
    EXPECT_EQ(3, rs.Fields()["ctr"].Value().asLong());
    rs.Close();

    s.execute("ALTER TABLE Everything ADD added DOUBLE");
    s.addRows("Everything", {{{"added", Variant::doubleValue(2.5)}, {"t", Variant::string("after")}}});
    s.execute("ALTER TABLE Everything DROP o");
    s.execute("ALTER TABLE Everything DROP m");
    s.execute("ALTER TABLE Everything RENAME t TO title");
    s.execute("ALTER TABLE Everything ADD notes MEMO");
    s.execute("ALTER TABLE Everything ADD numbered COUNTER");
    s.addRows("Everything", {{{"notes", Variant::string(std::string(3000, 'q'))}, {"title", Variant::string("last")}}});
    expectReadersAgree(s);
    s.execute("CREATE TABLE Second (a INTEGER)");
    s.execute("DROP TABLE Everything;");
    expectReadersAgree(s);
    s.execute("DROP TABLE Second");
    expectReadersAgree(s);
    EXPECT_TRUE(s.db().catalog().userTables().empty());
}

class AccessFiles : public Oracles, public ::testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(Corpus, AccessFiles, ::testing::Values("test2V1997.mdb", "test2V2003.mdb"),
                         [](const auto& info) { return std::filesystem::path(info.param).stem().string(); });

// MSP_PROJECTS has two unique indexes, memos and an OLE value over several pages.
TEST_P(AccessFiles, NewTablesBesideAccessOnesAndAnAccessTableDroppedAndItsPagesReused) {
    jet::testkit::WritableCopy copy(GetParam());
    Session s(copy.path());
    s.execute("CREATE TABLE Beside (Name VARCHAR (255), Amount DOUBLE, Notes MEMO)");
    s.addRows("Beside", {{{"Name", Variant::string("new")}, {"Amount", Variant::doubleValue(3.25)},
                      {"Notes", Variant::string(std::string(2500, 'n'))}}});
    s.execute("ALTER TABLE MSP_PROJECTS ADD Extra INTEGER");
    expectReadersAgree(s);

    std::set<uint32_t> tablePages;
    const jet::Database& before = s.db();
    const auto def = before.tableDef(before.catalog().findTable("MSP_PROJECTS")->tdefPage());
    tablePages.insert(def->pages().begin(), def->pages().end());
    std::vector<uint32_t> maps = {def->ownedMap()};
    for (const auto& x : def->physicalIndexes()) maps.push_back(x.ownedMap);
    for (const auto& lv : def->longValueMaps()) maps.push_back(lv.ownedMap);
    for (uint32_t map : maps) {
        const jet::UsageMap m = jet::UsageMap::read(before.pager(), before.format(), map);
        tablePages.insert(m.pages().begin(), m.pages().end());
    }
    const uint32_t pagesBefore = before.pager().pageCount();
    s.execute("DROP TABLE MSP_PROJECTS");
    expectReadersAgree(s);
    const auto freePages = jet::UsageMap::read(s.db().pager(), s.db().format(), 1u << 8);
    for (uint32_t p : tablePages) EXPECT_TRUE(freePages.contains(p)) << "page " << p << " was not freed";

    // The next table and its rows go onto the freed pages: the file does not grow.
    s.execute("CREATE TABLE Reuse (Name VARCHAR (255), Notes MEMO)");
    std::vector<Session::Row> rows;
    for (int i = 0; i < 20; ++i)
        rows.push_back({{"Name", Variant::string("row " + std::to_string(i))}, {"Notes", Variant::string(std::string(900, char('a' + i)))}});
    s.addRows("Reuse", rows);
    EXPECT_EQ(pagesBefore, s.db().pager().pageCount());
    EXPECT_TRUE(tablePages.count(s.db().catalog().findTable("Reuse")->tdefPage())) << "the new definition reuses a page";
    expectReadersAgree(s);
}

}  // namespace
