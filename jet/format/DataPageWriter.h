#pragma once
// Changes to one data page in memory: new rows, deleted rows, rows that change size. The
// caller hands in a page buffer it may write (the pager's, inside a transaction).
//
// Invariants kept on every page it touches (those of DataPage.h, plus):
//  - slot numbers never change and are never reused while the page has rows: a new row
//    always takes a new slot at the end, because indexes and overflow headers name rows by
//    (page, slot);
//  - the free-space field always equals the lowest row offset minus the end of the slot
//    table, and at most 255 slots exist;
//  - a repack rewrites the rows contiguously from the page end in slot order, keeping each
//    slot's flags; deleted rows shrink to nothing, their space goes back to the page.

#include <cstdint>
#include <span>

#include "format/DataPage.h"
#include "format/Format.h"

namespace jet {

class DataPageWriter {
public:
    static constexpr unsigned maxSlots = 255;

    DataPageWriter(const Format& format, uint8_t* page) : f_(format), p_(page), view_(format, page) {}

    // An empty data page of `owner` (a TDEF page, 0 for usage maps, LvalOwner).
    void initialize(uint32_t owner);

    const DataPage& view() const { return view_; }
    // Whether a new row of `length` bytes fits: its bytes, one more slot, at most 255 slots.
    bool canAppend(uint32_t length) const { return canAppend(view_, length); }
    static bool canAppend(const DataPage& page, uint32_t length);
    // Room for `length` more bytes after repacking (deleted rows give theirs back).
    bool fitsAfterRepack(unsigned slot, uint32_t newLength) const;
    // Adds a row in a new slot at the end; the caller checked canAppend.
    uint8_t append(std::span<const uint8_t> row, uint16_t flags = 0);
    // Gives row `slot` new bytes and flags, repacking the page; false (page untouched) when
    // they do not fit.
    bool replace(unsigned slot, std::span<const uint8_t> row, uint16_t flags);
    // Changes only the flags of a slot (0xC000 deletes, keeping the bytes in place).
    void setFlags(unsigned slot, uint16_t flags);
    // True when every slot is deleted or empty: nothing can name any of them any more (no
    // stored row or long value is empty), so the page may start again empty.
    bool holdsNothing() const;
    // Live slots: neither deleted nor an overflow target.
    unsigned liveRows() const;

private:
    uint32_t usedBytesAfterRepack(unsigned slot, uint32_t newLength) const;
    void setSlot(unsigned k, uint16_t value);
    void updateFreeSpace();

    const Format& f_;
    uint8_t* p_;
    DataPage view_;
};

}  // namespace jet
