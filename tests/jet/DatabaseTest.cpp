// Opening files, the catalogue, and the physical row order of tables.
#include <gtest/gtest.h>

#include <filesystem>

#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Header.h"
#include "jet/Database.h"
#include "jet/Table.h"
#include "jet/TextCodec.h"

namespace {

using jet::Database;
using jet::RowLocation;
using jet::testing::fixture;
using jet::testing::MemoryFile;
using jet::testing::readFileBytes;

std::unique_ptr<Database> openBytes(std::vector<uint8_t> bytes, const std::string& name = "mem.mdb") {
    return Database::open(std::make_unique<MemoryFile>(std::move(bytes)), name);
}

std::vector<std::string> userTables(const Database& db) {
    std::vector<std::string> names;
    for (auto* e : db.catalog().userTables()) names.push_back(e->name);
    return names;
}

TEST(Database, ListsUserTablesSortedWithoutSystemOrHiddenOnes) {
    auto db = Database::open(fixture("testIndexCodesV1997.mdb"));
    auto names = userTables(*db);
    ASSERT_EQ(29u, names.size());
    EXPECT_EQ("Table1", names[0]);
    EXPECT_EQ("Table1_desc", names[1]);
    EXPECT_EQ("Table10", names[2]);
    EXPECT_EQ("Table10_desc", names[3]) << "sorted by name, not in catalogue order";
    EXPECT_EQ("Table9_desc", names.back());

    auto unicode = Database::open(fixture("testUnicodeCompV2003.mdb"));
    EXPECT_EQ(std::vector<std::string>{"Table"}, userTables(*unicode)) << "the hidden f_..._Data table is not listed";
    EXPECT_TRUE(userTables(*Database::open(fixture("empty.mdb"))).empty());
}

TEST(Database, FindsTablesCaseInsensitivelyAndNamesTheMissingOne) {
    auto db = Database::open(fixture("testV1997.mdb"));
    EXPECT_EQ("Table1", db->openTable("TABLE1")->name());
    EXPECT_EQ(2u, db->openTable("msysobjects")->def().page());
    try {
        db->openTable("NoSuchThing");
        FAIL();
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::NoSuchTable, e.number());
        EXPECT_NE(std::string::npos, e.description().find("'NoSuchThing'"));
    }
}

TEST(Database, RowLocationsFollowPhysicalOrderAndKeepOverflowHeadersInPlace) {
    auto db = Database::open(fixture("overflowTestV2000.mdb"));
    auto t = db->openTable("Table1");
    const auto& rows = t->rowLocations();
    ASSERT_EQ(7u, rows.size());
    // Slots 2 and 4 of page 27 point elsewhere; they keep their place in the scan.
    EXPECT_EQ((RowLocation{27, 2}), rows[2]);
    EXPECT_EQ((RowLocation{27, 4}), rows[4]);
    auto value = [&](RowLocation loc, const char* column) {
        const jet::Column* c = t->def().findColumn(column);
        auto b = t->reader(loc).column(*c);
        return jet::decodeText(jet::Version::Jet4, db->codePage(), b.bytes);
    };
    EXPECT_EQ("row3col3", value(rows[2], "data3"));
    EXPECT_EQ("row5col2", value(rows[4], "data3"));
    EXPECT_EQ("row7col1", value(rows[6], "data1"));
}

TEST(Database, DeletedRowsAreNotListed) {
    auto db = Database::open(fixture("testIndexPropertiesV2003.mdb"));
    EXPECT_EQ(10u, db->openTable("TableUnique1_temp")->rowLocations().size());
    EXPECT_EQ(11u, db->openTable("TableIgnoreNulls2")->rowLocations().size());
    EXPECT_EQ(2u, Database::open(fixture("delTestV2003.mdb"))->openTable("Table")->rowLocations().size());
}

TEST(Database, MissingUnreadableAndForeignFilesGiveTheUnspecifiedError) {
    auto number = [](const std::function<void()>& f) {
        try {
            f();
        } catch (const jet::RuntimeError& e) {
            return e.number();
        }
        return 0;
    };
    EXPECT_EQ(jet::err::Unspecified, number([] { Database::open("/nonexistent/x.mdb"); }));
    EXPECT_EQ(jet::err::Unspecified, number([] { Database::open(std::string(SHEETWRIGHT_MDB_FIXTURES)); }));
    EXPECT_EQ(jet::err::Unspecified, number([] { Database::open(fixture("MANIFEST.md")); }));
    auto accdb = readFileBytes(fixture("empty.mdb"));
    accdb[0x14] = 0x02;
    EXPECT_EQ(jet::err::Unspecified, number([&] { openBytes(accdb); }));
}

TEST(Database, TruncatedFilesAreReportedAsDamaged) {
    auto bytes = readFileBytes(fixture("testV2000.mdb"));
    auto cut = bytes;
    cut.resize(cut.size() - 100);
    EXPECT_THROW(openBytes(cut), jet::CorruptError);
    cut.resize(4096 * 2);
    EXPECT_THROW(openBytes(cut), jet::CorruptError);
    // Cut at a page boundary: the catalogue still opens, but a table whose pages are gone
    // must not look empty.
    auto db3 = readFileBytes(fixture("compIndexTestV1997.mdb"));
    db3.resize(2048 * 30);
    auto db = openBytes(db3);
    auto t = db->openTable("Table1");
    EXPECT_THROW(t->rowLocations(), jet::CorruptError);
}

TEST(Database, ACatalogueThatIsNotATableDefinitionIsRefused) {
    auto bytes = readFileBytes(fixture("testV1997.mdb"));
    bytes[2 * 2048] = 0x01;
    EXPECT_THROW(openBytes(bytes), jet::CorruptError);
}

TEST(Database, OverflowPointersIntoOtherTablesOrDeletedRowsAreDamage) {
    auto bytes = readFileBytes(fixture("overflowTestV2000.mdb"));
    // Slot 2 of page 27 holds the pointer to page 28 slot 0; point it at the catalogue.
    auto page27 = bytes.data() + 27 * 4096;
    uint16_t off = jet::le16(page27 + 0x0E + 2 * 2) & 0x1FFF;
    jet::putLe32(page27 + off, (2u << 8) | 0);
    auto db = openBytes(bytes);
    auto t = db->openTable("Table1");
    RowLocation moved = t->rowLocations()[2];
    EXPECT_THROW(t->rowBytes(moved), jet::CorruptError);
}

TEST(Database, EncodedDatabasesAreReadThroughTheirKey) {
    // Encode every page after the header with RC4 keyed by (database key XOR page number).
    auto bytes = readFileBytes(fixture("testV1997.mdb"));
    const uint32_t key = 0x12345678;
    for (uint32_t n = 1; n < bytes.size() / 2048; ++n) {
        uint8_t k[4];
        jet::putLe32(k, key ^ n);
        jet::rc4Apply(k, 4, bytes.data() + size_t(n) * 2048, 2048);
    }
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    jet::putLe32(bytes.data() + 0x3E, key);
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    auto db = openBytes(bytes);
    EXPECT_EQ(key, db->header().databaseKey());
    EXPECT_EQ(4u, db->catalog().userTables().size());
    EXPECT_EQ(2u, db->openTable("Table1")->rowLocations().size());
}

}  // namespace
