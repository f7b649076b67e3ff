// The file header: version detection, refusal of other formats, the mask, the password.
#include <gtest/gtest.h>

#include <cmath>

#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Header.h"

namespace {

using jet::Header;
using jet::Version;
using jet::testing::fixture;
using jet::testing::readFileBytes;

std::vector<uint8_t> page0(const std::string& file, size_t size) {
    auto all = readFileBytes(fixture(file));
    all.resize(size);
    return all;
}

int errorNumber(const std::function<void()>& f) {
    try {
        f();
    } catch (const jet::RuntimeError& e) {
        return e.number();
    }
    return 0;
}

TEST(Header, DetectsBothFormatsFromTheVersionByte) {
    EXPECT_EQ(Version::Jet3, Header::detectVersion(page0("testV1997.mdb", 2048), "a"));
    EXPECT_EQ(Version::Jet4, Header::detectVersion(page0("testV2000.mdb", 4096), "b"));
}

TEST(Header, RefusesLaterFormatsOtherEnginesAndNonDatabases) {
    auto p = page0("testV2000.mdb", 4096);
    for (uint8_t v : {0x02, 0x03, 0x05, 0x06, 0x7F}) {
        p[0x14] = v;
        EXPECT_EQ(jet::err::Unspecified, errorNumber([&] { Header::detectVersion(p, "x.accdb"); })) << int(v);
    }
    auto money = page0("testV2000.mdb", 4096);
    std::memcpy(money.data() + 4, "MSISAM Database", 15);
    EXPECT_EQ(jet::err::Unspecified, errorNumber([&] { Header::detectVersion(money, "m.mny"); }));
    std::vector<uint8_t> text(64, 'x');
    try {
        Header::detectVersion(text, "/tmp/notes.txt");
        FAIL();
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ("Unrecognized database format '/tmp/notes.txt'.", e.description());
    }
    EXPECT_EQ(jet::err::Unspecified, errorNumber([&] { Header::detectVersion({}, "empty"); }));
}

TEST(Header, ReadsCodePageSortOrderAndCreationDate) {
    Header j3 = Header::parse(Version::Jet3, page0("testV1997.mdb", 2048));
    EXPECT_EQ(1252, j3.codePage());
    EXPECT_EQ(0x0409, j3.sortOrder());
    EXPECT_EQ(0u, j3.databaseKey());
    EXPECT_EQ("", j3.password());
    EXPECT_EQ(0.0, j3.creationDate());

    Header j4 = Header::parse(Version::Jet4, page0("empty.mdb", 4096));
    EXPECT_EQ(1252, j4.codePage());
    EXPECT_EQ(0x0409, j4.sortOrder());
    EXPECT_EQ(0, j4.sortOrderVersion());
    EXPECT_EQ("", j4.password()) << "the stored pattern is the mask of an empty password";
    // 2004-06-05 13:06:59 is day 38143 and 47219 seconds.
    EXPECT_NEAR(38143 + 47219 / 86400.0, j4.creationDate(), 1.0 / 86400);
    // The unmasked copy shows the plain "4.0" marker after the masked region.
    EXPECT_EQ(0, std::memcmp(j4.bytes().data() + 0x9C, "4.0", 3));
}

TEST(Header, Jet4PasswordIsUnmaskedWithTheCreationDate) {
    auto p = page0("empty.mdb", 4096);
    Header::applyMask(Version::Jet4, p.data());
    uint8_t mask[4];
    jet::putLe32(mask, uint32_t(int32_t(jet::lef64(p.data() + 0x72))));
    std::u16string pw = u"S\u00E9cret";
    for (size_t i = 0; i < 40; ++i) {
        uint8_t plain = 0;
        if (i / 2 < pw.size()) plain = uint8_t(i % 2 ? pw[i / 2] >> 8 : pw[i / 2] & 0xFF);
        p[0x42 + i] = plain ^ mask[i % 4];
    }
    Header::applyMask(Version::Jet4, p.data());
    Header h = Header::parse(Version::Jet4, p);
    EXPECT_EQ("S\u00E9cret", h.password());
    EXPECT_TRUE(h.passwordMatches("S\u00E9cret"));
    EXPECT_FALSE(h.passwordMatches("s\u00E9cret")) << "passwords are case-sensitive";
}

TEST(Header, Jet3PasswordIsPlainCodePageBytes) {
    auto p = page0("testV1997.mdb", 2048);
    Header::applyMask(Version::Jet3, p.data());
    std::memcpy(p.data() + 0x42, "pa\xA3ss", 5);  // with the pound sign of code page 1252
    Header::applyMask(Version::Jet3, p.data());
    EXPECT_EQ("pa\u00A3ss", Header::parse(Version::Jet3, p).password());
}

}  // namespace
