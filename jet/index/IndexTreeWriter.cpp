#include "index/IndexTreeWriter.h"

#include <string>

#include "base/CorruptError.h"
#include "index/IndexKey.h"
#include "index/IndexTree.h"

namespace jet {
namespace {

std::vector<uint8_t> copyOf(std::span<const uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

std::vector<uint8_t> nodeEntry(std::span<const uint8_t> greatest, uint32_t child) {
    std::vector<uint8_t> e = copyOf(greatest);
    uint8_t b[kIndexChildSize];
    putBe32(b, child);
    e.insert(e.end(), b, b + kIndexChildSize);
    return e;
}

// A node with several children names the last one only in its tail.
void moveLastChildToTail(IndexPage& node) {
    if (node.tail != 0 || node.count() < 2) return;
    node.tail = entryChild(node.back());
    node.eraseEntry(node.count() - 1);
}

bool pageEmpty(const IndexPage& p) { return p.leaf ? p.empty() : indexChildCount(p) == 0; }

IndexPage leafRange(const IndexPage& leaf, size_t from, size_t to) {
    IndexPage r;
    r.owner = leaf.owner;
    r.appendEntries(leaf, from, to);
    return r;
}

uint32_t entryArea(const Format& f) { return f.pageSize - f.indexEntriesOffset; }
// A page below a quarter full after a deletion looks for a neighbour to merge with; the
// merged page must stay below three quarters so the next insert does not split it again.
uint32_t thinLimit(const Format& f) { return entryArea(f) / 4; }
uint32_t mergeLimit(const Format& f) { return entryArea(f) * 3 / 4; }

bool sameKey(std::span<const uint8_t> entry, std::span<const uint8_t> key) {
    return entry.size() == key.size() + kIndexRowPointerSize && compareIndexBytes(entryKey(entry), key) == 0;
}

}  // namespace

IndexTreeWriter::IndexTreeWriter(IndexPageCache& pages, uint32_t root, uint32_t owner)
    : pages_(pages), format_(pages.format()), root_(root), owner_(owner) {}

IndexTreeWriter::IndexTreeWriter(const Format& format, IndexPageStore& pages, uint32_t root, uint32_t owner)
    : own_(std::make_unique<IndexPageCache>(format, pages)), pages_(*own_), format_(format), root_(root),
      owner_(owner) {}

void IndexTreeWriter::writeEmptyRoot(const Format& format, uint32_t owner, uint8_t* page) {
    IndexPage p;
    p.owner = owner;
    encodeIndexPage(format, p, page);
}

// Runs one public operation. A writer over a store reads every page afresh (the store may
// have changed in between) and writes back what the operation changed, unless it failed.
template <typename Operation>
auto IndexTreeWriter::operation(Operation op) {
    if (!own_) return op();
    located_.clear();
    struct Forget {
        IndexPageCache& pages;
        ~Forget() { pages.clear(); }
    } forget{*own_};
    auto result = op();
    own_->flush();
    return result;
}

bool IndexTreeWriter::keyTakenByOther(std::span<const uint8_t> key, IndexRowPointer row) {
    return operation([&] {
        const auto e = makeIndexEntry(key, row);
        load(e);
        located_ = e;
        // Entries with one key are neighbours, and this row's entry goes among them.
        const IndexPage& leaf = at(path_.size() - 1);
        const size_t slot = path_.back().slot;
        const IndexPage* before = slot > 0 ? &leaf : leafBeside(leaf, false);
        if (before && !before->empty() && sameKey(slot > 0 ? leaf.entry(slot - 1) : before->back(), key)) return true;
        const IndexPage* after = slot < leaf.count() ? &leaf : leafBeside(leaf, true);
        size_t next = slot < leaf.count() ? slot : 0;
        if (after && next < after->count() && compareIndexBytes(after->entry(next), e) == 0) ++next;  // its own entry
        return after && next < after->count() && sameKey(after->entry(next), key);
    });
}

// The leaf before or after `leaf` in the chain, or null at the end.
const IndexPage* IndexTreeWriter::leafBeside(const IndexPage& leaf, bool next) {
    const uint32_t n = next ? leaf.next : leaf.prev;
    return n == 0 ? nullptr : &pages_.page(n);
}

void IndexTreeWriter::insert(std::span<const uint8_t> key, IndexRowPointer row) {
    if (key.size() > maxIndexKeyLength(format_))
        throw RuntimeError(err::Unspecified, "an index key of " + std::to_string(key.size()) +
                                                 " bytes is longer than the " +
                                                 std::to_string(maxIndexKeyLength(format_)) +
                                                 " bytes an index entry can hold");
    operation([&] {
        const auto e = makeIndexEntry(key, row);
        if (located_ != e) load(e);
        located_.clear();
        IndexPage& leaf = at(path_.size() - 1);
        const size_t slot = path_.back().slot;
        if (slot < leaf.count() && compareIndexBytes(leaf.entry(slot), e) == 0)
            throw CorruptError("an index already holds an entry for the row being added");
        leaf.insertEntry(slot, e);
        changed(path_.size() - 1);
        if (slot + 1 == leaf.count()) propagateGreatest(path_.size() - 1, e);
        settle(false);
        return true;
    });
}

bool IndexTreeWriter::remove(std::span<const uint8_t> key, IndexRowPointer row) {
    return operation([&] {
        const auto e = makeIndexEntry(key, row);
        load(e);
        located_.clear();
        IndexPage& leaf = at(path_.size() - 1);
        const size_t slot = path_.back().slot;
        if (slot >= leaf.count() || compareIndexBytes(leaf.entry(slot), e) != 0) return false;
        const bool wasLast = slot + 1 == leaf.count();
        leaf.eraseEntry(slot);
        changed(path_.size() - 1);
        if (wasLast && !leaf.empty()) propagateGreatest(path_.size() - 1, copyOf(leaf.back()));
        settle(true);
        return true;
    });
}

bool IndexTreeWriter::removeRow(IndexRowPointer row) {
    std::vector<uint8_t> key;
    const bool found = operation([&] {
        load({});
        uint32_t steps = 0;
        for (const IndexPage* leaf = &at(path_.size() - 1); leaf; leaf = leafBeside(*leaf, true)) {
            if (!leaf->leaf) throw CorruptError("the leaf chain of an index reaches a node page");
            for (size_t i = 0; i < leaf->count(); ++i) {
                if (entryRow(leaf->entry(i)) != row) continue;
                key = copyOf(entryKey(leaf->entry(i)));
                return true;
            }
            if (++steps > pages_.pageCount()) throw CorruptError("the leaf chain of an index loops");
        }
        return false;
    });
    return found && remove(key, row);
}

void IndexTreeWriter::load(std::span<const uint8_t> target) {
    path_.clear();
    uint32_t page = root_;
    for (;;) {
        if (path_.size() == kMaxIndexDepth) throw CorruptError("an index tree is deeper than any valid tree");
        const IndexPage& p = pages_.page(page);
        size_t slot = indexLowerBound(p, target);
        if (p.leaf) {
            path_.push_back({page, slot, false});
            return;
        }
        if (indexChildCount(p) == 0) throw CorruptError("index node page " + std::to_string(page) + " is empty");
        // Beyond every entry: the tail child, or the last entry's child when there is no tail.
        if (slot == p.count() && p.tail == 0) slot = p.count() - 1;
        path_.push_back({page, slot, false});
        page = indexChildAt(p, slot);
    }
}

// The greatest entry below path_[level] is now `greatest`: replace the parent entries
// that copy it, upwards while the changed page is its parent's last child.
void IndexTreeWriter::propagateGreatest(size_t level, const std::vector<uint8_t>& greatest) {
    for (size_t l = level; l > 0; --l) {
        IndexPage& node = at(l - 1);
        const size_t c = path_[l - 1].slot;
        const bool last = c + 1 == indexChildCount(node);
        if (c < node.count()) {
            node.replaceEntry(c, nodeEntry(greatest, entryChild(node.entry(c))));
            changed(l - 1);
        }
        if (!last) return;
    }
}

// Brings every page of the path back within the rules, from the leaf up: emptied pages
// leave, overfull pages split, thin pages merge.
void IndexTreeWriter::settle(bool mergeThinPages) {
    size_t level = path_.size() - 1;
    for (;;) {
        if (level == 0) {
            if (fitsIndexPage(format_, at(0))) break;
            growRoot();
            level = 1;
        }
        settleLevel(level, mergeThinPages);
        --level;
    }
    finishRoot(mergeThinPages);
}

void IndexTreeWriter::settleLevel(size_t level, bool mergeThinPages) {
    if (path_[level].freed) return;
    if (pageEmpty(at(level))) {
        removeEmptyPage(level);
        return;
    }
    if (!fitsIndexPage(format_, at(level)))
        split(level);
    else if (mergeThinPages && storedIndexBytes(format_, at(level)) < thinLimit(format_))
        mergeWithNeighbour(level);
}

void IndexTreeWriter::finishRoot(bool mergeThinPages) {
    IndexPage& root = at(0);
    if (pageEmpty(root) && !root.leaf) {
        const uint32_t owner = root.owner;
        root = IndexPage{};
        root.owner = owner;
        changed(0);
    }
    // A root with a single child takes over its contents.
    while (mergeThinPages && !root.leaf && indexChildCount(root) == 1) {
        const uint32_t child = indexChildAt(root, 0);
        IndexPage contents = pages_.page(child);
        contents.prev = contents.next = 0;
        contents.owner = root.owner;
        pages_.release(child);
        for (Level& l : path_)
            if (l.page == child) l.freed = true;
        root = std::move(contents);
        changed(0);
    }
}

// The root keeps its page number: its contents move to a new page below it.
void IndexTreeWriter::growRoot() {
    IndexPage& root = at(0);
    const std::vector<uint8_t> greatest = root.leaf        ? copyOf(root.back())
                                          : root.tail != 0 ? greatestBelow(root.tail)
                                                           : copyOf(withoutChild(root.back()));
    const uint32_t page = pages_.allocate();
    IndexPage& moved = pages_.page(page);
    moved = std::move(root);
    moved.prev = moved.next = 0;
    const uint32_t rootOwner = moved.owner;
    moved.owner = owner_;
    root = IndexPage{};
    root.leaf = false;
    root.owner = rootOwner;
    root.insertEntry(0, nodeEntry(greatest, page));
    changed(0);
    const size_t slot = path_[0].slot;
    path_[0] = Level{root_, 0, false};
    path_.insert(path_.begin() + 1, Level{page, slot, false});
}

IndexPage IndexTreeWriter::nodeRange(const IndexPage& node, size_t from, size_t to) {
    IndexPage r;
    r.leaf = false;
    r.owner = node.owner;
    for (size_t i = from; i + 1 < to; ++i) r.appendEntries(node, i, i + 1);
    const size_t last = to - 1;
    if (to - from == 1) {
        // A single child needs an entry; a former tail child gets the node's greatest.
        if (last < node.count())
            r.appendEntries(node, last, last + 1);
        else
            r.insertEntry(0, nodeEntry(greatestBelow(node.tail), node.tail));
    } else {
        r.tail = indexChildAt(node, last);
    }
    return r;
}

void IndexTreeWriter::split(size_t level) {
    IndexPage& x = at(level);
    const IndexPage& old = x;
    const uint32_t oldPage = path_[level].page;
    const size_t m = old.leaf ? old.count() : indexChildCount(old);

    // The split nearest the middle at which both parts fit.
    IndexPage left, right;
    size_t k = 0;
    const size_t mid = (m + 1) / 2;
    for (size_t d = 0; d < m && k == 0; ++d) {
        for (const size_t candidate : {mid - d, mid + d}) {
            if (candidate < 1 || candidate >= m) continue;  // mid - d wraps around when d > mid
            left = old.leaf ? leafRange(old, 0, candidate) : nodeRange(old, 0, candidate);
            right = old.leaf ? leafRange(old, candidate, m) : nodeRange(old, candidate, m);
            if (fitsIndexPage(format_, left) && fitsIndexPage(format_, right)) {
                k = candidate;
                break;
            }
        }
    }
    if (k == 0) throw RuntimeError(err::Unspecified, "an index page holds entries too long to be split");

    const std::vector<uint8_t> leftGreatest = old.leaf ? copyOf(left.back()) : copyOf(withoutChild(old.entry(k - 1)));
    const uint32_t leftOfCut = old.leaf ? 0 : indexChildAt(old, k - 1);
    const uint32_t rightOfCut = old.leaf ? 0 : indexChildAt(old, k);
    const uint32_t oldPrev = old.prev;
    const uint32_t newPage = pages_.allocate();
    left.owner = owner_;
    left.prev = oldPrev;
    left.next = oldPage;
    right.prev = newPage;
    right.next = old.next;
    const bool nodeAboveNodes = !old.leaf && !childrenAreLeaves(level);
    x = std::move(right);
    changed(level);
    pages_.page(newPage) = std::move(left);
    setLink(oldPrev, true, newPage);
    if (nodeAboveNodes) {
        // The children at the cut now have different parents: node pages are linked only
        // with siblings under the same parent.
        setLink(leftOfCut, true, 0);
        setLink(rightOfCut, false, 0);
    }

    IndexPage& parent = at(level - 1);
    parent.insertEntry(path_[level - 1].slot, nodeEntry(leftGreatest, newPage));
    ++path_[level - 1].slot;
    moveLastChildToTail(parent);
    changed(level - 1);
}

void IndexTreeWriter::removeEmptyPage(size_t level) {
    const IndexPage& x = at(level);
    const uint32_t prev = x.prev, next = x.next;
    setLink(prev, true, next);
    setLink(next, false, prev);
    pages_.release(path_[level].page);
    path_[level].freed = true;
    removeChild(level - 1, path_[level - 1].slot);
}

void IndexTreeWriter::removeChild(size_t parentLevel, size_t child) {
    IndexPage& node = at(parentLevel);
    const bool wasLast = child + 1 == indexChildCount(node);
    if (child < node.count())
        node.eraseEntry(child);
    else
        node.tail = 0;
    changed(parentLevel);
    if (indexChildCount(node) == 0) return;  // the parent is empty and leaves in turn
    if (node.count() == 0) {
        giveSingleChildAnEntry(parentLevel);
    } else if (wasLast) {
        // The last child is gone: the new last one moves to the tail and its greatest
        // entry is now the parent's.
        std::vector<uint8_t> greatest = copyOf(withoutChild(node.back()));
        moveLastChildToTail(node);
        propagateGreatest(parentLevel, greatest);
    }
}

void IndexTreeWriter::giveSingleChildAnEntry(size_t level) {
    IndexPage& node = at(level);
    const uint32_t child = node.tail;
    const auto greatest = greatestBelow(child);
    node.insertEntry(0, nodeEntry(greatest, child));
    node.tail = 0;
    changed(level);
}

void IndexTreeWriter::mergeWithNeighbour(size_t level) {
    IndexPage& parent = at(level - 1);
    const size_t slot = path_[level - 1].slot;
    if (indexChildCount(parent) < 2) return;
    const bool xIsRight = slot > 0;
    const size_t leftIndex = xIsRight ? slot - 1 : slot;
    const uint32_t leftPage = indexChildAt(parent, leftIndex);
    const uint32_t rightPage = indexChildAt(parent, leftIndex + 1);
    const IndexPage& other = pages_.page(xIsRight ? leftPage : rightPage);
    const IndexPage& l = xIsRight ? other : at(level);
    const IndexPage& r = xIsRight ? at(level) : other;
    if (l.leaf != r.leaf) throw CorruptError("sibling index pages on different levels");

    IndexPage merged;
    merged.leaf = r.leaf;
    merged.owner = r.owner;
    merged.appendEntries(l, 0, l.count());
    if (!l.leaf && l.tail != 0) {
        // The left page's last child gets an entry: the left page's greatest, which is
        // its entry in the parent (it is not the parent's last child).
        merged.insertEntry(merged.count(), nodeEntry(withoutChild(parent.entry(leftIndex)), l.tail));
    }
    merged.appendEntries(r, 0, r.count());
    merged.tail = r.tail;
    if (!merged.leaf) moveLastChildToTail(merged);
    if (!fitsIndexPage(format_, merged) || storedIndexBytes(format_, merged) > mergeLimit(format_)) return;

    merged.prev = l.prev;
    merged.next = r.next;
    const uint32_t leftPrev = l.prev;
    const bool nodeAboveNodes = !merged.leaf && !childrenAreLeaves(level);
    const uint32_t leftLast = nodeAboveNodes ? indexChildAt(l, indexChildCount(l) - 1) : 0;
    const uint32_t rightFirst = nodeAboveNodes ? indexChildAt(r, 0) : 0;
    pages_.release(leftPage);  // `l` is gone from here on
    setLink(leftPrev, true, rightPage);
    if (nodeAboveNodes) {
        setLink(leftLast, true, rightFirst);
        setLink(rightFirst, false, leftLast);
    }
    pages_.page(rightPage) = std::move(merged);
    pages_.changed(rightPage);
    if (!xIsRight) path_[level].freed = true;

    parent.eraseEntry(leftIndex);
    path_[level - 1].slot = leftIndex;
    changed(level - 1);
    if (parent.count() == 0) giveSingleChildAnEntry(level - 1);
}

// The greatest entry below a page, following last children down to a leaf.
std::vector<uint8_t> IndexTreeWriter::greatestBelow(uint32_t page) {
    for (size_t depth = 0; depth < kMaxIndexDepth; ++depth) {
        const IndexPage& p = pages_.page(page);
        if (p.leaf) {
            if (p.empty()) throw CorruptError("an index leaf page below a node is empty");
            return copyOf(p.back());
        }
        if (p.tail != 0) {
            page = p.tail;
            continue;
        }
        if (p.empty()) throw CorruptError("an index node page is empty");
        return copyOf(withoutChild(p.back()));
    }
    throw CorruptError("an index tree is deeper than any valid tree");
}

void IndexTreeWriter::setLink(uint32_t page, bool nextField, uint32_t value) {
    if (page == 0) return;
    IndexPage& p = pages_.page(page);
    (nextField ? p.next : p.prev) = value;
    pages_.changed(page);
}

}  // namespace jet
