#pragma once
// Hands out pages for one write transaction, each one marked in use in the global map
// (page 1, row 0, where a set bit means free), and takes back pages a dropped structure
// gave up.
//
// Invariants:
//  - A page is handed out only after the global map says it is in use. When the file
//    outgrows the map, the map's row is lengthened on page 1 (pages beyond the end of the
//    file marked free, as Access does); when page 1 has no room left, the map becomes a
//    reference map whose usage-map pages start all free and have every page in use cleared.
//  - A global map that cannot be read is never guessed at: allocation is refused with a
//    clear error, and the caller's transaction rolls back.
//  - A free bit alone never makes a page reusable: Access leaves freed pages with their old
//    contents, and the map cannot tell whether anything still refers to them. A page is
//    reused only when it is marked free and is all zeros, which is how release() leaves
//    it (no live structure is an all-zero page: every one starts with its type byte, and
//    page 0 is never given out). Otherwise new pages come from the end of the file.

#include <cstdint>
#include <optional>
#include <vector>

#include "format/Format.h"

namespace jet {

class Pager;

class PageAllocator {
public:
    PageAllocator(Pager& pager, const Format& format) : pager_(pager), f_(format) {}

    // A zeroed page in use in the global map: the lowest released one, else a new one at
    // the end of the file.
    uint32_t allocate();
    // Takes a page back: its contents are cleared and the global map marks it free. The
    // caller makes sure that nothing refers to it any more.
    void release(uint32_t page);
    // A new usage-map page (type 0x05) with all bits clear, or all set for the global map.
    uint32_t allocateMapPage(bool allSet = false);

private:
    void markUsed(uint32_t page);
    void markUsedInline(uint32_t page);
    void markUsedReference(uint32_t page);
    void lengthenInline(uint32_t page);
    void convertToReference();
    void checkReadable();
    void markFree(uint32_t page);
    std::optional<uint32_t> takeReleased();

    Pager& pager_;
    const Format& f_;
    bool checked_ = false;
    bool releasedKnown_ = false;
    std::vector<uint32_t> released_;  // reusable pages, highest first
};

}  // namespace jet
