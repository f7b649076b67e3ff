// The B-tree against a model: thousands of random inserts and deletes, after each of which
// the tree must satisfy every shape rule (checked by the verifier), hold exactly the
// model's entries, find them, and own exactly the pages it has not freed; the damage the
// reader and the verifier must catch; and the index page codec against every index page
// Access wrote in the fixtures.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

#include "VectorIndexPages.h"
#include "format/IndexEntry.h"
#include "format/IndexPage.h"
#include "index/IndexKey.h"
#include "index/IndexTextKey.h"
#include "index/IndexTree.h"
#include "index/IndexTreeVerifier.h"
#include "index/IndexTreeWriter.h"
#include "pager/Pager.h"
#include "testkit/TestFiles.h"

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
        auto report = jet::verifyIndexTree(format, pages, VectorIndexPages::kRoot, VectorIndexPages::kOwner,
                                           [&](uint32_t p) { return owned.count(p) > 0; });
        ASSERT_TRUE(report.sound()) << when << ": " << report.problems.front();
        ASSERT_EQ(model.size(), report.entries.size()) << when;
        ASSERT_TRUE(std::equal(model.begin(), model.end(), report.entries.begin())) << when;
        ASSERT_EQ(owned, std::set<uint32_t>(report.pages.begin(), report.pages.end()))
            << when << ": pages leaked or foreign";
        maxDepth = std::max(maxDepth, report.depth);
    }

    const Format& format;
    VectorIndexPages pages;
    uint32_t maxDepth = 0;
};

TEST_P(IndexTreeModel, RandomInsertsAndDeletesKeepEveryRule) {
    KeyMaker keys(GetParam(), 20240601);
    jet::IndexTreeWriter writer(format, pages, VectorIndexPages::kRoot, VectorIndexPages::kOwner);
    jet::IndexTree tree(format, pages, VectorIndexPages::kRoot);
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
            if (step % 50 == 0 && !model.empty()) {
                // Every row with a key, also across leaves; and nothing for a key not there.
                const auto picked = jet::entryKey(*std::next(model.begin(), ptrdiff_t(rng() % model.size())));
                const Bytes key(picked.begin(), picked.end());
                std::vector<IndexRowPointer> rows;
                for (const Bytes& e : model)
                    if (std::ranges::equal(jet::entryKey(e), key)) rows.push_back(jet::entryRow(e));
                EXPECT_EQ(rows, tree.rowsWithKey(key));
                EXPECT_EQ(rows.size() > 1, tree.otherRowWithKey(key, rows[0]).has_value());
                const Bytes absent = keys.next();
                EXPECT_EQ(std::ranges::any_of(model, [&](const Bytes& e) { return std::ranges::equal(jet::entryKey(e), absent); }),
                          tree.containsKey(absent));
            }
        }
    }
    while (!model.empty()) {
        removeRandom(1);
        expectMatchesModel(model, "emptying");
        if (HasFatalFailure()) return;
    }
    EXPECT_EQ(std::set<uint32_t>{VectorIndexPages::kRoot}, pages.treePages()) << "an emptied index is its root alone";
    if (GetParam().kind != KeyKind::Long) {
        EXPECT_GE(maxDepth, 3u) << "keys long enough for three levels";
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
    VectorIndexPages pages{format};
    jet::IndexTreeWriter writer{format, pages, VectorIndexPages::kRoot, VectorIndexPages::kOwner};
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
        return jet::verifyIndexTree(format, pages, VectorIndexPages::kRoot, VectorIndexPages::kOwner, owned);
    }
    jet::IndexPage page(uint32_t n) { return jet::decodeIndexPage(format, pages.readPage(n)); }
};

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
    jet::putLe32(t.pages.writePage(firstLeaf) + f.indexPrevOffset + 4, firstLeaf);
    jet::IndexTree tree(f, t.pages, VectorIndexPages::kRoot);
    EXPECT_THROW(tree.entries(), jet::CorruptError);

    // A root that names itself as its tail child.
    BuiltTree u(600);
    jet::putLe32(u.pages.writePage(VectorIndexPages::kRoot) + f.indexPrevOffset + 8, VectorIndexPages::kRoot);
    jet::IndexTree loop(f, u.pages, VectorIndexPages::kRoot);
    Bytes big(20, 0xFF);
    EXPECT_THROW(loop.containsKey(big), jet::CorruptError);
    EXPECT_FALSE(u.verify().sound());
}

