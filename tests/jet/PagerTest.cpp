#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "jet/Pager.h"

namespace {

TEST(Rc4, HeaderMaskKeyStreamStartsAsPublished) {
    // The header mask is RC4 with the fixed key C7 DA 39 6B applied to zeros.
    const uint8_t key[4] = {0xC7, 0xDA, 0x39, 0x6B};
    uint8_t stream[8] = {};
    jet::rc4Apply(key, 4, stream, sizeof stream);
    const uint8_t expected[8] = {0xb5, 0x6f, 0x03, 0x62, 0x61, 0x08, 0xc2, 0x55};
    EXPECT_EQ(0, memcmp(stream, expected, 8));
}

TEST(Pager, ReadsPagesAndRefusesPagesPastTheEnd) {
    auto path = std::filesystem::temp_directory_path() / "pager_test.bin";
    {
        std::ofstream out(path, std::ios::binary);
        for (int page = 0; page < 3; ++page)
            for (int i = 0; i < 2048; ++i) out.put(char(page * 10 + (i & 1)));
    }
    jet::Pager pager(jet::Env::posix().open(path, jet::OpenMode::ReadOnly), path, 2048);
    ASSERT_EQ(3u, pager.pageCount());
    const uint8_t* p2 = pager.read(2);
    EXPECT_EQ(20, p2[0]);
    EXPECT_EQ(21, p2[1]);
    EXPECT_EQ(p2, pager.read(2)) << "a page stays at one address";
    EXPECT_THROW(pager.read(3), jet::CorruptError);
    std::filesystem::remove(path);
}

}  // namespace
