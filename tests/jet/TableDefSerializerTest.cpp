// Writing table definitions: every definition of every fixture comes back byte for byte,
// and edited or new definitions parse back to what was written.
#include <gtest/gtest.h>

#include <algorithm>

#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/CodePage.h"
#include "jet/Database.h"
#include "jet/Table.h"
#include "jet/TableDefSerializer.h"

namespace {

using jet::ColumnType;
using jet::Database;
using jet::Format;
using jet::TableDef;
using jet::Version;
using jet::testing::fixture;

const char* const kFixtures[] = {
    "testV1997.mdb",         "test2V1997.mdb",        "testIndexCodesV1997.mdb",      "compIndexTestV1997.mdb",
    "indexTestV1997.mdb",    "testV2000.mdb",         "test2V2003.mdb",               "delTestV2003.mdb",
    "delColTestV2000.mdb",   "overflowTestV2000.mdb", "compIndexTestV2003.mdb",       "fixedNumericTestV2003.mdb",
    "fixedTextTestV2000.mdb", "testUnicodeCompV2003.mdb", "testIndexPropertiesV2003.mdb", "empty.mdb",
};

class EveryDefinition : public ::testing::TestWithParam<const char*> {};

TEST_P(EveryDefinition, SerializesBackToTheStoredStreamAndPages) {
    auto db = Database::open(fixture(GetParam()));
    const Format& f = db->format();
    size_t tables = 0;
    for (const auto& e : db->catalog().entries()) {
        if (!e.isTable()) continue;
        ++tables;
        auto def = db->tableDef(e.tdefPage());
        const std::vector<uint8_t> written = serializeTableDef(f, db->codePage(), *def);
        ASSERT_EQ(def->declaredLength(), written.size()) << e.name;
        ASSERT_TRUE(std::equal(written.begin(), written.end(), def->stream().begin())) << e.name;

        // The pages: everything up to the end of the stream, page headers included.
        auto images = jet::tableDefPageImages(f, written, def->pages());
        size_t pos = 0;
        for (size_t i = 0; i < images.size(); ++i) {
            const uint8_t* stored = db->pager().read(def->pages()[i]);
            const size_t start = i == 0 ? 0 : 8;
            const size_t end = std::min<size_t>(f.pageSize, start + (written.size() - pos));
            pos += end - start;
            EXPECT_TRUE(std::equal(stored, stored + end, images[i].begin()))
                << e.name << " page " << def->pages()[i];
        }
    }
    EXPECT_GE(tables, 4u);
}

INSTANTIATE_TEST_SUITE_P(Fixtures, EveryDefinition, ::testing::ValuesIn(kFixtures));

jet::Column textColumn(const std::string& name, uint16_t number, uint16_t varIndex, Version v) {
    jet::Column c;
    c.name = name;
    c.typeCode = uint8_t(ColumnType::Text);
    c.number = number;
    c.varIndex = varIndex;
    c.flags = jet::column_flag::Updatable;
    c.length = v == Version::Jet3 ? 50 : 100;
    c.collation = 0x0409;
    c.codePage = v == Version::Jet3 ? 1252 : 0;
    c.extraFlags = v == Version::Jet3 ? 0 : 1;
    return c;
}

TableDef reparse(const Format& f, const TableDef& def) {
    return TableDef::parse(f, *jet::CodePage::get(1252), serializeTableDef(f, *jet::CodePage::get(1252), def));
}

TEST(TableDefSerializer, EditedDefinitionsParseBackWithTheirOtherPartsIntact) {
    for (const char* file : {"testV1997.mdb", "testV2000.mdb"}) {
        auto db = Database::open(fixture(file));
        const Format& f = db->format();
        const TableDef& before = db->openTable("Table1")->def();
        TableDef def = before;
        const uint16_t number = def.maxColumns();
        def.addColumn(textColumn("Added", number, def.varColumns(), f.version));
        def.setMaxColumns(uint16_t(number + 1));
        def.setVarColumns(uint16_t(def.varColumns() + 1));
        def.renameColumn(def.findColumn("B")->number, "Bee, renamed");
        def.removeColumn(def.findColumn("C")->number);

        TableDef after = reparse(f, def);
        EXPECT_EQ(after.declaredLength(), after.parsedLength()) << file;
        EXPECT_TRUE(after.hasEndMarker());
        ASSERT_EQ(before.columns().size(), after.columns().size()) << file;
        EXPECT_EQ(nullptr, after.findColumn("C"));
        EXPECT_EQ(nullptr, after.findColumn("B"));
        const jet::Column* renamed = after.findColumn("bee, RENAMED");
        ASSERT_NE(nullptr, renamed);
        EXPECT_EQ(before.findColumn("B")->raw, renamed->raw) << "only the name changes";
        const jet::Column* added = after.findColumn("Added");
        ASSERT_NE(nullptr, added);
        EXPECT_EQ(number, added->number);
        EXPECT_EQ(after.columns().back().number, number);
        EXPECT_EQ(ColumnType::Text, added->type());
        EXPECT_EQ(before.maxColumns() + 1, after.maxColumns());
        EXPECT_EQ(before.varColumns() + 1, after.varColumns());
        EXPECT_EQ(before.rowCount(), after.rowCount());
        EXPECT_EQ(before.ownedMap(), after.ownedMap());
        EXPECT_EQ(before.freeMap(), after.freeMap());
        // The header bytes nobody interprets stay as they were.
        const jet::TableDefLayout& L = jet::TableDefLayout::of(f.version);
        EXPECT_TRUE(std::equal(before.stream().begin() + L.rowCount, before.stream().begin() + L.tableType,
                               after.stream().begin() + L.rowCount));
        for (const auto& c : before.columns()) {
            if (c.name == "B" || c.name == "C") continue;
            const jet::Column* same = after.findColumn(c.name);
            ASSERT_NE(nullptr, same) << c.name;
            EXPECT_EQ(c.raw, same->raw) << c.name;
        }
    }
}

TEST(TableDefSerializer, NewDefinitionsCarryTheConstantsOfEachVersion) {
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const Format& f = Format::of(v);
        TableDef def = TableDef::blank(v, 0x4E);
        def.addColumn(textColumn("Name", 0, 0, v));
        jet::Column id;
        id.name = "Id";
        id.typeCode = uint8_t(ColumnType::Long);
        id.number = 1;
        id.flags = jet::column_flag::Fixed | jet::column_flag::Updatable | jet::column_flag::AutoNumber;
        id.length = 4;
        id.collation = 0x0409;
        def.addColumn(id);
        jet::Column memo = textColumn("Notes", 2, 1, v);
        memo.typeCode = uint8_t(ColumnType::Memo);
        memo.length = 0;
        def.addColumn(memo);
        def.setMaxColumns(3);
        def.setVarColumns(2);
        def.setMaps(0x0601, 0x0602);
        def.addLongValueMaps({2, 0x0603, 0x0604});
        jet::PhysicalIndex px;
        px.columns = {{1, true}, {0, false}};
        px.ownedMap = 0x0605;
        px.rootPage = 9;
        px.flags = v == Version::Jet3 ? 0x09 : 0x89;
        def.addPhysicalIndex(px);
        jet::LogicalIndex lx;
        lx.name = "PrimaryKey";
        lx.kind = jet::index_kind::PrimaryKey;
        lx.cascadeUpdate = lx.cascadeDelete = 4;
        def.addLogicalIndex(lx);

        const std::vector<uint8_t> s = serializeTableDef(f, *jet::CodePage::get(1252), def);
        const size_t expected = f.tdefHeaderSize + f.indexCountBlockSize + 3 * f.columnDescriptorSize +
                                (v == Version::Jet3 ? 1 + 4 + 1 + 2 + 1 + 5 + 1 + 10 : 2 + 8 + 2 + 4 + 2 + 10 + 2 + 20) +
                                f.physicalIndexSize + f.logicalIndexSize + 10 + 2;
        ASSERT_EQ(expected, s.size());
        EXPECT_EQ(s.size(), jet::le32(s.data() + 8));
        EXPECT_EQ(0xFFFF, jet::le16(s.data() + s.size() - 2));
        const uint8_t* column0 = s.data() + f.tdefHeaderSize + f.indexCountBlockSize;
        // From the end: marker, one map entry, the index name, logical and physical descriptors.
        const size_t indexName = v == Version::Jet3 ? 1 + 10 : 2 + 20;
        const uint8_t* pix = s.data() + s.size() - 2 - 10 - indexName - f.logicalIndexSize - f.physicalIndexSize;
        if (v == Version::Jet4) {
            EXPECT_EQ(1625u, jet::le32(s.data() + 0x0C));
            EXPECT_EQ(1, s[0x18]);
            EXPECT_EQ(1625u, jet::le32(column0 + 1));
            EXPECT_EQ(1923u, jet::le32(pix));
        } else {
            EXPECT_EQ(1, jet::le16(column0 + 7));
        }
        // The two used index slots, then unused ones.
        const uint32_t slots = v == Version::Jet3 ? 0 : 4;
        EXPECT_EQ(1, jet::le16(pix + slots));
        EXPECT_EQ(1, pix[slots + 2]);
        EXPECT_EQ(0, jet::le16(pix + slots + 3));
        EXPECT_EQ(0, pix[slots + 5]);
        EXPECT_EQ(0xFFFF, jet::le16(pix + slots + 6));

        TableDef back = TableDef::parse(f, *jet::CodePage::get(1252), s);
        ASSERT_EQ(3u, back.columns().size());
        EXPECT_EQ("Id", back.columns()[1].name);
        EXPECT_TRUE(back.columns()[1].isAutoNumber());
        EXPECT_EQ(ColumnType::Memo, back.columns()[2].type());
        ASSERT_EQ(1u, back.longValueMaps().size());
        EXPECT_EQ(0x0604u, back.longValueMaps()[0].freeMap);
        ASSERT_EQ(1u, back.physicalIndexes().size());
        EXPECT_EQ(9u, back.physicalIndexes()[0].rootPage);
        EXPECT_FALSE(back.physicalIndexes()[0].columns[1].ascending);
        ASSERT_EQ(1u, back.logicalIndexes().size());
        EXPECT_EQ("PrimaryKey", back.logicalIndexes()[0].name);
        EXPECT_EQ(-1, back.logicalIndexes()[0].relatedIndex);
        EXPECT_EQ(0x0601u, back.ownedMap());
        EXPECT_EQ(0x4E, back.tableType());
    }
}

