#include "index/IndexTreeWriter.h"

#include <string>

#include "index/IndexKey.h"
#include "index/IndexTree.h"
#include "pager/Pager.h"

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

}  // namespace

IndexTreeWriter::IndexTreeWriter(const Format& format, IndexPageStore& pages, uint32_t root, uint32_t owner)
    : format_(format), pages_(pages), root_(root), owner_(owner) {}

void IndexTreeWriter::writeEmptyRoot(const Format& format, uint32_t owner, uint8_t* page) {
    IndexPage p;
    p.owner = owner;
    encodeIndexPage(format, p, page);
}

void IndexTreeWriter::insert(std::span<const uint8_t> key, IndexRowPointer row) {
    if (key.size() > maxIndexKeyLength(format_))
        throw RuntimeError(err::Unspecified, "an index key of " + std::to_string(key.size()) +
                                                 " bytes is longer than the " +
                                                 std::to_string(maxIndexKeyLength(format_)) +
                                                 " bytes an index entry can hold");
    const auto e = makeIndexEntry(key, row);
    load(e);
    Level& leaf = path_.back();
    if (leaf.slot < leaf.contents.count() && compareIndexBytes(leaf.contents.entry(leaf.slot), e) == 0)
        throw CorruptError("an index already holds an entry for the row being added");
    leaf.contents.insertEntry(leaf.slot, e);
    leaf.dirty = true;
    if (leaf.slot + 1 == leaf.contents.count()) propagateGreatest(path_.size() - 1, e);
    settle(false);
}

bool IndexTreeWriter::remove(std::span<const uint8_t> key, IndexRowPointer row) {
    const auto e = makeIndexEntry(key, row);
    load(e);
    Level& leaf = path_.back();
    if (leaf.slot >= leaf.contents.count() || compareIndexBytes(leaf.contents.entry(leaf.slot), e) != 0) return false;
    const bool wasLast = leaf.slot + 1 == leaf.contents.count();
    leaf.contents.eraseEntry(leaf.slot);
    leaf.dirty = true;
    if (wasLast && !leaf.contents.empty()) propagateGreatest(path_.size() - 1, copyOf(leaf.contents.back()));
    settle(true);
    return true;
}

bool IndexTreeWriter::removeRow(IndexRowPointer row) {
    IndexCursor c(format_, pages_, root_);
    for (c.seekFirst(); c.valid(); c.next()) {
        if (c.row() != row) continue;
        const auto key = copyOf(c.key());
        return remove(key, row);
    }
    return false;
}

void IndexTreeWriter::load(std::span<const uint8_t> target) {
    path_.clear();
    for (IndexPathStep& step : descendIndex(format_, pages_, root_, target))
        path_.push_back(Level{step.page, std::move(step.contents), step.slot, false, false});
}

// The greatest entry below path_[level] is now `greatest`: replace the parent entries
// that copy it, upwards while the changed page is its parent's last child.
void IndexTreeWriter::propagateGreatest(size_t level, std::vector<uint8_t> greatest) {
    for (size_t l = level; l > 0; --l) {
        Level& parent = path_[l - 1];
        IndexPage& node = parent.contents;
        const size_t c = parent.slot;
        const bool last = c + 1 == indexChildCount(node);
        if (c < node.count()) {
            node.replaceEntry(c, nodeEntry(greatest, entryChild(node.entry(c))));
            parent.dirty = true;
        }
        if (!last) return;
    }
}

