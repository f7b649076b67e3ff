// The B-tree against a model: thousands of random inserts and deletes, after each of which
// the tree must satisfy every shape rule (checked by the verifier), hold exactly the
// model's entries, and own exactly the pages it has not freed.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "IndexMemoryPages.h"
#include "jet/IndexKey.h"
#include "jet/IndexTextKey.h"
#include "jet/IndexTree.h"
#include "jet/IndexTreeVerifier.h"
#include "jet/IndexTreeWriter.h"
#include "jet/Pager.h"

namespace {

using jet::Format;
using jet::IndexRowPointer;
using jet::Version;
using Bytes = std::vector<uint8_t>;

enum class KeyKind { Long, Text, Mixed };

struct TreeCase {
    Version version;
    KeyKind kind;
    bool ascending;
    const char* name;
};

void PrintTo(const TreeCase& c, std::ostream* os) { *os << c.name; }

class KeyMaker {
public:
    KeyMaker(const TreeCase& c, uint32_t seed) : c_(c), rng_(seed) {}

    Bytes next() {
        switch (c_.kind) {
        case KeyKind::Long: return longKey(int32_t(rng_() % 100000) - 50000);
        case KeyKind::Text: return textKey(50 + rng_() % 200);
        case KeyKind::Mixed: {
            // From a single flag byte to the longest key the tree takes.
            const size_t maxLen = jet::maxIndexKeyLength(Format::of(c_.version));
            // Bytes 1-3 and a closing 0 keep the keys self-delimiting, as real keys are.
            const size_t len = rng_() % 4 == 0 ? maxLen - rng_() % 8 : 2 + rng_() % 40;
            Bytes k(len);
            for (auto& b : k) b = uint8_t(1 + rng_() % 3);
            k.back() = 0;
            return k;
        }
        }
        return {};
    }
    // A different row every time, scattered over pages (7919 is invertible modulo the prime 65521).
    IndexRowPointer row() {
        ++rows_;
        return {1 + uint32_t(rows_ * 7919 % 65521), uint8_t(rows_ % 256)};
    }
    std::mt19937& rng() { return rng_; }

private:
    Bytes longKey(int32_t v) {
        Bytes k;
        std::string problem;
        jet::IndexKeyColumn col;
        col.type = jet::ColumnType::Long;
        col.ascending = c_.ascending;
        uint8_t le[4];
        jet::putLe32(le, uint32_t(v));
        jet::appendKeyColumn(k, col, jet::IndexKeyValue::fromStored(le), problem);
        return k;
    }
    Bytes textKey(size_t chars) {
        // A small alphabet gives long shared prefixes, which the page encoder compresses.
        std::u16string s;
        for (size_t i = 0; i < chars; ++i) s += char16_t(u'a' + rng_() % 3);
        Bytes k{uint8_t(c_.ascending ? 0x7F : 0x80)};
        std::string problem;
        jet::appendJet4TextKey(k, s, c_.ascending, problem);
        return k;
    }

    TreeCase c_;
    std::mt19937 rng_;
    uint64_t rows_ = 0;
};

class IndexTreeModel : public ::testing::TestWithParam<TreeCase> {
protected:
    IndexTreeModel() : format(Format::of(GetParam().version)), pages(format) {}

    void expectMatchesModel(const std::set<Bytes>& model, const char* when) {
        const auto owned = pages.treePages();
        auto report = jet::verifyIndexTree(format, pages, IndexMemoryPages::kRoot, IndexMemoryPages::kOwner,
                                           [&](uint32_t p) { return owned.count(p) > 0; });
        ASSERT_TRUE(report.sound()) << when << ": " << report.problems.front();
        ASSERT_EQ(model.size(), report.entries.size()) << when;
        ASSERT_TRUE(std::equal(model.begin(), model.end(), report.entries.begin())) << when;
        ASSERT_EQ(owned, std::set<uint32_t>(report.pages.begin(), report.pages.end()))
            << when << ": pages leaked or foreign";
        maxDepth = std::max(maxDepth, report.depth);
    }

