#include "index/IndexTreeVerifier.h"

#include <string>
#include <unordered_set>

#include "format/IndexEntry.h"
#include "format/IndexPage.h"
#include "index/IndexTree.h"
#include "pager/Pager.h"

namespace jet {
namespace {

// Enough to show what is wrong without flooding a report for a wrecked tree.
constexpr size_t kMaxProblems = 100;

std::string pageName(uint32_t page) { return "index page " + std::to_string(page); }

class TreeWalker {
public:
    TreeWalker(const Format& f, IndexPageReader& pages, uint32_t owner, const std::function<bool(uint32_t)>& owned,
               IndexTreeReport& report)
        : f_(f), pages_(pages), owner_(owner), owned_(owned), report_(report) {}

    struct Visit {
        bool valid = false;             // `greatest` is known
        std::vector<uint8_t> greatest;  // greatest leaf entry below the page
        bool leaf = false;
        uint32_t prev = 0, next = 0;
    };

    void run(uint32_t root) {
        const Visit v = walk(root, 0);
        if (v.prev != 0 || v.next != 0) problem(pageName(root) + ": the root has neighbours");
        checkLeafChain();
        report_.depth = leafDepth_ < 0 ? 0 : uint32_t(leafDepth_ + 1);
    }

private:
    void problem(std::string text) {
        if (report_.problems.size() < kMaxProblems) report_.problems.push_back(std::move(text));
    }

    Visit walk(uint32_t page, uint32_t depth) {
        Visit v;
        if (depth >= kMaxIndexDepth) {
            problem(pageName(page) + ": the tree is deeper than any valid tree");
            return v;
        }
        if (page == 0 || page >= pages_.pageCount()) {
            problem("the index refers to page " + std::to_string(page) + ", outside the file");
            return v;
        }
        if (!seen_.insert(page).second) {
            problem(pageName(page) + " is reached twice");
            return v;
        }
        report_.pages.push_back(page);
        const uint8_t* raw = pages_.readPage(page);
        if (raw[0] != page_type::IndexNode && raw[0] != page_type::IndexLeaf) {
            problem("page " + std::to_string(page) + " of the index has type " + std::to_string(raw[0]));
            return v;
        }
        if (raw[1] != 0x01) problem(pageName(page) + ": second byte is " + std::to_string(raw[1]) + ", not 1");
        if (le32(raw + 4) != owner_)
            problem(pageName(page) + " belongs to the table on page " + std::to_string(le32(raw + 4)));
        if (owned_ && !owned_(page)) problem(pageName(page) + " is not in the index's usage map");

        IndexPageLayout layout;
        IndexPage p;
        try {
            p = decodeIndexPage(f_, raw, &layout);
        } catch (const CorruptError& e) {
            problem(pageName(page) + ": " + e.description());
            return v;
        }
        const uint32_t area = f_.pageSize - f_.indexEntriesOffset;
        if (layout.freeSpace != area - layout.storedBytes)
            problem(pageName(page) + ": free space is " + std::to_string(layout.freeSpace) + " but the entry mask leaves " +
                    std::to_string(area - layout.storedBytes));
        for (size_t i = 1; i < p.count(); ++i) {
            auto a = p.leaf ? p.entry(i - 1) : withoutChild(p.entry(i - 1));
            auto b = p.leaf ? p.entry(i) : withoutChild(p.entry(i));
            if (compareIndexBytes(a, b) >= 0) {
                problem(pageName(page) + ": entry " + std::to_string(i) + " is not greater than the one before it");
                break;
            }
        }
        v.leaf = p.leaf;
        v.prev = p.prev;
        v.next = p.next;
        if (p.leaf)
            visitLeaf(page, depth, p, v);
        else
            visitNode(page, depth, p, v);
        return v;
    }

