#include "format/UsageMapWriter.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "format/PageAllocator.h"
#include "pager/Pager.h"

namespace jet {

namespace {

constexpr uint32_t inlineHeader = 5;  // type byte and start page

std::vector<uint32_t> inlineMembers(std::span<const uint8_t> r) {
    std::vector<uint32_t> pages;
    const uint32_t start = le32(r.data() + 1);
    for (size_t i = inlineHeader; i < r.size(); ++i)
        for (int bit = 0; bit < 8; ++bit)
            if (r[i] & (1u << bit)) pages.push_back(start + uint32_t(i - inlineHeader) * 8 + uint32_t(bit));
    return pages;
}

}  // namespace

UsageMapWriter::UsageMapWriter(Pager& pager, const Format& format, uint32_t rowPointer, PageAllocator& allocator)
    : pager_(pager), f_(format), location_(RowLocation::fromPointer(rowPointer)), allocator_(allocator) {}

std::span<uint8_t> UsageMapWriter::row() {
    auto where = [&] {
        return "the usage map at page " + std::to_string(location_.page) + " row " + std::to_string(location_.slot);
    };
    if (location_.page == 0) throw CorruptError(where() + " points into the file header");
    DataPage view(f_, pager_.read(location_.page));
    if (!view.isDataPage() || location_.slot >= view.slotCount() || view.isDeleted(location_.slot))
        throw CorruptError(where() + " does not exist");
    auto bytes = view.row(location_.slot);
    if (bytes.empty() || bytes[0] > 1 || (bytes[0] == 0 && bytes.size() < inlineHeader))
        throw CorruptError(where() + " cannot be read");
    uint8_t* page = pager_.writable(location_.page);
    return {page + view.slotOffset(location_.slot), bytes.size()};
}

void UsageMapWriter::add(uint32_t page) {
    auto r = row();
    if (r[0] == 1) return setReferenceBit(page, true);
    const uint32_t start = le32(r.data() + 1);
    const uint64_t window = uint64_t(r.size() - inlineHeader) * 8;
    if (page >= start && page - start < window) {
        r[inlineHeader + (page - start) / 8] |= uint8_t(1u << ((page - start) % 8));
        return;
    }
    std::vector<uint32_t> members = inlineMembers(r);
    members.push_back(page);
    const uint32_t lo = *std::min_element(members.begin(), members.end()) & ~7u;
    const uint32_t hi = *std::max_element(members.begin(), members.end());
    if (hi - lo < window) {
        std::fill(r.begin() + 1, r.end(), 0);
        putLe32(r.data() + 1, lo);
        for (uint32_t p : members) r[inlineHeader + (p - lo) / 8] |= uint8_t(1u << ((p - lo) % 8));
        return;
    }
    convertToReference(page);
}

void UsageMapWriter::remove(uint32_t page) {
    auto r = row();
    if (r[0] == 1) return setReferenceBit(page, false);
    const uint32_t start = le32(r.data() + 1);
    if (page >= start && page - start < uint64_t(r.size() - inlineHeader) * 8)
        r[inlineHeader + (page - start) / 8] &= uint8_t(~(1u << ((page - start) % 8)));
}

void UsageMapWriter::convertToReference(uint32_t extraPage) {
    auto r = row();
    std::vector<uint32_t> members = inlineMembers(r);
    members.push_back(extraPage);
    std::fill(r.begin(), r.end(), 0);
    r[0] = 1;
    for (uint32_t p : members) setReferenceBit(p, true);
}

void UsageMapWriter::setReferenceBit(uint32_t page, bool on) {
    auto r = row();
    const uint32_t slots = uint32_t((r.size() - 1) / 4);
    const uint32_t k = page / f_.pagesPerMapPage;
    if (k >= slots) {
        if (!on) return;
        throw RuntimeError(err::Unspecified, "The database has grown beyond what one of its page maps can describe.");
    }
    uint32_t mapPage = le32(r.data() + 1 + 4 * k);
    if (mapPage == 0) {
        if (!on) return;
        mapPage = allocator_.allocateMapPage();
        putLe32(row().data() + 1 + 4 * k, mapPage);
    }
    if (mapPage >= pager_.pageCount() || pager_.read(mapPage)[0] != page_type::UsageMap)
        throw CorruptError("a page map names page " + std::to_string(mapPage) + ", which is not a usage-map page");
    uint8_t* bits = pager_.writable(mapPage) + 4;
    const uint32_t i = page % f_.pagesPerMapPage;
    if (on) bits[i / 8] |= uint8_t(1u << (i % 8));
    else bits[i / 8] &= uint8_t(~(1u << (i % 8)));
}

}  // namespace jet
