#pragma once
// The two on-disk formats the engine handles and the sizes and offsets that differ
// between them. Every layer takes its numbers from here instead of spelling out
// "version == Jet3 ? a : b" itself.

#include <cstdint>

#include "jet/Version.h"

namespace jet {

// Column type codes as stored in a column descriptor.
enum class ColumnType : uint8_t {
    Bool = 0x01,
    Byte = 0x02,
    Int = 0x03,       // 16-bit
    Long = 0x04,      // 32-bit
    Money = 0x05,     // currency: int64 in units of 1/10000
    Float = 0x06,     // single
    Double = 0x07,
    DateTime = 0x08,  // double: days since 1899-12-30
    Binary = 0x09,
    Text = 0x0A,
    Ole = 0x0B,       // long binary
    Memo = 0x0C,      // long text
    Guid = 0x0F,
    Numeric = 0x10,   // decimal, Jet 4 only
};

// Page types (first byte of a page).
namespace page_type {
inline constexpr uint8_t Header = 0x00;
inline constexpr uint8_t Data = 0x01;
inline constexpr uint8_t TableDef = 0x02;
inline constexpr uint8_t IndexNode = 0x03;
inline constexpr uint8_t IndexLeaf = 0x04;
inline constexpr uint8_t UsageMap = 0x05;
}  // namespace page_type

struct Format {
    Version version;
    uint32_t pageSize;

    // Data pages.
    uint32_t dataRowCountOffset;   // u16 number of row slots
    uint32_t dataSlotsOffset;      // first u16 slot
    // Table definitions.
    uint32_t tdefHeaderSize;
    uint32_t indexCountBlockSize;
    uint32_t columnDescriptorSize;
    uint32_t physicalIndexSize;
    uint32_t logicalIndexSize;
    // Index pages.
    uint32_t indexMaskOffset;
    uint32_t indexMaskSize;
    uint32_t indexEntriesOffset;
    uint32_t indexPrevOffset;      // then next, tail at +4 and +8
    uint32_t indexPrefixOffset;
    uint32_t indexPrefixSize;      // 1 (Jet 3) or 2 (Jet 4) bytes
    uint32_t maxIndexEntryBytes;   // stored entry bytes that fit on one index page
    // Rows and long values.
    uint32_t maxRowSize;           // the limit writers keep for a row
    uint32_t maxLvalRowSize;       // bytes writers put into one long-value row
    // Usage maps.
    uint32_t inlineMapBytes;       // bitmap bytes of a new inline map
    uint32_t pagesPerMapPage;      // pages covered by one type-0x05 page of a reference map

    uint32_t emptyDataPageFree() const { return pageSize - dataSlotsOffset; }

    bool isJet3() const { return version == Version::Jet3; }
    // Header: length of the RC4-masked region from 0x18, and of the password field at 0x42.
    uint32_t headerMaskLength() const { return isJet3() ? 126 : 128; }
    uint32_t passwordLength() const { return isJet3() ? 20 : 40; }
    // Data pages: the owner (TDEF page, 0 for usage maps, "LVAL" for long values) at 4.
    static constexpr uint32_t dataOwnerOffset = 4;
    // Rows: column count, eod, variable offsets and variable count are 1 (Jet 3) or 2 bytes.
    uint32_t rowFieldSize() const { return isJet3() ? 1 : 2; }
    // Names in definitions: u8 length + code-page bytes (Jet 3), u16 length + UCS-2 (Jet 4).
    uint32_t nameLengthSize() const { return isJet3() ? 1 : 2; }

    static const Format& of(Version v);
};

// Where the fields of a table definition's header and descriptors sit (offsets in the
// definition stream, which starts with the 8-byte page header).
struct TableDefLayout {
    uint32_t length, rowCount, autoNumber, tableType, maxColumns, varColumns, columnCount,
        logicalIndexCount, physicalIndexCount, ownedMap, freeMap;
    // Column descriptor.
    uint32_t colType, colNumber, colVarIndex, colCollation, colCodePage, colPrecision, colScale,
        colFlags, colExtraFlags, colFixedOffset, colLength;
    // Physical index descriptor.
    uint32_t pixColumns, pixOwnedMap, pixRootPage, pixFlags;
    // Logical index descriptor.
    uint32_t lixNumber, lixPhysical, lixRelatedType, lixRelatedIndex, lixRelatedTable,
        lixCascadeUpdate, lixCascadeDelete, lixKind;

    static const TableDefLayout& of(Version v);
};

inline const TableDefLayout& TableDefLayout::of(Version v) {
    // "none" marks a field the version does not have.
    constexpr uint32_t none = UINT32_MAX;
    static const TableDefLayout jet3{0x08, 0x0C, 0x10, 0x14, 0x15, 0x17, 0x19, 0x1B, 0x1F, 0x23, 0x27,
                                     0, 1, 3, 9, 11, none, none, 13, none, 14, 16,
                                     0, 30, 34, 38,
                                     0, 4, 8, 9, 13, 17, 18, 19};
    static const TableDefLayout jet4{0x08, 0x10, 0x14, 0x28, 0x29, 0x2B, 0x2D, 0x2F, 0x33, 0x37, 0x3B,
                                     0, 5, 7, 11, none, 11, 12, 15, 16, 21, 23,
                                     4, 34, 38, 46,
                                     4, 8, 12, 13, 17, 21, 22, 23};
    return v == Version::Jet3 ? jet3 : jet4;
}

inline const Format& Format::of(Version v) {
    static const Format jet3{Version::Jet3, 2048,
                             0x08, 0x0A,
                             43, 8, 18, 39, 20,
                             0x16, 226, 0xF8, 0x08, 0x14, 1, 1800,
                             2012, 2032,
                             128, (2048 - 4) * 8};
    static const Format jet4{Version::Jet4, 4096,
                             0x0C, 0x0E,
                             63, 12, 25, 52, 28,
                             0x1B, 453, 0x1E0, 0x0C, 0x18, 2, 3616,
                             4060, 4076,
                             64, (4096 - 4) * 8};
    return v == Version::Jet3 ? jet3 : jet4;
}

}  // namespace jet