    void visitLeaf(uint32_t page, uint32_t depth, const IndexPage& p, Visit& v) {
        if (p.tail != 0) problem(pageName(page) + ": a leaf page names a tail page");
        if (p.empty() && depth > 0) problem(pageName(page) + ": a leaf below the root is empty");
        if (leafDepth_ < 0)
            leafDepth_ = int(depth);
        else if (leafDepth_ != int(depth))
            problem(pageName(page) + ": leaves lie at different depths");
        for (size_t i = 0; i < p.count(); ++i) {
            auto e = p.entry(i);
            if (i == 0 && !report_.entries.empty() && compareIndexBytes(report_.entries.back(), e) >= 0)
                problem(pageName(page) + ": its first entry is not greater than the last entry of the leaf before it");
            report_.entries.emplace_back(e.begin(), e.end());
        }
        leaves_.push_back({page, p.prev, p.next});
        if (!p.empty()) {
            v.valid = true;
            v.greatest.assign(p.back().begin(), p.back().end());
        }
    }

    void visitNode(uint32_t page, uint32_t depth, const IndexPage& p, Visit& v) {
        const size_t children = indexChildCount(p);
        if (children == 0) {
            problem(pageName(page) + ": a node page without children");
            return;
        }
        if (p.tail == 0 && p.count() > 1) problem(pageName(page) + ": a node page with several children has no tail");
        if (p.tail != 0 && p.count() == 0) problem(pageName(page) + ": a node page names its only child in the tail");
        std::vector<Visit> kids;
        kids.reserve(children);
        for (size_t i = 0; i < children; ++i) {
            const uint32_t child = indexChildAt(p, i);
            kids.push_back(walk(child, depth + 1));
            const Visit& k = kids.back();
            if (i < p.count() && k.valid && compareIndexBytes(withoutChild(p.entry(i)), k.greatest) != 0)
                problem(pageName(page) + ": entry " + std::to_string(i) + " differs from the greatest entry below page " +
                        std::to_string(child));
        }
        // Node pages are linked only with siblings under the same parent (or not at all).
        for (size_t i = 0; i < children; ++i) {
            if (kids[i].leaf) continue;
            const uint32_t before = i > 0 ? indexChildAt(p, i - 1) : 0;
            const uint32_t after = i + 1 < children ? indexChildAt(p, i + 1) : 0;
            if (kids[i].prev != 0 && kids[i].prev != before)
                problem(pageName(indexChildAt(p, i)) + ": its previous page is not its sibling before it");
            if (kids[i].next != 0 && kids[i].next != after)
                problem(pageName(indexChildAt(p, i)) + ": its next page is not its sibling after it");
        }
        v.valid = kids.back().valid;
        v.greatest = kids.back().greatest;
    }

    void checkLeafChain() {
        for (size_t i = 0; i < leaves_.size(); ++i) {
            const uint32_t before = i > 0 ? leaves_[i - 1].page : 0;
            const uint32_t after = i + 1 < leaves_.size() ? leaves_[i + 1].page : 0;
            if (leaves_[i].prev != before)
                problem(pageName(leaves_[i].page) + ": previous page is " + std::to_string(leaves_[i].prev) +
                        ", the leaf before it is " + std::to_string(before));
            if (leaves_[i].next != after)
                problem(pageName(leaves_[i].page) + ": next page is " + std::to_string(leaves_[i].next) +
                        ", the leaf after it is " + std::to_string(after));
        }
    }

    struct LeafLinks {
        uint32_t page, prev, next;
    };

    const Format& f_;
    IndexPageReader& pages_;
    uint32_t owner_;
    const std::function<bool(uint32_t)>& owned_;
    IndexTreeReport& report_;
    std::unordered_set<uint32_t> seen_;
    std::vector<LeafLinks> leaves_;
    int leafDepth_ = -1;
};

}  // namespace

IndexTreeReport verifyIndexTree(const Format& format, IndexPageReader& pages, uint32_t root, uint32_t owner,
                                const std::function<bool(uint32_t)>& inOwnedMap) {
    IndexTreeReport report;
    TreeWalker(format, pages, owner, inOwnedMap, report).run(root);
    return report;
}

}  // namespace jet
