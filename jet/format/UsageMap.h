#pragma once
// Usage maps: sets of page numbers kept as bitmaps in rows of data pages. Inline maps
// carry their bitmap in the row (from a start page); reference maps list type-0x05 pages
// that each hold the bitmap of a fixed window of pages.
//
// Invariants:
//  - read() only follows what the row names: a row pointer to an existing slot of a data
//    page, and for reference maps pages of type 0x05 below the page count. Anything else
//    is a CorruptError, so a damaged map cannot send a reader into the wrong pages.
//  - pages() lists every set bit in increasing order, including bits for pages beyond the
//    end of the file (the global map marks those free); users decide what those mean.

#include <cstdint>
#include <vector>

#include "format/DataPage.h"
#include "format/Format.h"

namespace jet {

class Pager;

class UsageMap {
public:
    enum class Kind : uint8_t { Inline = 0, Reference = 1 };

    static UsageMap read(Pager& pager, const Format& format, uint32_t rowPointer);

    Kind kind() const { return kind_; }
    RowLocation location() const { return location_; }
    // First page an inline map covers (a multiple of 8 in files Access writes).
    uint32_t startPage() const { return startPage_; }
    // Type-0x05 pages of a reference map (0 where a window has no page yet).
    const std::vector<uint32_t>& mapPages() const { return mapPages_; }
    const std::vector<uint32_t>& pages() const { return pages_; }
    bool contains(uint32_t page) const;

private:
    Kind kind_ = Kind::Inline;
    RowLocation location_;
    uint32_t startPage_ = 0;
    std::vector<uint32_t> mapPages_;
    std::vector<uint32_t> pages_;
};

}  // namespace jet
