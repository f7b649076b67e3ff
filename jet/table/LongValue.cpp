#include "table/LongValue.h"

#include <algorithm>
#include <set>

#include "base/Bytes.h"
#include "table/Database.h"

namespace jet {

namespace {

std::span<const uint8_t> lvalRow(const Database& db, RowLocation loc) {
    DataPage page(db.format(), db.pager().read(loc.page));
    auto where = [&] { return "long-value row " + std::to_string(loc.slot) + " of page " + std::to_string(loc.page); };
    if (!page.isDataPage() || page.owner() != LvalOwner) throw CorruptError(where() + " is not on a long-value page");
    if (loc.slot >= page.slotCount() || page.isDeleted(loc.slot)) throw CorruptError(where() + " does not exist");
    return page.row(loc.slot);
}

}  // namespace

LongValueHeader longValueHeader(std::span<const uint8_t> field) {
    if (field.size() < 12) throw CorruptError("a memo or OLE value is shorter than its header");
    uint32_t word = le32(field.data());
    return {word & 0x3FFFFFFFu, word & 0xC0000000u, RowLocation::fromPointer(le32(field.data() + 4))};
}

std::vector<uint8_t> readLongValue(const Database& db, std::span<const uint8_t> field, std::vector<RowLocation>* seen) {
    if (field.empty()) return {};
    LongValueHeader h = longValueHeader(field);
    uint64_t fileBytes = uint64_t(db.pager().pageCount()) * db.format().pageSize;
    if (h.length > fileBytes) throw CorruptError("a memo or OLE value claims more bytes than the file has");
    if (h.kind == long_value_kind::Inline) {
        if (12ull + h.length > field.size()) throw CorruptError("an inline memo or OLE value runs past its row");
        return {field.begin() + 12, field.begin() + 12 + h.length};
    }
    if (h.kind == long_value_kind::SingleRow) {
        auto row = lvalRow(db, h.first);
        if (seen) seen->push_back(h.first);
        if (h.length > row.size()) throw CorruptError("a memo or OLE value is longer than its long-value row");
        return {row.begin(), row.begin() + h.length};
    }
    if (h.kind != long_value_kind::Chain) throw CorruptError("a memo or OLE value has an unknown storage kind");
    std::vector<uint8_t> out;
    out.reserve(h.length);
    std::set<uint32_t> visited;
    RowLocation loc = h.first;
    while (out.size() < h.length) {
        if (loc.page == 0) throw CorruptError("a memo or OLE value's chain ends before its length");
        if (!visited.insert(loc.pointer()).second) throw CorruptError("a memo or OLE value's chain loops");
        auto row = lvalRow(db, loc);
        if (seen) seen->push_back(loc);
        if (row.size() < 4) throw CorruptError("a long-value row is too short for its chain pointer");
        size_t take = std::min<size_t>(row.size() - 4, h.length - out.size());
        out.insert(out.end(), row.begin() + 4, row.begin() + 4 + take);
        loc = RowLocation::fromPointer(le32(row.data()));
    }
    return out;
}

}  // namespace jet