    const Format& format;
    IndexMemoryPages pages;
    uint32_t maxDepth = 0;
};

TEST_P(IndexTreeModel, RandomInsertsAndDeletesKeepEveryRule) {
    KeyMaker keys(GetParam(), 20240601);
    jet::IndexTreeWriter writer(format, pages, IndexMemoryPages::kRoot, IndexMemoryPages::kOwner);
    jet::IndexTree tree(format, pages, IndexMemoryPages::kRoot);
    std::set<Bytes> model;
    auto& rng = keys.rng();

    auto removeRandom = [&](int step) {
        auto it = model.begin();
        std::advance(it, ptrdiff_t(rng() % model.size()));
        const Bytes e = *it;
        const auto key = jet::entryKey(e);
        const auto row = jet::entryRow(e);
        if (step % 7 == 0)
            ASSERT_TRUE(writer.removeRow(row));  // rows are unique, so this is the same entry
        else
            ASSERT_TRUE(writer.remove(key, row));
        model.erase(e);
    };

    for (int phase = 0; phase < 2; ++phase) {
        const int insertPercent = phase == 0 ? 75 : 25;
        for (int step = 0; step < 1200; ++step) {
            if (model.empty() || int(rng() % 100) < insertPercent) {
                Bytes key = keys.next();
                IndexRowPointer row = keys.row();
                if (model.count(jet::makeIndexEntry(key, row))) continue;
                writer.insert(key, row);
                model.insert(jet::makeIndexEntry(key, row));
            } else if (rng() % 10 == 0) {
                // A missing entry is reported, and nothing changes.
                Bytes key = keys.next();
                if (!model.count(jet::makeIndexEntry(key, {7, 7}))) {
                    ASSERT_FALSE(writer.remove(key, {7, 7}));
                }
            } else {
                removeRandom(step);
            }
            expectMatchesModel(model, phase == 0 ? "growing" : "shrinking");
            if (HasFatalFailure()) return;
        }
    }
    while (!model.empty()) {
        removeRandom(1);
        expectMatchesModel(model, "emptying");
        if (HasFatalFailure()) return;
    }
    EXPECT_EQ(std::set<uint32_t>{IndexMemoryPages::kRoot}, pages.treePages()) << "an emptied index is its root alone";
    if (GetParam().kind != KeyKind::Long) {
        EXPECT_GE(maxDepth, 3u) << "keys long enough for three levels";
    }
}

TEST_P(IndexTreeModel, LookupsFindExactlyTheModelsKeys) {
    KeyMaker keys(GetParam(), 77);
    jet::IndexTreeWriter writer(format, pages, IndexMemoryPages::kRoot, IndexMemoryPages::kOwner);
    jet::IndexTree tree(format, pages, IndexMemoryPages::kRoot);
    std::multimap<Bytes, IndexRowPointer> model;
    std::vector<Bytes> probes;
    for (int i = 0; i < 400; ++i) {
        Bytes key = keys.next();
        probes.push_back(key);
        if (i % 3 == 0) continue;  // probed but never inserted
        for (int copies = 0; copies < 1 + i % 2; ++copies) {
            IndexRowPointer row{uint32_t(i), uint8_t(copies)};
            if (tree.contains(key, row)) continue;
            writer.insert(key, row);
            model.emplace(key, row);
        }
    }
    for (const Bytes& key : probes) {
        auto [lo, hi] = model.equal_range(key);
        std::vector<IndexRowPointer> expected;
        for (auto it = lo; it != hi; ++it) expected.push_back(it->second);
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(expected, tree.rowsWithKey(key));
        EXPECT_EQ(!expected.empty(), tree.containsKey(key));
    }
}

INSTANTIATE_TEST_SUITE_P(
    BothVersions, IndexTreeModel,
    ::testing::Values(TreeCase{Version::Jet3, KeyKind::Long, true, "Jet3LongAscending"},
                      TreeCase{Version::Jet4, KeyKind::Long, false, "Jet4LongDescending"},
                      TreeCase{Version::Jet3, KeyKind::Text, false, "Jet3TextDescending"},
                      TreeCase{Version::Jet4, KeyKind::Text, true, "Jet4TextAscending"},
                      TreeCase{Version::Jet3, KeyKind::Mixed, true, "Jet3MixedLengths"},
                      TreeCase{Version::Jet4, KeyKind::Mixed, true, "Jet4MixedLengths"}),
    [](const auto& info) { return std::string(info.param.name); });

// Shared by the tests below: a Jet 4 tree of `n` text keys (three levels for n >= 400).
struct BuiltTree {
    const Format& format = Format::of(Version::Jet4);
    IndexMemoryPages pages{format};
    jet::IndexTreeWriter writer{format, pages, IndexMemoryPages::kRoot, IndexMemoryPages::kOwner};
    std::vector<Bytes> entries;

