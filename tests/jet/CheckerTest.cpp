// The integrity checker: every fixture is clean, and each kind of damage made to a copy
// in memory is found and named.
#include <gtest/gtest.h>

#include <filesystem>

#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Checker.h"
#include "jet/Database.h"
#include "jet/LongValue.h"
#include "jet/Table.h"
#include "jet/UsageMap.h"

namespace {

namespace fs = std::filesystem;
using jet::Database;
using jet::testing::fixture;
using jet::testing::MemoryFile;
using jet::testing::readFileBytes;

std::unique_ptr<Database> openBytes(const std::vector<uint8_t>& bytes) {
    return Database::open(std::make_unique<MemoryFile>(bytes), "damaged.mdb");
}

bool reports(const jet::CheckReport& r, const std::string& text) {
    for (const auto& i : r.issues)
        if ((i.where + ": " + i.problem).find(text) != std::string::npos) return true;
    return false;
}

std::string listIssues(const jet::CheckReport& r) {
    std::string s;
    for (const auto& i : r.issues) s += i.where + ": " + i.problem + "\n";
    return s;
}

class CleanFixture : public ::testing::TestWithParam<std::string> {};

TEST_P(CleanFixture, ChecksWithoutProblems) {
    jet::CheckReport r = jet::check(fixture(GetParam()));
    EXPECT_TRUE(r.clean()) << listIssues(r);
    EXPECT_GT(r.tablesChecked, 3u);
    EXPECT_GT(r.pagesChecked, 0u);
}

INSTANTIATE_TEST_SUITE_P(Fixtures, CleanFixture, ::testing::Values(
    "compIndexTestV1997.mdb", "compIndexTestV2003.mdb", "delColTestV2000.mdb", "delTestV2003.mdb", "empty.mdb",
    "fixedNumericTestV2003.mdb", "fixedTextTestV2000.mdb", "indexTestV1997.mdb", "overflowTestV2000.mdb",
    "test2V1997.mdb", "test2V2003.mdb", "testIndexCodesV1997.mdb", "testIndexPropertiesV2003.mdb",
    "testUnicodeCompV2003.mdb", "testV1997.mdb", "testV2000.mdb"),
    [](const auto& info) { return fs::path(info.param).stem().string(); });

struct Damage {
    std::vector<uint8_t> bytes = readFileBytes(fixture("compIndexTestV2003.mdb"));
    uint32_t tdef = 0;
    std::vector<uint32_t> dataPages;
    Damage() {
        auto db = openBytes(bytes);
        auto t = db->openTable("Table1");
        tdef = t->def().page();
        dataPages = jet::UsageMap::read(db->pager(), db->format(), t->def().ownedMap()).pages();
    }
    uint8_t* page(uint32_t n) { return bytes.data() + size_t(n) * 4096; }
    jet::CheckReport check() { return jet::check(*openBytes(bytes)); }
};

TEST(Checker, FindsAWrongFreeSpaceField) {
    Damage d;
    jet::putLe16(d.page(d.dataPages[0]) + 2, jet::le16(d.page(d.dataPages[0]) + 2) + 1);
    EXPECT_TRUE(reports(d.check(), "page " + std::to_string(d.dataPages[0]) + ": records"));
}

TEST(Checker, FindsAPageInUseThatTheGlobalMapCallsFree) {
    Damage d;
    uint8_t* p1 = d.page(1);
    uint16_t off = jet::le16(p1 + 0x0E) & 0x1FFF;
    uint32_t start = jet::le32(p1 + off + 1);
    uint32_t bit = d.dataPages[1] - start;
    p1[off + 5 + bit / 8] |= uint8_t(1u << (bit % 8));
    EXPECT_TRUE(reports(d.check(), "page " + std::to_string(d.dataPages[1]) + ": belongs to data of table 'Table1' but is marked free"));
}

TEST(Checker, FindsAWrongRowCount) {
    Damage d;
    jet::putLe32(d.page(d.tdef) + 0x10, 511);
    EXPECT_TRUE(reports(d.check(), "counts 511 rows, the data pages hold 512"));
}

TEST(Checker, FindsAPageOfTheTableMissingFromItsMapAndAForeignPageInIt) {
    Damage d;
    jet::putLe32(d.page(d.dataPages[2]) + 4, 2);  // the page now claims to belong to the catalogue
    auto r = d.check();
    EXPECT_TRUE(reports(r, "owns page " + std::to_string(d.dataPages[2]) + ", which is not one of its data pages"));
    EXPECT_TRUE(reports(r, "page " + std::to_string(d.dataPages[2]) + " holds rows of the table but is not in its owned map"));
}

TEST(Checker, FindsRowsOutsideTheirPageAndSlotsOutOfOrder) {
    Damage d;
    uint8_t* p = d.page(d.dataPages[0]);
    jet::putLe16(p + 0x0E + 2 * 3, 4030);  // slot 3 now starts above slot 2 (at 4021)
    auto r = d.check();
    EXPECT_TRUE(reports(r, "row 3 starts above row 2")) << listIssues(r);
    EXPECT_TRUE(reports(r, "lies outside its page"));
}

TEST(Checker, FindsAnOverflowPointerToARowNotMarkedMoved) {
    auto bytes = readFileBytes(fixture("overflowTestV2000.mdb"));
    uint8_t* p28 = bytes.data() + 28 * 4096;
    jet::putLe16(p28 + 0x0E, jet::le16(p28 + 0x0E) & 0x1FFF);  // slot 0 loses its 0x8000 flag
    auto r = jet::check(*openBytes(bytes));
    EXPECT_TRUE(reports(r, "points to a row that is not marked as moved")) << listIssues(r);
    EXPECT_TRUE(reports(r, "counts 7 rows, the data pages hold 8"));
}

TEST(Checker, FindsALoopInALongValueChain) {
    auto bytes = readFileBytes(fixture("test2V2003.mdb"));
    jet::RowLocation first;
    {
        auto db = openBytes(bytes);
        auto t = db->openTable("MSP_PROJECTS");
        auto stored = t->reader(t->rowLocations()[0]).column(*t->def().findColumn("RESERVED_BINARY_DATA"));
        jet::LongValueHeader h = jet::longValueHeader(stored.bytes);
        ASSERT_EQ(jet::long_value_kind::Chain, h.kind);
        first = h.first;
    }
    uint8_t* page = bytes.data() + size_t(first.page) * 4096;
    uint16_t off = jet::le16(page + 0x0E + 2 * first.slot) & 0x1FFF;
    jet::putLe32(page + off, first.pointer());  // the first piece points to itself
    auto r = jet::check(*openBytes(bytes));
    EXPECT_TRUE(reports(r, "chain loops")) << listIssues(r);
}

TEST(Checker, FindsADefinitionWhoseLengthFieldIsWrong) {
    Damage d;
    jet::putLe32(d.page(d.tdef) + 8, jet::le32(d.page(d.tdef) + 8) + 4);
    EXPECT_TRUE(reports(d.check(), "definition length field says"));
}

TEST(Checker, AFileThatCannotBeOpenedIsOneProblem) {
    jet::CheckReport r = jet::check(fixture("MANIFEST.md"));
    ASSERT_EQ(1u, r.issues.size());
    EXPECT_NE(std::string::npos, r.issues[0].problem.find("Unrecognized database format"));
}

}  // namespace
