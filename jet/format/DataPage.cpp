#include "format/DataPage.h"

#include <algorithm>
#include <string>

#include "base/Bytes.h"
#include "pager/Pager.h"

namespace jet {

uint32_t DataPage::owner() const { return le32(p_ + Format::dataOwnerOffset); }

uint16_t DataPage::freeSpace() const { return le16(p_ + 2); }

uint16_t DataPage::slotCount() const {
    uint16_t n = le16(p_ + f_.dataRowCountOffset);
    if (f_.dataSlotsOffset + 2u * n > f_.pageSize)
        throw CorruptError("a data page claims " + std::to_string(n) + " row slots, more than fit on it");
    return n;
}

uint16_t DataPage::slotValue(unsigned k) const { return le16(p_ + f_.dataSlotsOffset + 2 * k); }

std::span<const uint8_t> DataPage::row(unsigned k) const {
    uint16_t n = slotCount();
    if (k >= n) throw CorruptError("row " + std::to_string(k) + " does not exist on its page");
    uint32_t start = slotOffset(k);
    uint32_t end = k == 0 ? f_.pageSize : slotOffset(k - 1);
    if (start < f_.dataSlotsOffset + 2u * n || start > end || end > f_.pageSize)
        throw CorruptError("row " + std::to_string(k) + " lies outside its page");
    return {p_ + start, end - start};
}

int32_t DataPage::computedFreeSpace() const {
    uint16_t n = slotCount();
    uint32_t lowest = f_.pageSize;
    for (unsigned k = 0; k < n; ++k) lowest = std::min<uint32_t>(lowest, slotOffset(k));
    return int32_t(lowest) - int32_t(f_.dataSlotsOffset + 2u * n);
}

}  // namespace jet