// Each kind of damage the integrity checker must name, made to a tree of three levels.
TEST(IndexTreeVerifier, NamesEveryKindOfDamage) {
    const Format& f = Format::of(Version::Jet4);
    using Damage = std::function<void(BuiltTree&, const std::vector<uint32_t>& leaves, const std::vector<uint32_t>& nodes,
                                      std::function<bool(uint32_t)>& owned)>;
    // Rewrites the first node page (not the root, when asked) that has two children or more.
    auto editNode = [&](BuiltTree& t, const std::vector<uint32_t>& nodes, bool notRoot, auto edit) {
        for (uint32_t n : nodes) {
            jet::IndexPage p = t.page(n);
            if (p.count() < 2 || (notRoot && n == VectorIndexPages::kRoot)) continue;
            edit(p);
            jet::encodeIndexPage(f, p, t.pages.writePage(n));
            return;
        }
    };
    const std::pair<const char*, Damage> cases[] = {
        {"not greater", [&](BuiltTree& t, auto& leaves, auto&, auto&) {  // unsorted entries
             jet::IndexPage p = t.page(leaves[1]);
             Bytes a(p.entry(0).begin(), p.entry(0).end()), b(p.entry(1).begin(), p.entry(1).end());
             p.replaceEntry(0, b);
             p.replaceEntry(1, a);
             jet::encodeIndexPage(f, p, t.pages.writePage(leaves[1]));
         }},
        {"differs from the greatest", [&](BuiltTree& t, auto&, auto& nodes, auto&) {
             editNode(t, nodes, false, [](jet::IndexPage& p) {
                 Bytes e(p.entry(0).begin(), p.entry(0).end());
                 e[e.size() - 5] ^= 0x01;  // the row byte of the copied entry
                 p.replaceEntry(0, e);
             });
         }},
        {"next page is 0", [&](BuiltTree& t, auto& leaves, auto&, auto&) {
             jet::putLe32(t.pages.writePage(leaves[2]) + f.indexPrevOffset + 4, 0);
         }},
        {"free space is 17", [&](BuiltTree& t, auto& leaves, auto&, auto&) { jet::putLe16(t.pages.writePage(leaves[0]) + 2, 17); }},
        {"table on page 99", [&](BuiltTree& t, auto& leaves, auto&, auto&) { jet::putLe32(t.pages.writePage(leaves[0]) + 4, 99); }},
        {"not in the index's usage map", [&](BuiltTree&, auto& leaves, auto&, auto& owned) {
             owned = [missing = leaves[0]](uint32_t p) { return p != missing; };
         }},
        {"no tail", [&](BuiltTree& t, auto&, auto& nodes, auto&) { editNode(t, nodes, false, [](jet::IndexPage& p) { p.tail = 0; }); }},
        {"reached twice", [&](BuiltTree& t, auto&, auto& nodes, auto&) {
             editNode(t, nodes, true, [](jet::IndexPage& p) { p.tail = jet::entryChild(p.entry(0)); });
         }},
    };
    for (const auto& [expected, damage] : cases) {
        BuiltTree t(600);
        const auto before = t.verify();
        ASSERT_TRUE(before.sound());
        std::vector<uint32_t> leaves, nodes;
        for (uint32_t p : before.pages) (t.page(p).leaf ? leaves : nodes).push_back(p);
        std::function<bool(uint32_t)> owned = nullptr;
        damage(t, leaves, nodes, owned);
        std::string all;
        for (const auto& p : t.verify(owned).problems) all += p + "\n";
        EXPECT_NE(std::string::npos, all.find(expected)) << expected << "\nfound:\n" << all;
    }
}

