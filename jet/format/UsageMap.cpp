#include "format/UsageMap.h"

#include <algorithm>
#include <string>

#include "base/Bytes.h"
#include "pager/Pager.h"

namespace jet {

namespace {

void addBits(std::vector<uint32_t>& out, uint64_t base, const uint8_t* bits, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) {
        uint8_t b = bits[i];
        if (!b) continue;
        for (int bit = 0; bit < 8; ++bit)
            if (b & (1u << bit)) {
                uint64_t page = base + i * 8 + size_t(bit);
                if (page <= UINT32_MAX) out.push_back(uint32_t(page));
            }
    }
}

}  // namespace

UsageMap UsageMap::read(Pager& pager, const Format& f, uint32_t rowPointer) {
    UsageMap map;
    map.location_ = RowLocation::fromPointer(rowPointer);
    std::string where = "the usage map at page " + std::to_string(map.location_.page) + " row " +
                        std::to_string(map.location_.slot);
    if (map.location_.page == 0) throw CorruptError(where + " points into the file header");
    DataPage page(f, pager.read(map.location_.page));
    if (!page.isDataPage()) throw CorruptError(where + " is not on a data page");
    if (map.location_.slot >= page.slotCount() || page.isDeleted(map.location_.slot))
        throw CorruptError(where + " does not exist");
    auto row = page.row(map.location_.slot);
    if (row.empty()) throw CorruptError(where + " is empty");
    if (row[0] == uint8_t(Kind::Inline)) {
        if (row.size() < 5) throw CorruptError(where + " is cut short");
        map.kind_ = Kind::Inline;
        map.startPage_ = le32(row.data() + 1);
        addBits(map.pages_, map.startPage_, row.data() + 5, row.size() - 5);
    } else if (row[0] == uint8_t(Kind::Reference)) {
        map.kind_ = Kind::Reference;
        const uint64_t window = uint64_t(f.pageSize - 4) * 8;
        for (size_t k = 0; 1 + 4 * (k + 1) <= row.size(); ++k) {
            uint32_t mapPage = le32(row.data() + 1 + 4 * k);
            map.mapPages_.push_back(mapPage);
            if (mapPage == 0) continue;
            if (mapPage >= pager.pageCount())
                throw CorruptError(where + " names page " + std::to_string(mapPage) + " beyond the end of the file");
            const uint8_t* bits = pager.read(mapPage);
            if (bits[0] != page_type::UsageMap)
                throw CorruptError(where + " names page " + std::to_string(mapPage) + ", which is not a usage-map page");
            addBits(map.pages_, k * window, bits + 4, f.pageSize - 4);
        }
    } else {
        throw CorruptError(where + " has the unknown type " + std::to_string(row[0]));
    }
    return map;
}

bool UsageMap::contains(uint32_t page) const { return std::binary_search(pages_.begin(), pages_.end(), page); }

}  // namespace jet
