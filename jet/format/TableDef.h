#pragma once
// A table's definition (TDEF): its counters, columns, indexes and long-value maps, parsed
// from the byte stream that starts on the table's first TDEF page and continues on the
// pages chained through each page's "next" field.
//
// Invariants:
//  - The chain is followed without loops and only through pages of type 0x02; a stream
//    that ends before the structures its header announces is a CorruptError.
//  - columns() is sorted by column number (the file may store descriptors in any order;
//    Column::descriptorIndex keeps the file order).
//  - Everything needed to write the definition back is kept: the whole stream (stream()),
//    and for each descriptor its raw bytes, so fields nobody interprets survive a rewrite.
//  - A schema change edits a copy through the members under "Editing" and writes it back
//    as a whole (TableDefSerializer.h); the header's counts follow the lists, so a copy
//    never announces more columns or indexes than it holds.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "format/Format.h"

namespace jet {

class Pager;
class CodePage;

namespace column_flag {
inline constexpr uint8_t Fixed = 0x01;
inline constexpr uint8_t Updatable = 0x02;
inline constexpr uint8_t AutoNumber = 0x04;
inline constexpr uint8_t System = 0x10;
inline constexpr uint8_t GuidAutoNumber = 0x40;
inline constexpr uint8_t Hyperlink = 0x80;
}  // namespace column_flag

struct Column {
    std::string name;
    uint8_t typeCode = 0;         // a ColumnType value, or an opaque code of Access's own tables
    uint16_t number = 0;          // null-mask bit and identity of the column
    uint16_t varIndex = 0;        // slot in the row's variable-offset table (variable columns)
    uint16_t fixedOffset = 0;     // offset in the row's fixed area (fixed columns)
    uint16_t length = 0;          // bytes (Jet 4 text: twice the characters)
    uint8_t flags = 0;            // column_flag bits
    uint8_t extraFlags = 0;       // Jet 4: 0x01 = compressed Unicode allowed
    uint16_t collation = 0;       // LCID of the collating order (text and memo)
    uint8_t collationVersion = 0; // Jet 4
    uint16_t codePage = 0;        // Jet 3: code page of the column's text (0 = the database's)
    uint8_t precision = 0;        // Jet 4 NUMERIC
    uint8_t scale = 0;            // Jet 4 NUMERIC
    uint16_t descriptorIndex = 0; // position of the descriptor in the file
    std::vector<uint8_t> raw;     // the descriptor as stored

    ColumnType type() const { return ColumnType(typeCode); }
    bool isFixed() const { return flags & column_flag::Fixed; }
    bool isLongValue() const { return typeCode == uint8_t(ColumnType::Memo) || typeCode == uint8_t(ColumnType::Ole); }
    bool isText() const { return typeCode == uint8_t(ColumnType::Text) || typeCode == uint8_t(ColumnType::Memo); }
    bool compressedUnicode() const { return extraFlags & 0x01; }
    bool isAutoNumber() const { return flags & column_flag::AutoNumber; }
};

struct IndexColumn {
    uint16_t columnNumber = 0;
    bool ascending = true;
};

namespace index_flag {
inline constexpr uint8_t Unique = 0x01;
inline constexpr uint8_t IgnoreNulls = 0x02;
inline constexpr uint8_t Required = 0x08;
}  // namespace index_flag

struct PhysicalIndex {
    uint32_t number = 0;               // position in the definition
    std::vector<IndexColumn> columns;  // used slots, in key order
    uint32_t ownedMap = 0;             // row pointer of the map of the index's pages
    uint32_t rootPage = 0;
    uint8_t flags = 0;                 // index_flag bits (Jet 4 adds 0x80 everywhere)
    uint32_t distinctKeys = 0;         // a statistic only
    std::vector<uint8_t> countBlock;   // the index's row-count block as stored
    std::vector<uint8_t> raw;          // the descriptor as stored
};

namespace index_kind {
inline constexpr uint8_t Ordinary = 0;
inline constexpr uint8_t PrimaryKey = 1;
inline constexpr uint8_t ForeignKey = 2;
}  // namespace index_kind

struct LogicalIndex {
    std::string name;
    int32_t number = 0;
    uint32_t physicalIndex = 0;
    uint8_t relatedType = 0;       // foreign keys: 1 primary side, 2 referencing side
    int32_t relatedIndex = -1;     // foreign keys: logical index number in the other table
    uint32_t relatedTable = 0;     // foreign keys: TDEF page of the other table
    uint8_t cascadeUpdate = 0;
    uint8_t cascadeDelete = 0;
    uint8_t kind = index_kind::Ordinary;
    std::vector<uint8_t> raw;
};

struct LongValueMaps {
    uint16_t columnNumber = 0;
    uint32_t ownedMap = 0;   // row pointers; 0 = no such map
    uint32_t freeMap = 0;
};

class TableDef {
public:
    // Reads and parses the definition whose first page is `page`. `codePage` decodes Jet 3
    // names. Throws CorruptError for anything that is not a well-formed definition.
    static TableDef read(Pager& pager, const Format& format, const CodePage& codePage, uint32_t page);
    // Parses a definition stream already assembled (used by read() and by tests).
    static TableDef parse(const Format& format, const CodePage& codePage, std::vector<uint8_t> stream);

