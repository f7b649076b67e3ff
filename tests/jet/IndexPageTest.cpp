// The index page codec against every index page Access wrote in the fixture files, and
// the stored form of pages it builds itself.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "jet/Bytes.h"
#include "jet/IndexEntry.h"
#include "jet/IndexPage.h"
#include "jet/Pager.h"

namespace {

using jet::Format;
using jet::IndexPage;
using Bytes = std::vector<uint8_t>;

Bytes readFile(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(in)), {});
}

TEST(IndexPage, EveryAccessWrittenIndexPageDecodesAndEncodesBack) {
    size_t pagesSeen = 0, compressed = 0;
    for (const auto& file : std::filesystem::directory_iterator(SHEETWRIGHT_MDB_FIXTURES)) {
        if (file.path().extension() != ".mdb") continue;
        const Bytes bytes = readFile(file.path());
        const Format& f = Format::of(bytes[0x14] == 0 ? jet::Version::Jet3 : jet::Version::Jet4);
        for (size_t n = 1; n < bytes.size() / f.pageSize; ++n) {
            const uint8_t* page = bytes.data() + n * f.pageSize;
            if (page[0] != 3 && page[0] != 4) continue;
            ++pagesSeen;
            SCOPED_TRACE(file.path().filename().string() + " page " + std::to_string(n));
            jet::IndexPageLayout layout;
            const IndexPage p = jet::decodeIndexPage(f, page, &layout);
            EXPECT_EQ(f.pageSize - f.indexEntriesOffset - layout.storedBytes, layout.freeSpace);
            EXPECT_EQ(page[0] == 4 ? 0 : 1, page[jet::indexPageKindOffset(f)]);

            Bytes out(f.pageSize);
            jet::encodeIndexPage(f, p, out.data());
            jet::IndexPageLayout again;
            const IndexPage q = jet::decodeIndexPage(f, out.data(), &again);
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

IndexPage leafWith(std::initializer_list<Bytes> entries) {
    IndexPage p;
    p.owner = 9;
    for (const Bytes& e : entries) p.insertEntry(p.count(), e);
    return p;
}

TEST(IndexPage, SharesTheCommonPrefixOfFirstAndLastEntry) {
    const Format& f = Format::of(jet::Version::Jet4);
    IndexPage p = leafWith({{0x7F, 1, 2, 3, 0, 0, 5, 1}, {0x7F, 1, 2, 4, 0, 0, 5, 2}, {0x7F, 1, 9, 9, 0, 0, 5, 3}});
    Bytes out(f.pageSize);
    jet::encodeIndexPage(f, p, out.data());
    EXPECT_EQ(2, jet::le16(out.data() + f.indexPrefixOffset));                  // 7F 01 shared
    EXPECT_EQ(8u + 6u + 6u, jet::storedIndexBytes(f, p));
    EXPECT_EQ(f.pageSize - f.indexEntriesOffset - 20, jet::le16(out.data() + 2));  // free space
    const uint8_t* mask = out.data() + f.indexMaskOffset;
    EXPECT_EQ(0x00, mask[0]);
    EXPECT_EQ(0x41, mask[1]);  // entries end at bytes 8 and 14
    EXPECT_EQ(0x10, mask[2]);  // and 20
    EXPECT_EQ(0, memcmp(out.data() + f.indexEntriesOffset + 8, p.entry(1).data() + 2, 6));

    const IndexPage back = jet::decodeIndexPage(f, out.data());
    ASSERT_EQ(3u, back.count());
    EXPECT_TRUE(std::ranges::equal(p.entry(2), back.entry(2)));
}

TEST(IndexPage, PrefixStaysShorterThanEveryEntry) {
    const Format& f = Format::of(jet::Version::Jet3);
    // The first entry is a prefix of the last: sharing all of it would leave it no byte of its own.
    IndexPage p = leafWith({{0x7F, 1, 0, 0, 0, 1}, {0x7F, 1, 0, 0, 0, 1, 5}});
    Bytes out(f.pageSize);
    jet::encodeIndexPage(f, p, out.data());
    EXPECT_EQ(5, out[f.indexPrefixOffset]);
    EXPECT_EQ(6u + 2u, jet::storedIndexBytes(f, p));
    IndexPage one = leafWith({{0x7F, 1, 0, 0, 0, 1}});
    jet::encodeIndexPage(f, one, out.data());
    EXPECT_EQ(0, out[f.indexPrefixOffset]) << "a lone entry is stored whole";
}

TEST(IndexPage, NodePagesCarryTheirTailAndKindByte) {
    const Format& f = Format::of(jet::Version::Jet3);
    IndexPage node = leafWith({{0x7F, 1, 0, 0, 0, 1, 0, 0, 0, 12}});
    node.leaf = false;
    node.tail = 13;
    node.prev = 4;
    Bytes out(f.pageSize);
    jet::encodeIndexPage(f, node, out.data());
    EXPECT_EQ(jet::page_type::IndexNode, out[0]);
    EXPECT_EQ(1, out[1]);
    EXPECT_EQ(1, out[jet::indexPageKindOffset(f)]);
    EXPECT_EQ(13u, jet::le32(out.data() + 0x10));
    EXPECT_EQ(4u, jet::le32(out.data() + 0x08));
    EXPECT_EQ(9u, jet::le32(out.data() + 0x04));
    EXPECT_EQ(12u, jet::entryChild(jet::decodeIndexPage(f, out.data()).entry(0)));
}

TEST(IndexPage, RefusesPagesWhoseEntriesCannotBeRebuilt) {
    const Format& f = Format::of(jet::Version::Jet4);
    IndexPage p = leafWith({{0x7F, 1, 2, 3, 0, 0, 5, 1}, {0x7F, 1, 2, 4, 0, 0, 5, 2}});
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
