#include "index/IndexTree.h"

#include <algorithm>
#include <string>

#include "pager/Pager.h"

namespace jet {
namespace {

// First entry whose comparable part (the whole entry on leaves, the entry without its
// child on nodes) is >= target.
size_t lowerBound(const IndexPage& page, std::span<const uint8_t> target) {
    size_t lo = 0, hi = page.count();
    while (lo < hi) {
        const size_t mid = (lo + hi) / 2;
        auto e = page.entry(mid);
        auto part = page.leaf ? e : withoutChild(e);
        if (compareIndexBytes(part, target) < 0)
            lo = mid + 1;
        else
            hi = mid;
    }
    return lo;
}

IndexPage readIndexPage(const Format& format, IndexPageReader& pages, uint32_t n) {
    if (n == 0 || n >= pages.pageCount()) throw CorruptError("an index refers to page " + std::to_string(n));
    return decodeIndexPage(format, pages.readPage(n));
}

}  // namespace

std::vector<IndexPathStep> descendIndex(const Format& format, IndexPageReader& pages, uint32_t root,
                                        std::span<const uint8_t> target) {
    std::vector<IndexPathStep> path;
    uint32_t page = root;
    for (;;) {
        if (path.size() == kMaxIndexDepth) throw CorruptError("an index tree is deeper than any valid tree");
        IndexPathStep step{page, readIndexPage(format, pages, page), 0};
        step.slot = lowerBound(step.contents, target);
        if (step.contents.leaf) {
            path.push_back(std::move(step));
            return path;
        }
        const IndexPage& node = step.contents;
        if (indexChildCount(node) == 0) throw CorruptError("index node page " + std::to_string(page) + " is empty");
        // Beyond every entry: the tail child, or the last entry's child when there is no tail.
        if (step.slot == node.count() && node.tail == 0) step.slot = node.count() - 1;
        page = indexChildAt(node, step.slot);
        path.push_back(std::move(step));
    }
}

IndexCursor::IndexCursor(const Format& format, IndexPageReader& pages, uint32_t root)
    : format_(format), pages_(pages), root_(root) {}

void IndexCursor::load(uint32_t page) {
    leaf_ = readIndexPage(format_, pages_, page);
    if (!leaf_.leaf) throw CorruptError("the leaf chain of an index reaches node page " + std::to_string(page));
    page_ = page;
    at_ = 0;
}

void IndexCursor::seekFirst() { seek({}); }

void IndexCursor::seek(std::span<const uint8_t> target) {
    auto path = descendIndex(format_, pages_, root_, target);
    leaf_ = std::move(path.back().contents);
    page_ = path.back().page;
    at_ = path.back().slot;
    steps_ = 0;
    settle();
}

void IndexCursor::next() {
    if (!valid_) return;
    ++at_;
    settle();
}

void IndexCursor::settle() {
    while (at_ >= leaf_.count()) {
        if (leaf_.next == 0) {
            valid_ = false;
            return;
        }
        if (++steps_ > pages_.pageCount()) throw CorruptError("the leaf chain of an index loops");
        load(leaf_.next);
    }
    valid_ = true;
}

bool IndexTree::containsKey(std::span<const uint8_t> key) const {
    IndexCursor c = cursor();
    c.seek(key);
    return c.valid() && compareIndexBytes(c.key(), key) == 0;
}

std::vector<IndexRowPointer> IndexTree::rowsWithKey(std::span<const uint8_t> key) const {
    std::vector<IndexRowPointer> rows;
    IndexCursor c = cursor();
    for (c.seek(key); c.valid() && compareIndexBytes(c.key(), key) == 0; c.next()) rows.push_back(c.row());
    return rows;
}

std::optional<IndexRowPointer> IndexTree::otherRowWithKey(std::span<const uint8_t> key, IndexRowPointer except) const {
    IndexCursor c = cursor();
    for (c.seek(key); c.valid() && compareIndexBytes(c.key(), key) == 0; c.next())
        if (c.row() != except) return c.row();
    return std::nullopt;
}

bool IndexTree::contains(std::span<const uint8_t> key, IndexRowPointer row) const {
    const auto e = makeIndexEntry(key, row);
    IndexCursor c = cursor();
    c.seek(e);
    return c.valid() && compareIndexBytes(c.entry(), e) == 0;
}

std::vector<std::vector<uint8_t>> IndexTree::entries() const {
    std::vector<std::vector<uint8_t>> out;
    IndexCursor c = cursor();
    for (c.seekFirst(); c.valid(); c.next()) out.emplace_back(c.entry().begin(), c.entry().end());
    return out;
}

}  // namespace jet