    explicit BuiltTree(int n) {
        KeyMaker keys({Version::Jet4, KeyKind::Text, true, ""}, 5);
        for (int i = 0; i < n; ++i) {
            Bytes k = keys.next();
            IndexRowPointer row{uint32_t(100 + i), 1};
            writer.insert(k, row);
            entries.push_back(jet::makeIndexEntry(k, row));
        }
        std::sort(entries.begin(), entries.end());
    }
    jet::IndexTreeReport verify(const std::function<bool(uint32_t)>& owned = nullptr) {
        return jet::verifyIndexTree(format, pages, IndexMemoryPages::kRoot, IndexMemoryPages::kOwner, owned);
    }
    jet::IndexPage page(uint32_t n) { return jet::decodeIndexPage(format, pages.readPage(n)); }
};

TEST(IndexTree, RootKeepsItsPageNumberThroughSplits) {
    BuiltTree t(600);
    auto report = t.verify();
    ASSERT_TRUE(report.sound());
    EXPECT_GE(report.depth, 3u);
    EXPECT_EQ(IndexMemoryPages::kRoot, report.pages.front());
    EXPECT_FALSE(t.page(IndexMemoryPages::kRoot).leaf);
}

TEST(IndexTree, SequentialInsertsFillPagesAtLeastByAThird) {
    // Autonumber keys arrive in increasing order; splits must not leave a trail of near-empty pages.
    const Format& f = Format::of(Version::Jet4);
    IndexMemoryPages pages(f);
    jet::IndexTreeWriter writer(f, pages, IndexMemoryPages::kRoot, IndexMemoryPages::kOwner);
    size_t entryBytes = 0;
    for (int32_t i = 1; i <= 5000; ++i) {
        uint8_t le[4];
        jet::putLe32(le, uint32_t(i));
        Bytes key;
        std::string problem;
        jet::appendKeyColumn(key, jet::IndexKeyColumn{}, jet::IndexKeyValue::fromStored(le), problem);
        writer.insert(key, {uint32_t(i / 200 + 10), uint8_t(i % 200)});
        entryBytes += key.size() + 4;
    }
    auto report = jet::verifyIndexTree(f, pages, IndexMemoryPages::kRoot, IndexMemoryPages::kOwner, nullptr);
    ASSERT_TRUE(report.sound());
    EXPECT_EQ(5000u, report.entries.size());
    EXPECT_LE(report.pages.size() * (f.maxIndexEntryBytes / 3), entryBytes);
}

TEST(IndexTree, RefusesOverlongKeysAndSecondEntriesForARow) {
    BuiltTree t(10);
    Bytes tooLong(jet::maxIndexKeyLength(t.format) + 1, 0x41);
    EXPECT_THROW(t.writer.insert(tooLong, {5, 5}), jet::RuntimeError);
    const Bytes& e = t.entries[3];
    EXPECT_THROW(t.writer.insert(jet::entryKey(e), jet::entryRow(e)), jet::CorruptError);
    EXPECT_TRUE(t.verify().sound());
}

TEST(IndexTree, DamagedTreesAreReportedNotFollowedForever) {
    BuiltTree t(600);
    auto report = t.verify();
    ASSERT_TRUE(report.sound());
    const auto& f = t.format;
    // Make the first leaf's next link point back at itself.
    uint32_t firstLeaf = 0;
    for (uint32_t p : report.pages)
        if (t.page(p).leaf && t.page(p).prev == 0) firstLeaf = p;
    ASSERT_NE(0u, firstLeaf);
    jet::putLe32(t.pages.raw(firstLeaf) + f.indexPrevOffset + 4, firstLeaf);
    jet::IndexTree tree(f, t.pages, IndexMemoryPages::kRoot);
    EXPECT_THROW(tree.entries(), jet::CorruptError);

    // A root that names itself as its tail child.
    BuiltTree u(600);
    jet::putLe32(u.pages.raw(IndexMemoryPages::kRoot) + f.indexPrevOffset + 8, IndexMemoryPages::kRoot);
    jet::IndexTree loop(f, u.pages, IndexMemoryPages::kRoot);
    Bytes big(20, 0xFF);
    EXPECT_THROW(loop.containsKey(big), jet::CorruptError);
    EXPECT_FALSE(u.verify().sound());
}

// Each kind of damage the integrity checker must name.
TEST(IndexTreeVerifier, NamesEveryKindOfDamage) {
    const Format& f = Format::of(Version::Jet4);
    auto damaged = [&](auto&& damage) {
        BuiltTree t(600);
        auto before = t.verify();
        EXPECT_TRUE(before.sound());
        std::vector<uint32_t> leaves, nodes;
        for (uint32_t p : before.pages) (t.page(p).leaf ? leaves : nodes).push_back(p);
        std::function<bool(uint32_t)> owned = nullptr;
        damage(t, leaves, nodes, owned);
        auto after = t.verify(owned);
        std::string all;
        for (auto& p : after.problems) all += p + "\n";
        return all;
    };
    auto swapFirstTwoEntries = [&](BuiltTree& t, std::vector<uint32_t>& leaves, auto&, auto&) {
        jet::IndexPage p = t.page(leaves[1]);
        Bytes a(p.entry(0).begin(), p.entry(0).end()), b(p.entry(1).begin(), p.entry(1).end());
        p.replaceEntry(0, b);
        p.replaceEntry(1, a);
        jet::encodeIndexPage(f, p, t.pages.raw(leaves[1]));
    };
    EXPECT_NE(std::string::npos, damaged(swapFirstTwoEntries).find("not greater")) << "unsorted entries";

    auto changeNodeEntry = [&](BuiltTree& t, auto&, std::vector<uint32_t>& nodes, auto&) {
        for (uint32_t n : nodes) {
            jet::IndexPage p = t.page(n);
            if (p.count() < 2) continue;
            Bytes e(p.entry(0).begin(), p.entry(0).end());
            e[e.size() - 5] ^= 0x01;  // the row byte of the copied entry
            p.replaceEntry(0, e);
            jet::encodeIndexPage(f, p, t.pages.raw(n));
            return;
        }
    };
    EXPECT_NE(std::string::npos, damaged(changeNodeEntry).find("differs from the greatest")) << "stale node entry";

    auto breakChain = [&](BuiltTree& t, std::vector<uint32_t>& leaves, auto&, auto&) {
        jet::putLe32(t.pages.raw(leaves[2]) + f.indexPrevOffset + 4, 0);
    };
    EXPECT_NE(std::string::npos, damaged(breakChain).find("next page is 0")) << "broken leaf chain";

    auto wrongFreeSpace = [&](BuiltTree& t, std::vector<uint32_t>& leaves, auto&, auto&) {
        jet::putLe16(t.pages.raw(leaves[0]) + 2, 17);
    };
    EXPECT_NE(std::string::npos, damaged(wrongFreeSpace).find("free space is 17")) << "free space vs mask";

    auto foreignOwner = [&](BuiltTree& t, std::vector<uint32_t>& leaves, auto&, auto&) {
        jet::putLe32(t.pages.raw(leaves[0]) + 4, 99);
    };
    EXPECT_NE(std::string::npos, damaged(foreignOwner).find("table on page 99")) << "owner";

    auto notInMap = [&](BuiltTree&, std::vector<uint32_t>& leaves, auto&, std::function<bool(uint32_t)>& owned) {
        const uint32_t missing = leaves[0];
        owned = [missing](uint32_t p) { return p != missing; };
    };
    EXPECT_NE(std::string::npos, damaged(notInMap).find("not in the index's usage map")) << "usage map";

    auto dropTail = [&](BuiltTree& t, auto&, std::vector<uint32_t>& nodes, auto&) {
        for (uint32_t n : nodes) {
            jet::IndexPage p = t.page(n);
            if (p.count() < 2) continue;
            p.tail = 0;
            jet::encodeIndexPage(f, p, t.pages.raw(n));
            return;
        }
    };
    EXPECT_NE(std::string::npos, damaged(dropTail).find("no tail")) << "tail rule";

    auto sharedChild = [&](BuiltTree& t, auto&, std::vector<uint32_t>& nodes, auto&) {
        for (uint32_t n : nodes) {
            jet::IndexPage p = t.page(n);
            if (p.count() < 2 || n == IndexMemoryPages::kRoot) continue;
            p.tail = jet::entryChild(p.entry(0));
            jet::encodeIndexPage(f, p, t.pages.raw(n));
            return;
        }
    };
    EXPECT_NE(std::string::npos, damaged(sharedChild).find("reached twice")) << "page used twice";

}

}  // namespace
