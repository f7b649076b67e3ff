#include "format/PageAllocator.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <set>
#include <vector>

#include "base/Bytes.h"
#include "format/DataPageWriter.h"
#include "format/UsageMap.h"
#include "pager/Pager.h"

namespace jet {

namespace {

constexpr uint32_t globalMapPage = 1;
constexpr uint32_t inlineHeader = 5;

void initMapPage(const Format& f, uint8_t* page, bool allSet) {
    std::memset(page, 0, f.pageSize);
    page[0] = page_type::UsageMap;
    page[1] = 0x01;
    std::memset(page + 4, allSet ? 0xFF : 0x00, f.pageSize - 4);
}

}  // namespace

void PageAllocator::checkReadable() {
    if (checked_) return;
    try {
        UsageMap::read(pager_, f_, globalMapPage << 8);
    } catch (const RuntimeError& e) {
        throw RuntimeError(err::Unspecified, "The map of free pages of '" + pager_.path() + "' cannot be read (" +
                                                 e.description() + "); nothing was written to the database.");
    }
    checked_ = true;
}

uint32_t PageAllocator::allocate() {
    checkReadable();
    if (std::optional<uint32_t> reused = takeReleased()) {
        markUsed(*reused);
        return *reused;
    }
    const uint32_t page = pager_.append();
    markUsed(page);
    return page;
}

std::optional<uint32_t> PageAllocator::takeReleased() {
    if (!releasedKnown_) {
        releasedKnown_ = true;
        const std::vector<uint8_t> zeros(f_.pageSize, 0);
        const UsageMap freePages = UsageMap::read(pager_, f_, globalMapPage << 8);
        for (uint32_t page : freePages.pages()) {
            if (page >= pager_.pageCount()) break;
            if (page > globalMapPage && std::memcmp(pager_.read(page), zeros.data(), f_.pageSize) == 0)
                released_.push_back(page);
        }
        std::reverse(released_.begin(), released_.end());
    }
    if (released_.empty()) return std::nullopt;
    const uint32_t page = released_.back();
    released_.pop_back();
    return page;
}

void PageAllocator::release(uint32_t page) {
    if (page <= globalMapPage || page >= pager_.pageCount())
        throw std::logic_error("page " + std::to_string(page) + " cannot be given back");
    checkReadable();
    std::memset(pager_.writable(page), 0, f_.pageSize);
    markFree(page);
    if (releasedKnown_ && std::find(released_.begin(), released_.end(), page) == released_.end()) {
        released_.push_back(page);
        std::sort(released_.begin(), released_.end(), std::greater<>());
    }
}

// A page the map cannot mark free (below an inline map's window, or in a window without a
// map page) just stays in use: that wastes it, and never invites anyone to overwrite it.
void PageAllocator::markFree(uint32_t page) {
    DataPage view(f_, pager_.read(globalMapPage));
    const auto r = view.row(0);
    if (r[0] == 0) {
        const uint32_t start = le32(r.data() + 1);
        if (page < start || page - start >= uint64_t(r.size() - inlineHeader) * 8) return;
        uint8_t* bits = pager_.writable(globalMapPage) + view.slotOffset(0) + inlineHeader;
        bits[(page - start) / 8] |= uint8_t(1u << ((page - start) % 8));
        return;
    }
    const uint32_t k = page / f_.pagesPerMapPage;
    if (k >= (r.size() - 1) / 4) return;
    const uint32_t mapPage = le32(r.data() + 1 + 4 * k);
    if (mapPage == 0 || mapPage >= pager_.pageCount() || pager_.read(mapPage)[0] != page_type::UsageMap) return;
    const uint32_t i = page % f_.pagesPerMapPage;
    pager_.writable(mapPage)[4 + i / 8] |= uint8_t(1u << (i % 8));
}

uint32_t PageAllocator::allocateMapPage(bool allSet) {
    const uint32_t page = allocate();
    initMapPage(f_, pager_.writable(page), allSet);
    return page;
}

void PageAllocator::markUsed(uint32_t page) {
    DataPage view(f_, pager_.read(globalMapPage));
    if (view.row(0)[0] == 0) markUsedInline(page);
    else markUsedReference(page);
}

void PageAllocator::markUsedInline(uint32_t page) {
    DataPage view(f_, pager_.read(globalMapPage));
    const auto r = view.row(0);
    const uint32_t start = le32(r.data() + 1);
    if (page < start) return;  // below the window: in use by definition
    if (page - start >= uint64_t(r.size() - inlineHeader) * 8) return lengthenInline(page);
    uint8_t* bits = pager_.writable(globalMapPage) + view.slotOffset(0) + inlineHeader;
    bits[(page - start) / 8] &= uint8_t(~(1u << ((page - start) % 8)));
}

// Grows the inline map's row so it covers `page` and a quarter more, pages beyond the end
// of the file marked free; falls back to a reference map when page 1 cannot hold it.
void PageAllocator::lengthenInline(uint32_t page) {
    DataPage view(f_, pager_.read(globalMapPage));
    const auto old = view.row(0);
    const uint32_t start = le32(old.data() + 1);
    const uint32_t needed = (page - start) / 8 + 1;
    const uint32_t oldBytes = uint32_t(old.size() - inlineHeader);
    for (uint32_t bytes : {std::max(oldBytes, needed + needed / 4 + 8), needed}) {
        std::vector<uint8_t> row(inlineHeader + bytes, 0);
        std::copy(old.begin(), old.end(), row.begin());
        for (uint64_t p = uint64_t(start) + uint64_t(oldBytes) * 8; p < uint64_t(start) + uint64_t(bytes) * 8; ++p)
            if (p >= pager_.pageCount()) row[inlineHeader + (p - start) / 8] |= uint8_t(1u << ((p - start) % 8));
        row[inlineHeader + (page - start) / 8] &= uint8_t(~(1u << ((page - start) % 8)));
        DataPageWriter writer(f_, pager_.writable(globalMapPage));
        if (writer.replace(0, row, 0)) return;
    }
    convertToReference();
    markUsedReference(page);
}

void PageAllocator::convertToReference() {
    DataPage view(f_, pager_.read(globalMapPage));
    const auto old = view.row(0);
    std::set<uint32_t> freePages;
    const uint32_t start = le32(old.data() + 1);
    for (size_t i = inlineHeader; i < old.size(); ++i)
        for (int bit = 0; bit < 8; ++bit)
            if (old[i] & (1u << bit)) freePages.insert(start + uint32_t(i - inlineHeader) * 8 + uint32_t(bit));
    const uint32_t slots = uint32_t((old.size() - 1) / 4);
    uint8_t* r = pager_.writable(globalMapPage) + view.slotOffset(0);
    std::memset(r, 0, old.size());
    r[0] = 1;
    // Every window up to the end of the file gets a page whose bits all say free ...
    for (uint32_t k = 0; uint64_t(k) * f_.pagesPerMapPage < pager_.pageCount(); ++k) {
        if (k >= slots) throw RuntimeError(err::Unspecified, "The database has grown beyond what its page map can describe.");
        const uint32_t mapPage = pager_.append();
        initMapPage(f_, pager_.writable(mapPage), true);
        putLe32(r + 1 + 4 * k, mapPage);
    }
    // ... then every page that was not free is marked in use, the new map pages included.
    for (uint32_t p = 0; p < pager_.pageCount(); ++p)
        if (!freePages.count(p)) markUsedReference(p);
}

void PageAllocator::markUsedReference(uint32_t page) {
    DataPage view(f_, pager_.read(globalMapPage));
    const auto r = view.row(0);
    const uint32_t slots = uint32_t((r.size() - 1) / 4);
    const uint32_t k = page / f_.pagesPerMapPage;
    if (k >= slots) throw RuntimeError(err::Unspecified, "The database has grown beyond what its page map can describe.");
    uint32_t mapPage = le32(r.data() + 1 + 4 * k);
    if (mapPage == 0) {
        mapPage = pager_.append();
        initMapPage(f_, pager_.writable(mapPage), true);
        putLe32(pager_.writable(globalMapPage) + view.slotOffset(0) + 1 + 4 * k, mapPage);
        markUsedReference(mapPage);
    }
    if (mapPage >= pager_.pageCount() || pager_.read(mapPage)[0] != page_type::UsageMap)
        throw CorruptError("the map of free pages names page " + std::to_string(mapPage) + ", which is not a usage-map page");
    const uint32_t i = page % f_.pagesPerMapPage;
    pager_.writable(mapPage)[4 + i / 8] &= uint8_t(~(1u << (i % 8)));
}

}  // namespace jet
