#pragma once
// Data pages (type 0x01) and their row slots. Table rows, long-value rows and usage-map
// rows all live in slots of such pages.
//
// Invariants of a well-formed page, which row() enforces for the row it hands out:
//  - the slot table (count at dataRowCountOffset, slots after it) lies inside the page;
//  - rows are packed downwards from the page end in slot order: row k ends where row k-1
//    starts (row 0 ends at the page end), so every row's extent comes from two offsets;
//  - a row never overlaps the slot table.

#include <cstdint>
#include <span>

#include "format/Format.h"

namespace jet {

// Where a row lives: a page and its slot number on that page. Indexes and overflow
// headers refer to rows by this pair, and it stays valid for the life of the row.
struct RowLocation {
    uint32_t page = 0;
    uint8_t slot = 0;

    // The little-endian "row pointer" of definitions and long values: page * 256 + slot.
    static RowLocation fromPointer(uint32_t pointer) { return {pointer >> 8, uint8_t(pointer & 0xFF)}; }
    uint32_t pointer() const { return (page << 8) | slot; }
    bool operator==(const RowLocation&) const = default;
    auto operator<=>(const RowLocation&) const = default;
};

namespace slot_flag {
inline constexpr uint16_t OffsetMask = 0x1FFF;
inline constexpr uint16_t Overflow = 0x4000;        // the row's first 4 bytes point to its data
inline constexpr uint16_t Moved = 0x8000;           // overflow target: not a row of its own
inline constexpr uint16_t Deleted = 0xC000;         // both bits
}  // namespace slot_flag

class DataPage {
public:
    DataPage(const Format& format, const uint8_t* page) : f_(format), p_(page) {}

    bool isDataPage() const { return p_[0] == page_type::Data; }
    uint32_t owner() const;
    uint16_t freeSpace() const;
    // Number of slots; throws CorruptError when the slot table would leave the page.
    uint16_t slotCount() const;
    uint16_t slotFlags(unsigned k) const { return slotValue(k) & 0xC000; }
    uint16_t slotOffset(unsigned k) const { return slotValue(k) & slot_flag::OffsetMask; }
    bool isDeleted(unsigned k) const { return slotFlags(k) == slot_flag::Deleted; }
    bool isOverflowHeader(unsigned k) const { return slotFlags(k) == slot_flag::Overflow; }
    bool isOverflowTarget(unsigned k) const { return slotFlags(k) == slot_flag::Moved; }
    // The bytes of row k. Throws CorruptError when k is not a slot or the row is not
    // inside the page.
    std::span<const uint8_t> row(unsigned k) const;
    // The free space the page should record: lowest row offset minus the slot table end.
    int32_t computedFreeSpace() const;

    const uint8_t* bytes() const { return p_; }

private:
    uint16_t slotValue(unsigned k) const;

    const Format& f_;
    const uint8_t* p_;
};

}  // namespace jet
