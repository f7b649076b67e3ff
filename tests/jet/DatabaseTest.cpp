// Opening files: what is no database, damage that must be reported rather than read as
// data, and encoded databases read through their key.
#include <gtest/gtest.h>

#include <functional>

#include "base/Bytes.h"
#include "format/Header.h"
#include "table/Database.h"
#include "table/Table.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Database;

TEST(Database, MissingUnreadableAndForeignFilesGiveTheUnspecifiedError) {
    auto accdb = readBytes(fixturePath("empty.mdb"));
    accdb[0x14] = 0x02;
    for (const auto& open : std::initializer_list<std::function<void()>>{
             [] { Database::open("/nonexistent/x.mdb"); }, [] { Database::open(SHEETWRIGHT_MDB_FIXTURES); },
             [] { Database::open(fixturePath("MANIFEST.md")); }, [&] { openInMemory(accdb); }}) {
        try {
            open();
            ADD_FAILURE() << "opened";
        } catch (const jet::RuntimeError& e) {
            EXPECT_EQ(jet::err::Unspecified, e.number()) << e.description();
        }
    }
}

TEST(Database, DamageIsReportedNotReadAsData) {
    auto bytes = readBytes(fixturePath("testV2000.mdb"));
    EXPECT_THROW(openInMemory({bytes.begin(), bytes.end() - 100}), jet::CorruptError);
    EXPECT_THROW(openInMemory({bytes.begin(), bytes.begin() + 2 * 4096}), jet::CorruptError);
    // Cut at a page boundary: the catalogue opens, but a table whose pages are gone must
    // not look empty.
    auto j3 = readBytes(fixturePath("compIndexTestV1997.mdb"));
    j3.resize(2048 * 30);
    EXPECT_THROW(openInMemory(j3)->openTable("Table1")->rowLocations(), jet::CorruptError);
    auto catalogue = readBytes(fixturePath("testV1997.mdb"));
    catalogue[2 * 2048] = 0x01;  // the catalogue's definition page is no definition
    EXPECT_THROW(openInMemory(catalogue), jet::CorruptError);
    // Slot 2 of page 27 points to the moved row on page 28; point it into the catalogue.
    auto moved = readBytes(fixturePath("overflowTestV2000.mdb"));
    uint8_t* page27 = moved.data() + 27 * 4096;
    jet::putLe32(page27 + (jet::le16(page27 + 0x0E + 2 * 2) & 0x1FFF), 2u << 8);
    auto db = openInMemory(moved);
    auto t = db->openTable("Table1");
    EXPECT_THROW(t->rowBytes(t->rowLocations()[2]), jet::CorruptError);
}

TEST(Database, EncodedDatabasesAreReadThroughTheirKey) {
    // Every page after the header in RC4 keyed by (database key XOR page number).
    auto bytes = readBytes(fixturePath("testV1997.mdb"));
    const uint32_t key = 0x12345678;
    for (uint32_t n = 1; n < bytes.size() / 2048; ++n) {
        uint8_t k[4];
        jet::putLe32(k, key ^ n);
        jet::rc4Apply(k, 4, bytes.data() + size_t(n) * 2048, 2048);
    }
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    jet::putLe32(bytes.data() + 0x3E, key);
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    auto db = openInMemory(bytes);
    EXPECT_EQ(key, db->header().databaseKey());
    EXPECT_EQ(4u, db->catalog().userTables().size());
    EXPECT_EQ(2u, db->openTable("Table1")->rowLocations().size());
    const uint8_t stream[] = {0xb5, 0x6f, 0x03, 0x62};  // the header mask: RC4 keyed C7 DA 39 6B on zeros
    uint8_t zeros[4] = {};
    const uint8_t maskKey[4] = {0xC7, 0xDA, 0x39, 0x6B};
    jet::rc4Apply(maskKey, 4, zeros, 4);
    EXPECT_EQ(0, std::memcmp(stream, zeros, 4));
}

}  // namespace
