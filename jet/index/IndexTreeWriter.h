#pragma once
// Changing an index B-tree: inserting and deleting entries with page splits, removal of
// emptied pages and merges of thin neighbours, keeping every rule listed in IndexTree.h.
//
// How the tree changes:
//  - Split: an overfull page gives its first part (half the entries, or the split nearest
//    the middle at which both parts fit) to a new page linked in before it; the parent gets
//    an entry for the new page. The old page keeps its number and its parent entry. A root
//    that overflows first moves its contents to a new page and becomes a node with one
//    entry, so the root keeps its page number.
//  - A page whose last entry changes has its parent entry replaced, upwards as far as the
//    change reaches (a tail child has no parent entry: its parent's own greatest changes).
//  - A page left empty is unlinked and freed and leaves its parent; a page left thin is
//    merged into its neighbour under the same parent when both fit comfortably on one page.
//    A root left with a single child takes over that child's contents; an emptied root is
//    an empty leaf.
// Uniqueness is the caller's: look the key up (IndexTree::containsKey) before inserting.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "format/Format.h"
#include "format/IndexEntry.h"
#include "format/IndexPage.h"
#include "index/IndexPageStore.h"

namespace jet {

class IndexTreeWriter {
public:
    // The index whose root is `root`; new pages get `owner` (the table's TDEF page).
    IndexTreeWriter(const Format& format, IndexPageStore& pages, uint32_t root, uint32_t owner);

    // Adds the entry of `row` under `key`. Throws RuntimeError when the key is longer than
    // an index entry may be, CorruptError when the tree is damaged or already holds it.
    void insert(std::span<const uint8_t> key, IndexRowPointer row);
    // Removes the entry; false when there is none.
    bool remove(std::span<const uint8_t> key, IndexRowPointer row);
    // Removes the entry of `row` whatever its key (for rows whose key cannot be rebuilt).
    bool removeRow(IndexRowPointer row);

    // An empty index: a leaf root without entries.
    static void writeEmptyRoot(const Format& format, uint32_t owner, uint8_t* page);

private:
    struct Level {
        uint32_t page = 0;
        IndexPage contents;
        size_t slot = 0;
        bool dirty = false;
        bool freed = false;
    };

    void load(std::span<const uint8_t> target);
    void propagateGreatest(size_t level, std::vector<uint8_t> greatest);
    void settle(bool mergeThinPages);
    void settleLevel(size_t level, bool mergeThinPages);
    void finishRoot(bool mergeThinPages);
    void growRoot();
    void split(size_t level);
    void removeEmptyPage(size_t level);
    void removeChild(size_t parentLevel, size_t child);
    void mergeWithNeighbour(size_t level);
    void write(Level& level);

    IndexPage readPage(uint32_t n);
    std::vector<uint8_t> greatestBelow(uint32_t page);
    void giveSingleChildAnEntry(size_t level);
    void setLink(uint32_t page, bool nextField, uint32_t value);
    bool childrenAreLeaves(size_t level) const { return level + 2 == path_.size(); }
    IndexPage nodeRange(const IndexPage& node, size_t from, size_t to);
    uint32_t allocate();

    const Format& format_;
    IndexPageStore& pages_;
    uint32_t root_;
    uint32_t owner_;
    std::vector<Level> path_;
};

}  // namespace jet
