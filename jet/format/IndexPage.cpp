#include "format/IndexPage.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>

#include "base/Bytes.h"
#include "format/IndexEntry.h"
#include "pager/Pager.h"

namespace jet {
namespace {

uint32_t entryAreaSize(const Format& f) { return f.pageSize - f.indexEntriesOffset; }

uint32_t maxPrefixValue(const Format& f) { return f.indexPrefixSize == 1 ? 0xFFu : 0xFFFFu; }

// The longest prefix the encoder shares: the common prefix of the first and last entry
// (all entries between them share it, being sorted), kept below the shortest entry so
// that every stored entry keeps at least one byte of its own.
uint32_t chosenPrefix(const Format& f, const IndexPage& page) {
    if (page.count() < 2) return 0;
    auto first = page.entry(0), last = page.back();
    size_t common = 0;
    const size_t limit = std::min(first.size(), last.size());
    while (common < limit && first[common] == last[common]) ++common;
    size_t shortest = first.size();
    for (size_t i = 1; i < page.count(); ++i) shortest = std::min(shortest, page.entry(i).size());
    return uint32_t(std::min({common, shortest - 1, size_t(maxPrefixValue(f))}));
}

size_t minimumEntrySize(bool leaf) { return kIndexRowPointerSize + 1 + (leaf ? 0 : kIndexChildSize); }

}  // namespace

void IndexPage::insertEntry(size_t i, std::span<const uint8_t> e) {
    const uint32_t start = i == 0 ? 0 : ends_[i - 1];
    data_.insert(data_.begin() + start, e.begin(), e.end());
    ends_.insert(ends_.begin() + ptrdiff_t(i), start);
    for (size_t k = i; k < ends_.size(); ++k) ends_[k] += uint32_t(e.size());
}

void IndexPage::eraseEntry(size_t i) { eraseEntries(i, i + 1); }

void IndexPage::eraseEntries(size_t from, size_t to) {
    if (from >= to) return;
    const uint32_t start = from == 0 ? 0 : ends_[from - 1];
    const uint32_t end = ends_[to - 1];
    data_.erase(data_.begin() + start, data_.begin() + end);
    ends_.erase(ends_.begin() + ptrdiff_t(from), ends_.begin() + ptrdiff_t(to));
    for (size_t k = from; k < ends_.size(); ++k) ends_[k] -= end - start;
}

void IndexPage::replaceEntry(size_t i, std::span<const uint8_t> e) {
    std::vector<uint8_t> copy(e.begin(), e.end());  // e may point into this page
    eraseEntry(i);
    insertEntry(i, copy);
}

void IndexPage::appendEntries(const IndexPage& other, size_t from, size_t to) {
    for (size_t i = from; i < to; ++i) {
        auto e = other.entry(i);
        data_.insert(data_.end(), e.begin(), e.end());
        ends_.push_back(uint32_t(data_.size()));
    }
}

void IndexPage::clearEntries() {
    data_.clear();
    ends_.clear();
}

IndexPage decodeIndexPage(const Format& f, const uint8_t* page, IndexPageLayout* layout) {
    IndexPage p;
    if (page[0] != page_type::IndexNode && page[0] != page_type::IndexLeaf)
        throw CorruptError("an index page has type " + std::to_string(page[0]));
    p.leaf = page[0] == page_type::IndexLeaf;
    p.owner = le32(page + 4);
    p.prev = le32(page + f.indexPrevOffset);
    p.next = le32(page + f.indexPrevOffset + 4);
    p.tail = le32(page + f.indexPrevOffset + 8);
    const uint32_t prefix = f.indexPrefixSize == 1 ? page[f.indexPrefixOffset] : le16(page + f.indexPrefixOffset);

    const uint8_t* mask = page + f.indexMaskOffset;
    const uint8_t* area = page + f.indexEntriesOffset;
    const uint32_t areaSize = entryAreaSize(f);
    const size_t minSize = minimumEntrySize(p.leaf);
    std::vector<uint8_t> full;
    uint32_t start = 0;
    for (uint32_t byte = 0; byte < f.indexMaskSize; ++byte) {
        if (mask[byte] == 0) continue;
        for (uint32_t bit = 0; bit < 8; ++bit) {
            if (!(mask[byte] & (1u << bit))) continue;
            const uint32_t end = byte * 8 + bit;
            if (end > areaSize) throw CorruptError("an index page's entry mask points past the page");
            if (end <= start) throw CorruptError("an index page holds an empty entry");
            full.clear();
            if (p.empty()) {
                if (end <= prefix) throw CorruptError("an index page's first entry is shorter than its prefix");
            } else {
                auto first = p.entry(0);
                full.insert(full.end(), first.begin(), first.begin() + prefix);
            }
            full.insert(full.end(), area + start, area + end);
            if (full.size() < minSize) throw CorruptError("an index entry is too short to hold a row pointer");
            p.insertEntry(p.count(), full);
            start = end;
        }
    }
    if (layout) {
        layout->freeSpace = le16(page + 2);
        layout->prefixLength = prefix;
        layout->storedBytes = start;
    }
    return p;
}

uint32_t storedIndexBytes(const Format& f, const IndexPage& page) {
    const uint32_t prefix = chosenPrefix(f, page);
    return uint32_t(page.fullBytes()) - prefix * uint32_t(page.count() > 0 ? page.count() - 1 : 0);
}

bool fitsIndexPage(const Format& f, const IndexPage& page) { return storedIndexBytes(f, page) <= entryAreaSize(f); }

void encodeIndexPage(const Format& f, const IndexPage& page, uint8_t* out) {
    const uint32_t prefix = chosenPrefix(f, page);
    const uint32_t stored = storedIndexBytes(f, page);
    if (stored > entryAreaSize(f)) throw std::logic_error("index entries do not fit on their page");

    std::memset(out, 0, f.pageSize);
    out[0] = page.leaf ? page_type::IndexLeaf : page_type::IndexNode;
    out[1] = 0x01;
    putLe16(out + 2, uint16_t(entryAreaSize(f) - stored));
    putLe32(out + 4, page.owner);
    putLe32(out + f.indexPrevOffset, page.prev);
    putLe32(out + f.indexPrevOffset + 4, page.next);
    putLe32(out + f.indexPrevOffset + 8, page.leaf ? 0 : page.tail);
    if (f.indexPrefixSize == 1)
        out[f.indexPrefixOffset] = uint8_t(prefix);
    else
        putLe16(out + f.indexPrefixOffset, uint16_t(prefix));
    out[indexPageKindOffset(f)] = page.leaf ? 0x00 : 0x01;

    uint8_t* mask = out + f.indexMaskOffset;
    uint8_t* area = out + f.indexEntriesOffset;
    uint32_t at = 0;
    for (size_t i = 0; i < page.count(); ++i) {
        auto e = page.entry(i);
        const size_t skip = i == 0 ? 0 : prefix;
        std::memcpy(area + at, e.data() + skip, e.size() - skip);
        at += uint32_t(e.size() - skip);
        mask[at / 8] |= uint8_t(1u << (at % 8));
    }
}

}  // namespace jet
