#include "format/DataPageWriter.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/Bytes.h"
#include "pager/Pager.h"

namespace jet {

void DataPageWriter::initialize(uint32_t owner) {
    std::memset(p_, 0, f_.pageSize);
    p_[0] = page_type::Data;
    p_[1] = 0x01;
    putLe32(p_ + Format::dataOwnerOffset, owner);
    putLe16(p_ + f_.dataRowCountOffset, 0);
    updateFreeSpace();
}

void DataPageWriter::setSlot(unsigned k, uint16_t value) { putLe16(p_ + f_.dataSlotsOffset + 2 * k, value); }

void DataPageWriter::updateFreeSpace() { putLe16(p_ + 2, uint16_t(std::max(0, view_.computedFreeSpace()))); }

bool DataPageWriter::canAppend(const DataPage& page, uint32_t length) {
    return page.slotCount() < maxSlots && page.computedFreeSpace() >= int32_t(length) + 2;
}

uint8_t DataPageWriter::append(std::span<const uint8_t> row, uint16_t flags) {
    const uint16_t n = view_.slotCount();
    if (!canAppend(uint32_t(row.size()))) throw CorruptError("a row was appended to a data page without room for it");
    uint32_t lowest = n == 0 ? f_.pageSize : view_.slotOffset(n - 1);
    uint32_t at = lowest - uint32_t(row.size());
    std::memcpy(p_ + at, row.data(), row.size());
    setSlot(n, uint16_t(at | flags));
    putLe16(p_ + f_.dataRowCountOffset, uint16_t(n + 1));
    updateFreeSpace();
    return uint8_t(n);
}

void DataPageWriter::setFlags(unsigned slot, uint16_t flags) {
    setSlot(slot, uint16_t(view_.slotOffset(slot) | flags));
}

uint32_t DataPageWriter::usedBytesAfterRepack(unsigned slot, uint32_t newLength) const {
    const uint16_t n = view_.slotCount();
    uint32_t used = f_.dataSlotsOffset + 2u * n;
    for (unsigned k = 0; k < n; ++k) {
        if (k == slot) used += newLength;
        else if (!view_.isDeleted(k)) used += uint32_t(view_.row(k).size());
    }
    return used;
}

bool DataPageWriter::fitsAfterRepack(unsigned slot, uint32_t newLength) const {
    return usedBytesAfterRepack(slot, newLength) <= f_.pageSize;
}

bool DataPageWriter::replace(unsigned slot, std::span<const uint8_t> row, uint16_t flags) {
    const uint16_t n = view_.slotCount();
    if (slot >= n) throw CorruptError("a row that does not exist was to be replaced");
    if (!fitsAfterRepack(slot, uint32_t(row.size()))) return false;
    // The new bytes may come from this very page: copy everything out first.
    std::vector<std::vector<uint8_t>> rows(n);
    std::vector<uint16_t> slotFlags(n);
    for (unsigned k = 0; k < n; ++k) {
        slotFlags[k] = view_.slotFlags(k);
        if (k == slot) rows[k].assign(row.begin(), row.end());
        else if (!view_.isDeleted(k)) rows[k].assign(view_.row(k).begin(), view_.row(k).end());
    }
    slotFlags[slot] = flags;
    const uint32_t tableEnd = f_.dataSlotsOffset + 2u * n;
    std::memset(p_ + tableEnd, 0, f_.pageSize - tableEnd);
    uint32_t end = f_.pageSize;
    for (unsigned k = 0; k < n; ++k) {
        end -= uint32_t(rows[k].size());
        if (!rows[k].empty()) std::memcpy(p_ + end, rows[k].data(), rows[k].size());
        setSlot(k, uint16_t(end | slotFlags[k]));
    }
    updateFreeSpace();
    return true;
}

bool DataPageWriter::holdsNothing() const {
    const uint16_t n = view_.slotCount();
    for (unsigned k = 0; k < n; ++k)
        if (!view_.isDeleted(k) && !view_.row(k).empty()) return false;
    return true;
}

unsigned DataPageWriter::liveRows() const {
    const uint16_t n = view_.slotCount();
    unsigned live = 0;
    for (unsigned k = 0; k < n; ++k) {
        uint16_t flags = view_.slotFlags(k);
        if (flags != slot_flag::Deleted && flags != slot_flag::Moved) ++live;
    }
    return live;
}

}  // namespace jet
