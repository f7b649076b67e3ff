#include "format/TableDefWriter.h"

#include "base/Bytes.h"
#include "pager/Pager.h"

namespace jet {

namespace {
constexpr uint32_t pageHeader = 8;
}

TableDefWriter::TableDefWriter(Pager& pager, const Format& format, const TableDef& def)
    : pager_(pager), f_(format), layout_(TableDefLayout::of(format.version)), pages_(def.pages()) {}

std::pair<uint32_t, uint32_t> TableDefWriter::where(uint32_t offset) const {
    if (offset < f_.pageSize) return {pages_.at(0), offset};
    const uint32_t perPage = f_.pageSize - pageHeader;
    const uint32_t rest = offset - f_.pageSize;
    const size_t k = 1 + rest / perPage;
    if (k >= pages_.size()) throw CorruptError("a table definition is shorter than its index list");
    return {pages_[k], pageHeader + rest % perPage};
}

uint32_t TableDefWriter::read32(uint32_t offset) const {
    uint8_t b[4];
    for (uint32_t i = 0; i < 4; ++i) {
        auto [page, at] = where(offset + i);
        b[i] = pager_.read(page)[at];
    }
    return le32(b);
}

void TableDefWriter::write32(uint32_t offset, uint32_t value) {
    uint8_t b[4];
    putLe32(b, value);
    for (uint32_t i = 0; i < 4; ++i) {
        auto [page, at] = where(offset + i);
        pager_.writable(page)[at] = b[i];
    }
}

void TableDefWriter::addDistinctKey(uint32_t index) {
    const uint32_t at = f_.tdefHeaderSize + index * f_.indexCountBlockSize + 4;
    write32(at, read32(at) + 1);
}

}  // namespace jet
