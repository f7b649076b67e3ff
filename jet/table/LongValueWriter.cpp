#include "table/LongValueWriter.h"

#include <algorithm>
#include <set>

#include "base/Bytes.h"
#include "format/DataPageWriter.h"
#include "pager/Pager.h"
#include "table/LongValue.h"

namespace jet {

LongValueWriter::LongValueWriter(Pager& pager, const Format& format, const LongValueMaps& maps, PageAllocator& allocator)
    : pager_(pager), f_(format), pages_(pager, format, LvalOwner, maps.ownedMap, maps.freeMap, allocator, false) {}

std::vector<uint8_t> LongValueWriter::inlineField(std::span<const uint8_t> data) {
    std::vector<uint8_t> field(headerSize + data.size(), 0);
    putLe32(field.data(), uint32_t(data.size()) | long_value_kind::Inline);
    std::copy(data.begin(), data.end(), field.begin() + headerSize);
    return field;
}

// Puts one long-value row onto a page of the column and returns its row pointer.
uint32_t LongValueWriter::place(std::span<const uint8_t> row) {
    const uint32_t page = pages_.pageFor(uint32_t(row.size()));
    const uint8_t slot = DataPageWriter(f_, pager_.writable(page)).append(row);
    return RowLocation{page, slot}.pointer();
}

// A long-value row is marked deleted only when no live row follows it on its page; one
// that does is emptied instead (a live row of no bytes, which nothing refers to), because an
// independent reader we check our files with misreads a row that follows a deleted one.
void LongValueWriter::free(RowLocation at) {
    DataPageWriter page(f_, pager_.writable(at.page));
    bool liveAfter = false;
    for (unsigned k = at.slot + 1u; k < page.view().slotCount(); ++k) liveAfter = liveAfter || !page.view().isDeleted(k);
    if (liveAfter) page.replace(at.slot, {}, 0);
    else page.setFlags(at.slot, slot_flag::Deleted);
    pages_.released(at.page);
}

std::vector<uint8_t> LongValueWriter::store(std::span<const uint8_t> data) {
    if (data.size() > 0x3FFFFFFFu) throw RuntimeError(err::MultipleStepErrors, "The value is too long to be stored.");
    std::vector<uint8_t> field(headerSize, 0);
    if (data.size() <= f_.maxLvalRowSize) {
        putLe32(field.data(), uint32_t(data.size()) | long_value_kind::SingleRow);
        putLe32(field.data() + 4, place(data));
        return field;
    }
    const size_t piece = f_.maxLvalRowSize - 4;
    const size_t pieces = (data.size() + piece - 1) / piece;
    uint32_t next = 0;
    std::vector<uint8_t> row;
    for (size_t k = pieces; k-- > 0;) {
        const size_t from = k * piece, to = std::min(data.size(), from + piece);
        row.assign(4, 0);
        putLe32(row.data(), next);
        row.insert(row.end(), data.begin() + from, data.begin() + to);
        next = place(row);
    }
    putLe32(field.data(), uint32_t(data.size()) | long_value_kind::Chain);
    putLe32(field.data() + 4, next);
    return field;
}

void LongValueWriter::remove(std::span<const uint8_t> field) {
    if (field.size() < headerSize) return;
    LongValueHeader h = longValueHeader(field);
    if (h.kind == long_value_kind::Inline) return;
    std::set<uint32_t> seen;
    RowLocation at = h.first;
    while (at.page != 0 && at.page < pager_.pageCount() && seen.insert(at.pointer()).second) {
        DataPage view(f_, pager_.read(at.page));
        if (!view.isDataPage() || view.owner() != LvalOwner || at.slot >= view.slotCount() || view.isDeleted(at.slot))
            break;  // nothing more of ours to free: leave what is not a live long-value row alone
        RowLocation next{};
        if (h.kind == long_value_kind::Chain && view.row(at.slot).size() >= 4) next = RowLocation::fromPointer(le32(view.row(at.slot).data()));
        free(at);
        if (h.kind != long_value_kind::Chain) break;
        at = next;
    }
}

}  // namespace jet
