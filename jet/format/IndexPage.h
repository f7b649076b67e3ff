#pragma once
// Index pages (type 0x03 node, 0x04 leaf), decoded into full entries and encoded back.
//
// Invariants of the stored form (written so here, and expected by the integrity checker):
//  - Entries are stored back to back from the start of the entry area; bit i of the entry
//    mask is set exactly where an entry ends, so the set bits count the entries.
//  - Free space = page size - (entry area start + stored entry bytes).
//  - With a prefix length P > 0, every entry after the first is stored without its first
//    P bytes, which are the first entry's. P never exceeds the common prefix of the first
//    and the last entry and is shorter than every entry. P = 0 is always valid.
//  - On node pages the entries end in their child page; the tail field names one more
//    child that has no entry. Leaf pages have tail 0.
// Order and tree shape are the tree's business (IndexTree.h), not the codec's.

#include <cstdint>
#include <span>
#include <vector>

#include "format/Format.h"

namespace jet {

struct IndexPage {
    bool leaf = true;
    uint32_t owner = 0;  // TDEF page of the table the index belongs to
    uint32_t prev = 0;
    uint32_t next = 0;
    uint32_t tail = 0;

    size_t count() const { return ends_.size(); }
    bool empty() const { return ends_.empty(); }
    std::span<const uint8_t> entry(size_t i) const {
        const uint32_t start = i == 0 ? 0 : ends_[i - 1];
        return {data_.data() + start, ends_[i] - start};
    }
    std::span<const uint8_t> back() const { return entry(count() - 1); }
    // Total length of the entries in full (before prefix compression).
    size_t fullBytes() const { return data_.size(); }

    void insertEntry(size_t i, std::span<const uint8_t> e);
    void eraseEntry(size_t i);
    void replaceEntry(size_t i, std::span<const uint8_t> e);
    void eraseEntries(size_t from, size_t to);
    // Appends entries [from, to) of another page.
    void appendEntries(const IndexPage& other, size_t from, size_t to);
    void clearEntries();

private:
    std::vector<uint8_t> data_;   // entries in full, back to back
    std::vector<uint32_t> ends_;  // end offset of each entry in data_
};

// Facts of the stored form, for the integrity checker.
struct IndexPageLayout {
    uint32_t freeSpace = 0;     // as stored in the page
    uint32_t prefixLength = 0;
    uint32_t storedBytes = 0;   // end of the last entry in the entry area
};

// Decodes page bytes. Throws CorruptError when the entries cannot be rebuilt (wrong type,
// mask pointing past the page, entries shorter than the prefix or than a row pointer).
IndexPage decodeIndexPage(const Format& format, const uint8_t* page, IndexPageLayout* layout = nullptr);

// Bytes the entries take on the page with the prefix the encoder chooses.
uint32_t storedIndexBytes(const Format& format, const IndexPage& page);
bool fitsIndexPage(const Format& format, const IndexPage& page);

// Writes the whole page. The entries must fit (fitsIndexPage).
void encodeIndexPage(const Format& format, const IndexPage& page, uint8_t* out);

// Offset of the byte that marks node pages (1) against leaf pages (0).
inline uint32_t indexPageKindOffset(const Format& f) { return f.indexPrefixOffset + f.indexPrefixSize; }

}  // namespace jet
