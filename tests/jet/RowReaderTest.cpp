// Row layouts built byte by byte: Jet 3 jump tables, Jet 4 offsets, old layouts, damage.
#include <gtest/gtest.h>

#include "jet/Bytes.h"
#include "jet/Pager.h"
#include "jet/RowReader.h"

namespace {

using jet::Column;
using jet::ColumnType;
using jet::Format;
using jet::RowReader;
using jet::Version;

Column fixedColumn(uint16_t number, ColumnType type, uint16_t offset) {
    Column c;
    c.name = "f" + std::to_string(number);
    c.typeCode = uint8_t(type);
    c.number = number;
    c.fixedOffset = offset;
    c.flags = jet::column_flag::Fixed;
    c.length = uint16_t(jet::fixedSizeOf(c.typeCode));
    return c;
}

Column varColumn(uint16_t number, uint16_t varIndex) {
    Column c;
    c.name = "v" + std::to_string(number);
    c.typeCode = uint8_t(ColumnType::Text);
    c.number = number;
    c.varIndex = varIndex;
    return c;
}

// The example row of the format notes: one LONG and four texts whose values start at 5,
// 209, 256 and 256 and end at 300, so one jump-table entry is needed.
std::vector<uint8_t> jet3JumpRow() {
    std::vector<uint8_t> row(308, 0);
    row[0] = 5;
    jet::putLe32(&row[1], 12345);
    for (int i = 5; i < 300; ++i) row[size_t(i)] = uint8_t('a' + i % 26);
    uint8_t trailer[] = {0x2C, 0x00, 0x00, 0xD1, 0x05, 0x02, 0x04, 0x1F};
    std::copy(std::begin(trailer), std::end(trailer), row.begin() + 300);
    return row;
}

TEST(RowReader, Jet3JumpTableLiftsOffsetsPastByte255) {
    auto row = jet3JumpRow();
    RowReader r(Format::of(Version::Jet3), 4, row);
    EXPECT_EQ(5, r.columnCount());
    EXPECT_EQ(4, r.varCount());
    EXPECT_EQ(5u, r.varOffset(0));
    EXPECT_EQ(209u, r.varOffset(1));
    EXPECT_EQ(256u, r.varOffset(2));
    EXPECT_EQ(256u, r.varOffset(3));
    EXPECT_EQ(300u, r.endOfData());
    EXPECT_EQ(204u, r.column(varColumn(1, 0)).bytes.size());
    EXPECT_EQ(47u, r.column(varColumn(2, 1)).bytes.size());
    auto empty = r.column(varColumn(3, 2));
    EXPECT_TRUE(empty.present);
    EXPECT_TRUE(empty.bytes.empty());
    auto last = r.column(varColumn(4, 3));
    EXPECT_EQ(44u, last.bytes.size());
    EXPECT_EQ(row.data() + 256, last.bytes.data());
    EXPECT_EQ(12345u, jet::le32(r.column(fixedColumn(0, ColumnType::Long, 0)).bytes.data()));
}

TEST(RowReader, Jet3FillerSlotIsNotCountedAsAJump) {
    // A short row padded so its length passes 256 while its data stays below: the jump
    // table has one slot that is only a filler (0xFF).
    std::vector<uint8_t> row(260, 0);
    row[0] = 2;
    const char* text = "hello";
    std::copy(text, text + 5, row.begin() + 1);
    // eod 6, offset of slot 0 = 1, filler, count 1, mask 0x02 (column 1 present).
    size_t L = row.size();
    row[L - 1] = 0x02;
    row[L - 2] = 1;
    row[L - 3] = 0xFF;
    row[L - 4] = 1;
    row[L - 5] = 6;
    RowReader r(Format::of(Version::Jet3), 1, row);
    auto v = r.column(varColumn(1, 0));
    ASSERT_TRUE(v.present);
    EXPECT_EQ("hello", std::string(v.bytes.begin(), v.bytes.end()));
}

std::vector<uint8_t> jet4Row() {
    // LONG 7 at fixed offset 0, "ab" in slot 0, an empty slot 1; columns 0 and 1 present.
    std::vector<uint8_t> row(19, 0);
    jet::putLe16(&row[0], 3);
    jet::putLe32(&row[2], 7);
    row[6] = 'a';
    row[8] = 'b';
    jet::putLe16(&row[10], 10);  // eod
    jet::putLe16(&row[12], 10);  // slot 1
    jet::putLe16(&row[14], 6);   // slot 0
    jet::putLe16(&row[16], 2);   // variable count
    row[18] = 0x03;
    return row;
}

TEST(RowReader, Jet4OffsetsNullsAndColumnsAddedLater) {
    auto row = jet4Row();
    RowReader r(Format::of(Version::Jet4), 2, row);
    EXPECT_EQ(7u, jet::le32(r.column(fixedColumn(0, ColumnType::Long, 0)).bytes.data()));
    auto text = r.column(varColumn(1, 0));
    ASSERT_TRUE(text.present);
    EXPECT_EQ(4u, text.bytes.size());
    EXPECT_FALSE(r.column(varColumn(2, 1)).present) << "mask bit 2 is clear";
    EXPECT_FALSE(r.column(varColumn(3, 2)).present) << "column 3 was added after the row was written";
    EXPECT_FALSE(r.column(fixedColumn(5, ColumnType::Double, 4)).present);
    Column flag;
    flag.typeCode = uint8_t(ColumnType::Bool);
    flag.number = 1;
    EXPECT_TRUE(r.column(flag).present) << "a Yes/No value is its mask bit";
    flag.number = 2;
    EXPECT_FALSE(r.column(flag).present);
}

TEST(RowReader, RowsOfTablesWithoutVariableColumnsHaveNoVariableSection) {
    std::vector<uint8_t> row = {1, 0, 0x2A, 0, 0, 0, 0x01};
    RowReader r(Format::of(Version::Jet4), 0, row);
    EXPECT_EQ(42u, jet::le32(r.column(fixedColumn(0, ColumnType::Long, 0)).bytes.data()));
}

TEST(RowReader, DamagedTrailersAndOffsetsAreErrors) {
    const Format& f4 = Format::of(Version::Jet4);
    auto row = jet4Row();
    jet::putLe16(&row[16], 500);  // variable count far beyond the row
    EXPECT_THROW(RowReader(f4, 2, row), jet::CorruptError);

    row = jet4Row();
    jet::putLe16(&row[10], 200);  // eod beyond the trailer
    EXPECT_THROW(RowReader(f4, 2, row), jet::CorruptError);

    row = jet4Row();
    jet::putLe16(&row[14], 9);  // slot 0 starts after slot 1 begins
    jet::putLe16(&row[12], 8);
    RowReader r(f4, 2, row);
    EXPECT_THROW(r.column(varColumn(1, 0)), jet::CorruptError);

    row = jet4Row();
    EXPECT_THROW(RowReader(f4, 2, std::span(row).first(1)), jet::CorruptError);
    RowReader fixedOk(f4, 2, row);
    EXPECT_THROW(fixedOk.column(fixedColumn(0, ColumnType::Double, 6)), jet::CorruptError)
        << "a fixed value reaching into the trailer";

    auto j3 = jet3JumpRow();
    j3[306] = 200;  // Jet 3 variable count larger than the row allows
    EXPECT_THROW(RowReader(Format::of(Version::Jet3), 4, j3), jet::CorruptError);
}

}  // namespace