// Brings every page of the path back within the rules, from the leaf up: emptied pages
// leave, overfull pages split, thin pages merge; each page is written once it is final.
void IndexTreeWriter::settle(bool mergeThinPages) {
    size_t level = path_.size() - 1;
    for (;;) {
        if (level == 0) {
            if (fitsIndexPage(format_, path_[0].contents)) break;
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
    if (pageEmpty(path_[level].contents)) {
        removeEmptyPage(level);
        return;
    }
    if (!fitsIndexPage(format_, path_[level].contents))
        split(level);
    else if (mergeThinPages && storedIndexBytes(format_, path_[level].contents) < thinLimit(format_))
        mergeWithNeighbour(level);
    Level& x = path_[level];
    if (!x.freed && x.dirty) write(x);
}

void IndexTreeWriter::finishRoot(bool mergeThinPages) {
    Level& root = path_[0];
    if (pageEmpty(root.contents) && !root.contents.leaf) {
        const uint32_t owner = root.contents.owner;
        root.contents = IndexPage{};
        root.contents.owner = owner;
        root.dirty = true;
    }
    // A root with a single child takes over its contents (the lower levels are written).
    while (mergeThinPages && !root.contents.leaf && indexChildCount(root.contents) == 1) {
        const uint32_t child = indexChildAt(root.contents, 0);
        IndexPage contents = readPage(child);
        contents.prev = contents.next = 0;
        contents.owner = root.contents.owner;
        pages_.freePage(child);
        for (Level& l : path_)
            if (l.page == child) l.freed = true;
        root.contents = std::move(contents);
        root.dirty = true;
    }
    if (root.dirty) write(root);
}

// The root keeps its page number: its contents move to a new page below it.
void IndexTreeWriter::growRoot() {
    IndexPage moved = path_[0].contents;
    const std::vector<uint8_t> greatest = moved.leaf        ? copyOf(moved.back())
                                          : moved.tail != 0 ? greatestBelow(moved.tail)
                                                            : copyOf(withoutChild(moved.back()));
    const uint32_t page = allocate();
    moved.prev = moved.next = 0;
    moved.owner = owner_;
    IndexPage root;
    root.leaf = false;
    root.owner = path_[0].contents.owner;
    root.insertEntry(0, nodeEntry(greatest, page));
    const size_t slot = path_[0].slot;
    path_[0] = Level{root_, std::move(root), 0, true, false};
    path_.insert(path_.begin() + 1, Level{page, std::move(moved), slot, true, false});
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
    IndexPage old = std::move(path_[level].contents);
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
    const uint32_t newPage = allocate();
    left.owner = owner_;
    left.prev = old.prev;
    left.next = oldPage;
    right.prev = newPage;
    right.next = old.next;
    setLink(old.prev, true, newPage);
    if (!old.leaf && !childrenAreLeaves(level)) {
        // The children at the cut now have different parents: node pages are linked only
        // with siblings under the same parent.
        setLink(indexChildAt(old, k - 1), true, 0);
        setLink(indexChildAt(old, k), false, 0);
    }
    encodeIndexPage(format_, left, pages_.writePage(newPage));

    path_[level].contents = std::move(right);
    path_[level].dirty = true;
    Level& parent = path_[level - 1];
    parent.contents.insertEntry(parent.slot, nodeEntry(leftGreatest, newPage));
    ++parent.slot;
    moveLastChildToTail(parent.contents);
    parent.dirty = true;
}

void IndexTreeWriter::removeEmptyPage(size_t level) {
    Level& x = path_[level];
    setLink(x.contents.prev, true, x.contents.next);
    setLink(x.contents.next, false, x.contents.prev);
    pages_.freePage(x.page);
    x.freed = true;
    x.dirty = false;
    removeChild(level - 1, path_[level - 1].slot);
}

void IndexTreeWriter::removeChild(size_t parentLevel, size_t child) {
    Level& parent = path_[parentLevel];
    IndexPage& node = parent.contents;
    const bool wasLast = child + 1 == indexChildCount(node);
    if (child < node.count())
        node.eraseEntry(child);
    else
        node.tail = 0;
    parent.dirty = true;
    if (indexChildCount(node) == 0) return;  // the parent is empty and leaves in turn
    if (node.count() == 0) {
        giveSingleChildAnEntry(parentLevel);
    } else if (wasLast) {
        // The last child is gone: the new last one moves to the tail and its greatest
        // entry is now the parent's.
        std::vector<uint8_t> greatest = copyOf(withoutChild(node.back()));
        moveLastChildToTail(node);
        propagateGreatest(parentLevel, std::move(greatest));
    }
}

void IndexTreeWriter::giveSingleChildAnEntry(size_t level) {
    IndexPage& node = path_[level].contents;
    const uint32_t child = node.tail;
    const auto greatest = greatestBelow(child);
    node.insertEntry(0, nodeEntry(greatest, child));
    node.tail = 0;
    path_[level].dirty = true;
}

void IndexTreeWriter::mergeWithNeighbour(size_t level) {
    Level& parent = path_[level - 1];
    if (indexChildCount(parent.contents) < 2) return;
    const bool xIsRight = parent.slot > 0;
    const size_t leftIndex = xIsRight ? parent.slot - 1 : parent.slot;
    const uint32_t leftPage = indexChildAt(parent.contents, leftIndex);
    const uint32_t rightPage = indexChildAt(parent.contents, leftIndex + 1);
    const IndexPage other = readPage(xIsRight ? leftPage : rightPage);
    const IndexPage& l = xIsRight ? other : path_[level].contents;
    const IndexPage& r = xIsRight ? path_[level].contents : other;
    if (l.leaf != r.leaf) throw CorruptError("sibling index pages on different levels");

    IndexPage merged;
    merged.leaf = r.leaf;
    merged.owner = r.owner;
    merged.appendEntries(l, 0, l.count());
    if (!l.leaf && l.tail != 0) {
        // The left page's last child gets an entry: the left page's greatest, which is
        // its entry in the parent (it is not the parent's last child).
        merged.insertEntry(merged.count(), nodeEntry(withoutChild(parent.contents.entry(leftIndex)), l.tail));
    }
    merged.appendEntries(r, 0, r.count());
    merged.tail = r.tail;
    if (!merged.leaf) moveLastChildToTail(merged);
    if (!fitsIndexPage(format_, merged) || storedIndexBytes(format_, merged) > mergeLimit(format_)) return;

    merged.prev = l.prev;
    merged.next = r.next;
    setLink(l.prev, true, rightPage);
    if (!merged.leaf && !childrenAreLeaves(level)) {
        const uint32_t leftLast = indexChildAt(l, indexChildCount(l) - 1);
        const uint32_t rightFirst = indexChildAt(r, 0);
        setLink(leftLast, true, rightFirst);
        setLink(rightFirst, false, leftLast);
    }
    pages_.freePage(leftPage);
    if (xIsRight) {
        path_[level].contents = std::move(merged);
        path_[level].dirty = true;
    } else {
        encodeIndexPage(format_, merged, pages_.writePage(rightPage));
        path_[level].freed = true;
        path_[level].dirty = false;
    }

    Level& p = path_[level - 1];
    p.contents.eraseEntry(leftIndex);
    p.slot = leftIndex;
    p.dirty = true;
    if (p.contents.count() == 0) giveSingleChildAnEntry(level - 1);
}

void IndexTreeWriter::write(Level& level) {
    encodeIndexPage(format_, level.contents, pages_.writePage(level.page));
    level.dirty = false;
}

IndexPage IndexTreeWriter::readPage(uint32_t n) {
    if (n == 0 || n >= pages_.pageCount()) throw CorruptError("an index refers to page " + std::to_string(n));
    return decodeIndexPage(format_, pages_.readPage(n));
}

// The greatest entry below a page, following last children down to a leaf. Pages on the
// path are taken as changed so far, others from the store.
std::vector<uint8_t> IndexTreeWriter::greatestBelow(uint32_t page) {
    for (size_t depth = 0; depth < kMaxIndexDepth; ++depth) {
        IndexPage stored;
        const IndexPage* p = nullptr;
        for (const Level& l : path_)
            if (l.page == page && !l.freed) p = &l.contents;
        if (!p) {
            stored = readPage(page);
            p = &stored;
        }
        if (p->leaf) {
            if (p->empty()) throw CorruptError("an index leaf page below a node is empty");
            return copyOf(p->back());
        }
        if (p->tail != 0) {
            page = p->tail;
            continue;
        }
        if (p->empty()) throw CorruptError("an index node page is empty");
        return copyOf(withoutChild(p->back()));
    }
    throw CorruptError("an index tree is deeper than any valid tree");
}

void IndexTreeWriter::setLink(uint32_t page, bool nextField, uint32_t value) {
    if (page == 0) return;
    if (page >= pages_.pageCount()) throw CorruptError("an index refers to page " + std::to_string(page));
    uint8_t* b = pages_.writePage(page);
    if (b[0] != page_type::IndexNode && b[0] != page_type::IndexLeaf)
        throw CorruptError("an index links to page " + std::to_string(page) + ", which is no index page");
    putLe32(b + format_.indexPrevOffset + (nextField ? 4 : 0), value);
    for (Level& l : path_) {
        if (l.page != page || l.freed) continue;
        (nextField ? l.contents.next : l.contents.prev) = value;
    }
}

uint32_t IndexTreeWriter::allocate() { return pages_.allocatePage(); }

}  // namespace jet
