#pragma once
// Changes a usage map in place: a page joins or leaves the set. The map keeps its row
// (and the row its length); what changes is the bitmap, the window of an inline map, or
// the map's kind.
//
// Invariants:
//  - An inline map whose window cannot take a page moves its window when every member and
//    the new page fit into one window starting at a multiple of 8; otherwise it becomes a
//    reference map in the same row, its members carried over, and each window of pages it
//    needs gets a usage-map page (type 0x05) allocated at the end of the file.
//  - Removing a page the map does not hold changes nothing.
//  - The global map (page 1, row 0) is not changed here: its bits mean "free" and it grows
//    with the file, which is the allocator's business.

#include <cstdint>
#include <span>

#include "format/DataPage.h"
#include "format/Format.h"

namespace jet {

class Pager;
class PageAllocator;

class UsageMapWriter {
public:
    UsageMapWriter(Pager& pager, const Format& format, uint32_t rowPointer, PageAllocator& allocator);

    void add(uint32_t page);
    void remove(uint32_t page);

private:
    std::span<uint8_t> row();
    void setReferenceBit(uint32_t page, bool on);
    void convertToReference(uint32_t extraPage);

    Pager& pager_;
    const Format& f_;
    RowLocation location_;
    PageAllocator& allocator_;
};

}  // namespace jet
