#pragma once
// Reading an index B-tree: descending from the root, ordered scans along the leaf chain,
// and key lookups (the writer's uniqueness checks use them).
//
// Shape of a tree (kept by IndexTreeWriter, verified by IndexTreeVerifier):
//  - The root page number never changes. An empty index is an empty leaf root.
//  - All leaves are at the same depth and form one chain in key order through prev/next;
//    node pages are linked only with siblings under the same parent.
//  - A node entry is a copy of the greatest entry below its child, followed by the child.
//    A node with several children names the last one only in its tail field; a node with
//    a single child has one entry and tail 0.
//  - Entries increase strictly along every page and along the leaf chain.
// A damaged tree is reported as CorruptError, never followed into a loop.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "format/Format.h"
#include "format/IndexEntry.h"
#include "format/IndexPage.h"
#include "index/IndexPageStore.h"

namespace jet {

// Deeper than any tree of a 2 GB file can be: a longer descent means a damaged tree.
inline constexpr size_t kMaxIndexDepth = 32;

// One page on the way from the root to a leaf. On node pages `slot` is the child taken
// (entries first, then the tail); on the leaf it is the first entry >= the target.
struct IndexPathStep {
    uint32_t page = 0;
    IndexPage contents;
    size_t slot = 0;
};

std::vector<IndexPathStep> descendIndex(const Format& format, IndexPageReader& pages, uint32_t root,
                                        std::span<const uint8_t> target);

// Children of a node page: entries first, then the tail child if there is one.
inline size_t indexChildCount(const IndexPage& node) { return node.count() + (node.tail != 0 ? 1 : 0); }
inline uint32_t indexChildAt(const IndexPage& node, size_t i) {
    return i < node.count() ? entryChild(node.entry(i)) : node.tail;
}

// Forward iteration over leaf entries in key order.
class IndexCursor {
public:
    IndexCursor(const Format& format, IndexPageReader& pages, uint32_t root);

    void seekFirst();
    // Positions at the first entry >= target (a key alone sorts before all its entries).
    void seek(std::span<const uint8_t> target);
    bool valid() const { return valid_; }
    void next();

    std::span<const uint8_t> entry() const { return leaf_.entry(at_); }
    std::span<const uint8_t> key() const { return entryKey(entry()); }
    IndexRowPointer row() const { return entryRow(entry()); }
    uint32_t page() const { return page_; }

private:
    void settle();  // moves over the ends of leaves until an entry or the end of the chain
    void load(uint32_t page);

    const Format& format_;
    IndexPageReader& pages_;
    uint32_t root_;
    IndexPage leaf_;
    uint32_t page_ = 0;
    size_t at_ = 0;
    bool valid_ = false;
    uint32_t steps_ = 0;
};

class IndexTree {
public:
    IndexTree(const Format& format, IndexPageReader& pages, uint32_t root)
        : format_(format), pages_(pages), root_(root) {}

    IndexCursor cursor() const { return IndexCursor(format_, pages_, root_); }
    // An entry with exactly this key exists (rows whose key is all null are the caller's concern).
    bool containsKey(std::span<const uint8_t> key) const;
    // The rows whose entries carry this key, in index order.
    std::vector<IndexRowPointer> rowsWithKey(std::span<const uint8_t> key) const;
    bool contains(std::span<const uint8_t> key, IndexRowPointer row) const;
    // A row other than `except` whose entry carries this key (uniqueness checks of updates).
    std::optional<IndexRowPointer> otherRowWithKey(std::span<const uint8_t> key, IndexRowPointer except) const;
    // All leaf entries in order.
    std::vector<std::vector<uint8_t>> entries() const;

private:
    const Format& format_;
    IndexPageReader& pages_;
    uint32_t root_;
};

}  // namespace jet
