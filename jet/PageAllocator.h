#pragma once
// Hands out new pages for one write transaction: always at the end of the file, each one
// marked in use in the global map (page 1, row 0, where a set bit means free).
//
// Invariants:
//  - A page is handed out only after the global map says it is in use. When the file
//    outgrows the map, the map's row is lengthened on page 1 (pages beyond the end of the
//    file marked free, as Access does); when page 1 has no room left, the map becomes a
//    reference map whose usage-map pages start all free and have every page in use cleared.
//  - A global map that cannot be read is never guessed at: allocation is refused with a
//    clear error, and the caller's transaction rolls back.
//  - Pages are never taken from the free bits of the map: reusing a page means knowing that
//    nothing refers to it, which a map alone cannot tell.

#include <cstdint>

#include "Format.h"

namespace jet {

class Pager;

class PageAllocator {
public:
    PageAllocator(Pager& pager, const Format& format) : pager_(pager), f_(format) {}

    // A new zeroed page at the end of the file, in use in the global map.
    uint32_t allocate();
    // A new usage-map page (type 0x05) with all bits clear, or all set for the global map.
    uint32_t allocateMapPage(bool allSet = false);

private:
    void markUsed(uint32_t page);
    void markUsedInline(uint32_t page);
    void markUsedReference(uint32_t page);
    void lengthenInline(uint32_t page);
    void convertToReference();
    void checkReadable();

    Pager& pager_;
    const Format& f_;
    bool checked_ = false;
};

}  // namespace jet