    Version version() const { return version_; }
    uint32_t page() const { return pages_.empty() ? 0 : pages_.front(); }
    const std::vector<uint32_t>& pages() const { return pages_; }
    const std::vector<uint8_t>& stream() const { return stream_; }

    uint32_t declaredLength() const { return declaredLength_; }
    // Bytes the parser consumed, up to and including the final 0xFFFF.
    uint32_t parsedLength() const { return parsedLength_; }
    bool hasEndMarker() const { return hasEndMarker_; }

    uint32_t rowCount() const { return rowCount_; }
    uint32_t autoNumber() const { return autoNumber_; }
    uint8_t tableType() const { return tableType_; }
    bool isSystemTable() const { return tableType_ == 0x53; }
    uint16_t maxColumns() const { return maxColumns_; }
    uint16_t varColumns() const { return varColumns_; }
    uint32_t ownedMap() const { return ownedMap_; }
    uint32_t freeMap() const { return freeMap_; }

    const std::vector<Column>& columns() const { return columns_; }
    const std::vector<PhysicalIndex>& physicalIndexes() const { return physical_; }
    const std::vector<LogicalIndex>& logicalIndexes() const { return logical_; }
    const std::vector<LongValueMaps>& longValueMaps() const { return longValueMaps_; }

    const Column* findColumn(std::string_view name) const;  // case-insensitive
    const Column* columnByNumber(uint16_t number) const;
    const LongValueMaps* longValueMapsOf(uint16_t columnNumber) const;
    // The physical indexes that key on a column.
    bool columnIsIndexed(uint16_t columnNumber) const;

    // Editing. A definition made from nothing has no stream yet; its header starts from the
    // constants a new definition carries.
    static TableDef blank(Version version, uint8_t tableType);
    void setPages(std::vector<uint32_t> pages) { pages_ = std::move(pages); }
    void setRowCount(uint32_t n) { rowCount_ = n; }
    void setMaxColumns(uint16_t n) { maxColumns_ = n; }
    void setVarColumns(uint16_t n) { varColumns_ = n; }
    void setMaps(uint32_t ownedMap, uint32_t freeMap) { ownedMap_ = ownedMap; freeMap_ = freeMap; }
    // The column joins the end of the descriptor list; columns() stays sorted by number.
    void addColumn(Column column);
    void removeColumn(uint16_t number);
    void renameColumn(uint16_t number, std::string name);
    void addPhysicalIndex(PhysicalIndex index);
    void addLogicalIndex(LogicalIndex index);
    void addLongValueMaps(LongValueMaps maps) { longValueMaps_.push_back(maps); }
    void removeLongValueMaps(uint16_t columnNumber);

private:
    Version version_ = Version::Jet4;
    std::vector<uint32_t> pages_;
    std::vector<uint8_t> stream_;
    uint32_t declaredLength_ = 0;
    uint32_t parsedLength_ = 0;
    bool hasEndMarker_ = false;
    uint32_t rowCount_ = 0;
    uint32_t autoNumber_ = 0;
    uint8_t tableType_ = 0;
    uint16_t maxColumns_ = 0;
    uint16_t varColumns_ = 0;
    uint32_t ownedMap_ = 0;
    uint32_t freeMap_ = 0;
    std::vector<Column> columns_;
    std::vector<PhysicalIndex> physical_;
    std::vector<LogicalIndex> logical_;
    std::vector<LongValueMaps> longValueMaps_;
};

// Size of a value in the fixed area for types with a fixed size; 0 for the others.
uint32_t fixedSizeOf(uint8_t typeCode);

}  // namespace jet
