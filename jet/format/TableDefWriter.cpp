#include "format/TableDefWriter.h"

#include "base/Bytes.h"
#include "base/CorruptError.h"
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

TableDefWriter::Counter& TableDefWriter::counter(uint32_t offset) {
    auto it = counters_.find(offset);
    if (it == counters_.end()) it = counters_.emplace(offset, Counter{read32(offset), false}).first;
    return it->second;
}

uint32_t TableDefWriter::rowCount() { return counter(layout_.rowCount).value; }
uint32_t TableDefWriter::autoNumber() { return counter(layout_.autoNumber).value; }

void TableDefWriter::setRowCount(uint32_t n) { counter(layout_.rowCount) = {n, true}; }
void TableDefWriter::setAutoNumber(uint32_t n) { counter(layout_.autoNumber) = {n, true}; }

void TableDefWriter::addDistinctKey(uint32_t index) {
    Counter& c = counter(f_.tdefHeaderSize + index * f_.indexCountBlockSize + 4);
    c = {c.value + 1, true};
}

void TableDefWriter::flush() {
    for (auto& [offset, c] : counters_) {
        if (!c.changed) continue;
        write32(offset, c.value);
        c.changed = false;
    }
}

}  // namespace jet
