// Usage maps of both kinds, built on hand-made pages, and the damage a reader must catch.
#include <gtest/gtest.h>

#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Database.h"
#include "jet/Pager.h"
#include "jet/Table.h"
#include "jet/UsageMap.h"

namespace {

using jet::Format;
using jet::UsageMap;
using jet::Version;
using jet::testing::MemoryFile;

constexpr uint32_t P = 4096;

// Writes rows into a Jet 4 data page, packed from the page end in slot order.
void putRows(std::vector<uint8_t>& file, uint32_t page, const std::vector<std::vector<uint8_t>>& rows) {
    uint8_t* p = file.data() + page * P;
    p[0] = 0x01;
    p[1] = 0x01;
    jet::putLe16(p + 0x0C, uint16_t(rows.size()));
    uint32_t end = P;
    for (size_t k = 0; k < rows.size(); ++k) {
        uint32_t start = end - uint32_t(rows[k].size());
        std::copy(rows[k].begin(), rows[k].end(), p + start);
        jet::putLe16(p + 0x0E + 2 * k, uint16_t(start));
        end = start;
    }
}

struct MapFile {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(5 * P, 0);
    jet::Pager pager() { return jet::Pager(std::make_unique<MemoryFile>(bytes), "maps", P); }
};

MapFile sample() {
    MapFile m;
    std::vector<uint8_t> inlineRow = {0, 8, 0, 0, 0, 0x05, 0x80};
    std::vector<uint8_t> referenceRow = {1, 2, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0};
    std::vector<uint8_t> badType = {7, 0, 0};
    putRows(m.bytes, 1, {inlineRow, referenceRow, badType});
    uint8_t* bitmap = m.bytes.data() + 2 * P;
    bitmap[0] = 0x05;
    bitmap[1] = 0x01;
    bitmap[4] = 0x02;                    // page 1
    bitmap[4 + 4091] = 0x80;             // page 4091 * 8 + 7 = 32735, the window's last page
    m.bytes[3 * P] = 0x05;
    m.bytes[3 * P + 1] = 0x01;
    m.bytes[3 * P + 4] = 0x01;              // third window (the second has no page): page 2 * 32736
    return m;
}

TEST(UsageMap, InlineMapCountsBitsFromItsStartPage) {
    auto m = sample();
    auto pager = m.pager();
    UsageMap map = UsageMap::read(pager, Format::of(Version::Jet4), (1u << 8) | 0);
    EXPECT_EQ(UsageMap::Kind::Inline, map.kind());
    EXPECT_EQ(8u, map.startPage());
    EXPECT_EQ((std::vector<uint32_t>{8, 10, 23}), map.pages());
    EXPECT_TRUE(map.contains(10));
    EXPECT_FALSE(map.contains(9));
}

TEST(UsageMap, ReferenceMapWindowsFollowEachOther) {
    auto m = sample();
    auto pager = m.pager();
    UsageMap map = UsageMap::read(pager, Format::of(Version::Jet4), (1u << 8) | 1);
    EXPECT_EQ(UsageMap::Kind::Reference, map.kind());
    EXPECT_EQ((std::vector<uint32_t>{2, 0, 3}), map.mapPages()) << "the middle window has no page yet";
    EXPECT_EQ((std::vector<uint32_t>{1, 32735, 2 * 32736}), map.pages());
}

TEST(UsageMap, DamagedReferencesAreErrors) {
    auto m = sample();
    {
        auto pager = m.pager();
        const Format& f = Format::of(Version::Jet4);
        EXPECT_THROW(UsageMap::read(pager, f, (1u << 8) | 2), jet::CorruptError) << "unknown map type";
        EXPECT_THROW(UsageMap::read(pager, f, (1u << 8) | 9), jet::CorruptError) << "no such row";
        EXPECT_THROW(UsageMap::read(pager, f, 0), jet::CorruptError) << "row 0 of page 0 is the header";
        EXPECT_THROW(UsageMap::read(pager, f, (4u << 8) | 0), jet::CorruptError) << "not a data page";
        EXPECT_THROW(UsageMap::read(pager, f, (77u << 8) | 0), jet::CorruptError) << "beyond the file";
    }
    m.bytes[3 * P] = 0x01;  // the second window's page is no usage-map page any more
    auto pager = m.pager();
    EXPECT_THROW(UsageMap::read(pager, Format::of(Version::Jet4), (1u << 8) | 1), jet::CorruptError);
}

TEST(UsageMap, TablesOfRealFilesOwnExactlyTheirDataPages) {
    auto db = jet::Database::open(jet::testing::fixture("compIndexTestV2003.mdb"));
    auto t = db->openTable("Table1");
    UsageMap owned = UsageMap::read(db->pager(), db->format(), t->def().ownedMap());
    EXPECT_EQ(4u, owned.pages().size()) << "512 rows on 4 data pages";
    for (uint32_t p : owned.pages()) {
        jet::DataPage page(db->format(), db->pager().read(p));
        EXPECT_TRUE(page.isDataPage());
        EXPECT_EQ(t->def().page(), page.owner());
    }
}

}  // namespace