TEST(TableDefSerializer, LongDefinitionsSpreadOverChainedPages) {
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const Format& f = Format::of(v);
        TableDef def = TableDef::blank(v, 0x4E);
        for (uint16_t i = 0; i < 250; ++i) def.addColumn(textColumn("column number " + std::to_string(i), i, i, v));
        def.setMaxColumns(250);
        def.setVarColumns(250);
        const std::vector<uint8_t> s = serializeTableDef(f, *jet::CodePage::get(1252), def);
        const uint32_t count = jet::tableDefPageCount(f, s.size());
        ASSERT_GE(count, 3u);
        std::vector<uint32_t> pages;
        for (uint32_t i = 0; i < count; ++i) pages.push_back(40 + 3 * i);
        auto images = jet::tableDefPageImages(f, s, pages);
        std::vector<uint8_t> joined;
        for (uint32_t i = 0; i < count; ++i) {
            const auto& p = images[i];
            EXPECT_EQ(0x02, p[0]);
            EXPECT_EQ(i + 1 < count ? pages[i + 1] : 0u, jet::le32(p.data() + 4));
            joined.insert(joined.end(), p.begin() + (i == 0 ? 0 : 8), p.end());
            if (v == Version::Jet3) {
                EXPECT_EQ('V', p[2]);
                EXPECT_EQ('C', p[3]);
            } else if (i == 0) {
                EXPECT_EQ(0, jet::le16(p.data() + 2));
            } else if (i + 1 == count) {
                const size_t last = s.size() - f.pageSize - (count - 2) * (f.pageSize - 8);
                EXPECT_EQ(f.pageSize - 16 - last, jet::le16(p.data() + 2));
            }
        }
        joined.resize(s.size());
        TableDef back = TableDef::parse(f, *jet::CodePage::get(1252), joined);
        ASSERT_EQ(250u, back.columns().size());
        EXPECT_EQ("column number 249", back.columns().back().name);
        EXPECT_EQ(back.declaredLength(), back.parsedLength());
        EXPECT_THROW(jet::tableDefPageImages(f, s, std::span(pages).first(count - 1)), std::logic_error);
    }
    // A short stream takes one page whose free space counts the rest.
    const Format& f4 = Format::of(Version::Jet4);
    std::vector<uint8_t> small(300, 0);
    auto one = jet::tableDefPageImages(f4, small, std::vector<uint32_t>{7});
    EXPECT_EQ(4096 - 8 - 300, jet::le16(one[0].data() + 2));
    EXPECT_EQ(1u, jet::tableDefPageCount(f4, 4096));
    EXPECT_EQ(2u, jet::tableDefPageCount(f4, 4097));
}

TEST(TableDefSerializer, NamesTheCodePageCannotHoldAreRefused) {
    const Format& f = Format::of(Version::Jet3);
    TableDef def = TableDef::blank(Version::Jet3, 0x4E);
    def.addColumn(textColumn("Столбец", 0, 0, Version::Jet3));
    def.setMaxColumns(1);
    def.setVarColumns(1);
    EXPECT_THROW(serializeTableDef(f, *jet::CodePage::get(1252), def), jet::RuntimeError);
    TableDef back = TableDef::parse(f, *jet::CodePage::get(1251), serializeTableDef(f, *jet::CodePage::get(1251), def));
    EXPECT_EQ("Столбец", back.columns()[0].name);
}

}  // namespace
