// Table definitions: columns, indexes, multi-page streams, damaged chains.
#include <gtest/gtest.h>

#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Database.h"
#include "jet/Table.h"

namespace {

using jet::ColumnType;
using jet::Database;
using jet::testing::fixture;
using jet::testing::MemoryFile;
using jet::testing::readFileBytes;

std::vector<uint16_t> columnNumbers(const jet::TableDef& def) {
    std::vector<uint16_t> n;
    for (const auto& c : def.columns()) n.push_back(c.number);
    return n;
}

TEST(TableDef, TwoPageDefinitionsParseInBothVersions) {
    for (const char* file : {"testV1997.mdb", "testV2000.mdb"}) {
        auto db = Database::open(fixture(file));
        const auto& def = db->openTable("Table2")->def();
        EXPECT_EQ(2u, def.pages().size()) << file;
        ASSERT_EQ(89u, def.columns().size()) << file;
        EXPECT_EQ("column1", def.columns().front().name);
        EXPECT_EQ("column89", def.columns().back().name);
        EXPECT_EQ(def.declaredLength(), def.parsedLength()) << file;
        EXPECT_TRUE(def.hasEndMarker());
        EXPECT_EQ(5u, def.logicalIndexes().size());
        EXPECT_EQ(0x4E, def.tableType());
    }
}

TEST(TableDef, ColumnsOfEveryFixedTypeWithOffsetsAndFlags) {
    auto db = Database::open(fixture("testV1997.mdb"));
    const auto& def = db->openTable("Table1")->def();
    const char* names = "ABCDEFGHI";
    ColumnType types[] = {ColumnType::Text, ColumnType::Text, ColumnType::Byte, ColumnType::Int, ColumnType::Long,
                          ColumnType::Double, ColumnType::DateTime, ColumnType::Money, ColumnType::Bool};
    ASSERT_EQ(9u, def.columns().size());
    for (size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(std::string(1, names[i]), def.columns()[i].name);
        EXPECT_EQ(types[i], def.columns()[i].type());
    }
    EXPECT_FALSE(def.columns()[0].isFixed());
    EXPECT_EQ(50, def.columns()[0].length) << "Jet 3 text lengths count characters";
    EXPECT_EQ(1252, def.columns()[0].codePage);
    EXPECT_TRUE(def.columns()[2].isFixed());
    EXPECT_EQ(0, def.columns()[2].fixedOffset);
    EXPECT_EQ(1, def.columns()[3].fixedOffset);

    auto db4 = Database::open(fixture("testV2000.mdb"));
    const auto& def4 = db4->openTable("Table1")->def();
    EXPECT_EQ(100, def4.columns()[0].length) << "Jet 4 text lengths count bytes";
    EXPECT_TRUE(def4.columns()[0].compressedUnicode());
    EXPECT_FALSE(def4.columns()[1].compressedUnicode());
    EXPECT_EQ(0x0409, def4.columns()[0].collation);
}

TEST(TableDef, AutoNumberAndReplicationIdFlags) {
    auto db = Database::open(fixture("testV1997.mdb"));
    EXPECT_TRUE(db->openTable("Table3")->def().columns()[0].isAutoNumber());
    const auto& guid = db->openTable("Table4")->def().columns()[1];
    EXPECT_EQ(ColumnType::Guid, guid.type());
    EXPECT_TRUE(guid.flags & jet::column_flag::GuidAutoNumber);
}

TEST(TableDef, DroppedColumnsLeaveGapsInNumbering) {
    auto db = Database::open(fixture("delColTestV2000.mdb"));
    const auto& def = db->openTable("Table1")->def();
    EXPECT_EQ((std::vector<uint16_t>{0, 2, 3, 5}), columnNumbers(def));
    EXPECT_EQ(6, def.maxColumns());
    EXPECT_EQ(0, def.findColumn("data")->varIndex);
    EXPECT_EQ(2, def.findColumn("DATA2")->varIndex);
}

TEST(TableDef, SystemTableDescriptorsAreSortedByNumber) {
    auto db = Database::open(fixture("empty.mdb"));
    const auto& def = db->openTable("MSysObjects")->def();
    ASSERT_EQ(17u, def.columns().size());
    for (uint16_t i = 0; i < 17; ++i) EXPECT_EQ(i, def.columns()[i].number);
    EXPECT_EQ("Id", def.columns()[0].name);
    EXPECT_EQ("LvExtra", def.columns()[16].name);
    EXPECT_NE(0, def.columns()[0].descriptorIndex) << "Jet 4 stores these descriptors by name";
    EXPECT_TRUE(def.isSystemTable());
    EXPECT_EQ(11, def.varColumns());
    EXPECT_NE(nullptr, def.longValueMapsOf(14)) << "LvProp has its long-value maps";
}

TEST(TableDef, DecimalPrecisionAndScale) {
    auto db = Database::open(fixture("fixedNumericTestV2003.mdb"));
    const auto* c = db->openTable("test")->def().findColumn("col2");
    ASSERT_NE(nullptr, c);
    EXPECT_EQ(ColumnType::Numeric, c->type());
    EXPECT_TRUE(c->isFixed());
    EXPECT_EQ(18, c->precision);
    EXPECT_EQ(0, c->scale);
}

TEST(TableDef, PhysicalAndLogicalIndexesIncludingForeignKeys) {
    auto db = Database::open(fixture("indexTestV1997.mdb"));
    const auto& def = db->openTable("Table1")->def();
    const jet::LogicalIndex* pk = nullptr;
    int foreign = 0;
    for (const auto& x : def.logicalIndexes()) {
        if (x.name == "PrimaryKey") pk = &x;
        if (x.kind == jet::index_kind::ForeignKey) {
            ++foreign;
            EXPECT_NE(0u, x.relatedTable);
        }
    }
    ASSERT_NE(nullptr, pk);
    EXPECT_EQ(jet::index_kind::PrimaryKey, pk->kind);
    EXPECT_EQ(2, foreign);
    const auto& phys = def.physicalIndexes().at(pk->physicalIndex);
    ASSERT_EQ(1u, phys.columns.size());
    EXPECT_EQ(def.findColumn("id")->number, phys.columns[0].columnNumber);
    EXPECT_TRUE(phys.columns[0].ascending);
    EXPECT_TRUE(phys.flags & jet::index_flag::Unique);
    EXPECT_LT(phys.rootPage, db->pager().pageCount());

    auto desc = Database::open(fixture("compIndexTestV1997.mdb"));
    const auto& d = desc->openTable("Table1")->def();
    ASSERT_EQ(1u, d.physicalIndexes().size());
    EXPECT_FALSE(d.physicalIndexes()[0].columns[0].ascending);
}

TEST(TableDef, ALoopingContinuationChainIsDamageNotAHang) {
    auto bytes = readFileBytes(fixture("testV1997.mdb"));
    auto db = Database::open(fixture("testV1997.mdb"));
    auto pages = db->openTable("Table2")->def().pages();
    ASSERT_EQ(2u, pages.size());
    // The continuation page points back to the first page.
    jet::putLe32(bytes.data() + size_t(pages[1]) * 2048 + 4, pages[0]);
    auto broken = Database::open(std::make_unique<MemoryFile>(bytes), "loop.mdb");
    EXPECT_THROW(broken->openTable("Table2"), jet::CorruptError);
}

TEST(TableDef, CountsTheStreamCannotHoldAreRefused) {
    auto db = Database::open(fixture("testV2000.mdb"));
    auto def = db->openTable("Table1")->def();
    std::vector<uint8_t> stream = def.stream();
    jet::putLe16(stream.data() + 0x2D, 0xFFFF);  // column count
    EXPECT_THROW(jet::TableDef::parse(db->format(), db->codePage(), stream), jet::CorruptError);
    stream = def.stream();
    stream.resize(def.parsedLength() - 10);  // cut inside the index names
    EXPECT_THROW(jet::TableDef::parse(db->format(), db->codePage(), stream), jet::CorruptError);
}

}  // namespace