TEST(IndexPage, EveryAccessWrittenIndexPageDecodesAndEncodesBack) {
    size_t pagesSeen = 0, compressed = 0;
    for (const std::string& file : jet::testkit::fixtureNames()) {
        const Bytes bytes = jet::testkit::readBytes(jet::testkit::fixturePath(file));
        const Format& f = Format::of(bytes[0x14] == 0 ? jet::Version::Jet3 : jet::Version::Jet4);
        for (size_t n = 1; n < bytes.size() / f.pageSize; ++n) {
            const uint8_t* page = bytes.data() + n * f.pageSize;
            if (page[0] != 3 && page[0] != 4) continue;
            ++pagesSeen;
            SCOPED_TRACE(file + " page " + std::to_string(n));
            jet::IndexPageLayout layout;
            const jet::IndexPage p = jet::decodeIndexPage(f, page, &layout);
            EXPECT_EQ(f.pageSize - f.indexEntriesOffset - layout.storedBytes, layout.freeSpace);
            EXPECT_EQ(page[0] == 4 ? 0 : 1, page[jet::indexPageKindOffset(f)]);

            Bytes out(f.pageSize);
            jet::encodeIndexPage(f, p, out.data());
            jet::IndexPageLayout again;
            const jet::IndexPage q = jet::decodeIndexPage(f, out.data(), &again);
            ASSERT_EQ(p.count(), q.count());
            for (size_t i = 0; i < p.count(); ++i)
                ASSERT_TRUE(std::ranges::equal(p.entry(i), q.entry(i))) << "entry " << i;
            EXPECT_EQ(std::tie(p.leaf, p.owner, p.prev, p.next, p.tail), std::tie(q.leaf, q.owner, q.prev, q.next, q.tail));
            EXPECT_LE(again.storedBytes, layout.storedBytes) << "the encoder never needs more room than Access";
            // Where Access compressed, the encoder chooses the same prefix, so the page is
            // reproduced byte for byte up to the end of its entries.
            if (layout.prefixLength > 0) {
                ++compressed;
                EXPECT_EQ(0, memcmp(page, out.data(), f.indexEntriesOffset + layout.storedBytes));
            }
        }
    }
    EXPECT_GT(pagesSeen, 300u);
    EXPECT_GT(compressed, 5u);
}

jet::IndexPage leafWith(std::initializer_list<Bytes> entries) {
    jet::IndexPage p;
    p.owner = 9;
    for (const Bytes& e : entries) p.insertEntry(p.count(), e);
    return p;
}

TEST(IndexPage, RefusesPagesWhoseEntriesCannotBeRebuilt) {
    const Format& f = Format::of(jet::Version::Jet4);
    jet::IndexPage p = leafWith({{0x7F, 1, 2, 3, 0, 0, 5, 1}, {0x7F, 1, 2, 4, 0, 0, 5, 2}});
    Bytes good(f.pageSize);
    jet::encodeIndexPage(f, p, good.data());

    Bytes bad = good;
    bad[0] = 0x01;
    EXPECT_THROW(jet::decodeIndexPage(f, bad.data()), jet::CorruptError) << "not an index page";
    bad = good;
    jet::putLe16(bad.data() + f.indexPrefixOffset, 9);
    EXPECT_THROW(jet::decodeIndexPage(f, bad.data()), jet::CorruptError) << "prefix longer than the first entry";
    bad = good;
    bad[f.indexMaskOffset + f.indexMaskSize - 1] = 0x80;
    EXPECT_THROW(jet::decodeIndexPage(f, bad.data()), jet::CorruptError) << "mask past the page";
    bad = good;
    bad[f.indexMaskOffset] = 0x08;  // an entry of three bytes cannot hold a row pointer
    EXPECT_THROW(jet::decodeIndexPage(f, bad.data()), jet::CorruptError) << "entry too short";
}

}  // namespace
