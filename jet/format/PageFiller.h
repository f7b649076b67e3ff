#pragma once
// Finds room for new rows among the data pages of one owner (a table, or the long-value
// pages of one memo/OLE column) and adds pages when none has room.
//
// Invariants:
//  - Only pages of the owned map with the right owner are ever written; a new page is
//    initialised for the owner and enters the owned map and the free-space map at once.
//  - A page that cannot take the row being placed leaves the free-space map (what Access
//    does); a page that regains room (an emptied page) returns to it.
//  - The page last filled is remembered for the transaction, so a bulk insert appends to it
//    without reading any map, and reads the free-space map only when that page is full.
//  - With `afterDeletedRows` false, a page that holds deleted rows takes no new ones until
//    all its rows are deleted and it starts again. Long values use this: an independent
//    reader we check our files with misreads a long-value row placed after a deleted one,
//    and Access's own files never show that layout.

#include <cstdint>
#include <optional>

#include "format/Format.h"
#include "format/UsageMapWriter.h"

namespace jet {

class Pager;
class PageAllocator;

class PageFiller {
public:
    // `freeMap` 0: the owner has no free-space map (some long-value columns of Access's
    // own tables); pages are then found only among those added in this transaction.
    PageFiller(Pager& pager, const Format& format, uint32_t owner, uint32_t ownedMap, uint32_t freeMap,
               PageAllocator& allocator, bool afterDeletedRows = true);

    // A page that can take a new row of `length` bytes now; `avoid` is never chosen.
    uint32_t pageFor(uint32_t length, std::optional<uint32_t> avoid = std::nullopt);
    // After rows of `page` were deleted: an emptied page starts again and may take rows.
    void released(uint32_t page);

private:
    bool fits(uint32_t page, uint32_t length) const;

    Pager& pager_;
    const Format& f_;
    uint32_t owner_;
    UsageMapWriter owned_;
    std::optional<UsageMapWriter> free_;
    PageAllocator& allocator_;
    bool afterDeletedRows_;
    uint32_t freeMapPointer_ = 0;
    uint32_t current_ = 0;  // 0: none yet
};

}  // namespace jet
