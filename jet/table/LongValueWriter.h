#pragma once
// Stores and deletes memo and OLE values of one column: inline in the row, in one row of a
// long-value page, or as a chain of such rows.
//
// Invariants:
//  - A chain is written last piece first, so every piece can name the next one when it is
//    written; the header names the first piece, and the last piece points to nothing.
//  - Long-value rows go only onto pages with the owner "LVAL" that are listed in the
//    column's owned map (and in its free-space map while they have room).
//  - Deleting a value frees each of its long-value rows (free() says how); a page left with
//    nothing live starts again empty and takes the column's next values.

#include <cstdint>
#include <span>
#include <vector>

#include "format/Format.h"
#include "format/PageFiller.h"
#include "format/TableDef.h"

namespace jet {

class Pager;
class PageAllocator;

class LongValueWriter {
public:
    static constexpr uint32_t headerSize = 12;
    static constexpr uint32_t maxInline = 64;

    LongValueWriter(Pager& pager, const Format& format, const LongValueMaps& maps, PageAllocator& allocator);

    // The field of a value stored outside the row (one row or a chain): its 12-byte header.
    std::vector<uint8_t> store(std::span<const uint8_t> data);
    // The field of a value kept in the row: header and data.
    static std::vector<uint8_t> inlineField(std::span<const uint8_t> data);
    // Marks the long-value rows of a stored field deleted (nothing for inline values).
    void remove(std::span<const uint8_t> field);

private:
    uint32_t place(std::span<const uint8_t> row);
    void free(RowLocation at);

    Pager& pager_;
    const Format& f_;
    PageFiller pages_;
};

}  // namespace jet
