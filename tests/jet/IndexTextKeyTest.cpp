// Text keys of both versions: the published examples byte for byte, the folding and
// trimming rules, and the refusal of characters whose sort codes are unknown.
#include <gtest/gtest.h>

#include "IndexHex.h"
#include "jet/IndexKey.h"
#include "jet/IndexTextCodes.h"
#include "jet/IndexTextKey.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes jet4(std::u16string_view text, bool asc = true) {
    Bytes out;
    std::string problem;
    EXPECT_TRUE(jet::appendJet4TextKey(out, text, asc, problem)) << problem;
    return out;
}

Bytes jet3(std::string_view cp1252, bool asc = true, uint16_t codePage = 1252) {
    Bytes out;
    std::string problem;
    auto bytes = std::span(reinterpret_cast<const uint8_t*>(cp1252.data()), cp1252.size());
    EXPECT_TRUE(jet::appendJet3TextKey(out, bytes, codePage, asc, problem)) << problem;
    return out;
}

TEST(Jet4TextKey, PublishedExamples) {
    EXPECT_EQ(hex("60 6B 76 6B 64 4C 5B 51 4D 6D 6B 01 00"), jet4(u"MSysObjects"));
    EXPECT_EQ(hex("6D 4C 5E 38 01 00"), jet4(u"Tbl1"));
    EXPECT_EQ(hex("4A 4C 01 00"), jet4(u"ab"));
    EXPECT_EQ(hex("B5 B3 FE FF 00"), jet4(u"ab", false));
    EXPECT_EQ(hex("51 5E 4A 62 01 0E 00"), jet4(u"\u00E9lan"));
    EXPECT_EQ(hex("78 51 4F 38 01 01 01 01 80 13 06 82 00"), jet4(u"Zed-1"));
    EXPECT_EQ(hex("59 6D 6B 01 01 01 01 80 0F 06 80 00"), jet4(u"it's"));
    EXPECT_EQ(hex("79 36 79 41 79 40 79 2F 01 13 00"), jet4(u"\u0401\u043B\u043A\u0430"));
    EXPECT_EQ(hex("79 4A 79 2F 79 30 79 41 79 3B 79 52 79 2F 01 00"),
              jet4(u"\u0422\u0430\u0431\u043B\u0438\u0446\u0430"));
}

TEST(Jet4TextKey, CatalogueNamesOfANewDatabase) {
    EXPECT_EQ(hex("4F 4A 6D 4A 4C 4A 6B 51 6B 01 00"), jet4(u"Databases"));
    EXPECT_EQ(hex("69 51 5E 4A 6D 59 64 62 6B 57 59 66 6B 01 00"), jet4(u"Relationships"));
    EXPECT_EQ(hex("60 6B 76 6B 4A 4D 51 6B 01 00"), jet4(u"MSysACEs"));
    EXPECT_EQ(hex("60 6B 76 6B 68 6F 51 69 59 51 6B 01 00"), jet4(u"MSysQueries"));
    EXPECT_EQ(hex("60 6B 76 6B 4F 4C 01 00"), jet4(u"MSysDb"));
}

TEST(Jet4TextKey, FoldsCaseAndIgnoresTrailingSpacesAndTheTailBeyond255) {
    EXPECT_EQ(jet4(u"abc"), jet4(u"ABC  "));
    EXPECT_NE(jet4(u"abc"), jet4(u" abc")) << "only trailing spaces are dropped";
    std::u16string longA(255, u'a'), longB(255, u'a');
    longA += u"xyz";
    longB += u"q";
    EXPECT_EQ(jet4(longA), jet4(longB));
    EXPECT_EQ(jet4(std::u16string(255, u'a')), jet4(longA));
}

TEST(Jet4TextKey, AccentsGoToTheExtraSectionAtTheirPosition) {
    // "aé": the extra section gets a "no accent" filler for 'a', then é's extra byte.
    EXPECT_EQ(hex("4A 51 01 02 0E 00"), jet4(u"a\u00E9"));
    // An accent followed by plain letters: trailing fillers are dropped.
    EXPECT_EQ(hex("51 4A 01 0E 00"), jet4(u"\u00E9a"));
    // Unaccented text sorts before the same letters with an accent.
    EXPECT_LT(jet4(u"ea"), jet4(u"\u00E9a"));
    EXPECT_LT(jet4(u"\u00E9a"), jet4(u"eb"));
}

TEST(Jet4TextKey, UnprintablePositionCountsExtraBytesOnceAnAccentWasSeen) {
    // "é-": q = len(E) + (p - eChars) = 1 + (1 - 1) = 1 -> 0x8000 | 11.
    EXPECT_EQ(hex("51 01 0E 01 01 01 80 0B 06 82 00"), jet4(u"\u00E9-"));
    // "a-": no accent yet, q = p = 1.
    EXPECT_EQ(hex("4A 01 01 01 01 80 0B 06 82 00"), jet4(u"a-"));
}

TEST(Jet4TextKey, RefusesCharactersWithoutKnownCodes) {
    for (std::u16string s : {std::u16string(u"\u03B1"), std::u16string(u"ab\u6F22"), std::u16string(u"x\xD83D\xDE00")}) {
        Bytes out;
        std::string problem;
        EXPECT_FALSE(jet::appendJet4TextKey(out, s, true, problem));
        EXPECT_NE(std::string::npos, problem.find("U+")) << problem;
    }
    // The known beginning is kept for the checker: the primary codes before the unknown one.
    Bytes out;
    std::string problem;
    EXPECT_FALSE(jet::appendJet4TextKey(out, u"ab\u6F22c", true, problem));
    EXPECT_EQ(hex("4A 4C"), out);
    out.clear();
    EXPECT_FALSE(jet::appendJet4TextKey(out, u"ab\u6F22c", false, problem));
    EXPECT_EQ(hex("B5 B3"), out);
}

TEST(Jet4TextKey, EveryLatin1AndCyrillicLetterFoldsWithItsOtherCase) {
    for (char16_t upper = 0x0410; upper <= 0x042F; ++upper)
        EXPECT_EQ(jet4(std::u16string(1, upper)), jet4(std::u16string(1, char16_t(upper + 0x20))));
    for (char16_t upper = 0x00C0; upper <= 0x00DE; ++upper) {
        if (upper == 0x00D7) continue;  // the multiplication sign is no letter
        EXPECT_EQ(jet4(std::u16string(1, upper)), jet4(std::u16string(1, char16_t(upper + 0x20))));
    }
}

TEST(Jet3TextKey, PublishedExamples) {
    EXPECT_EQ(hex("6F 76 7D 76 72 61 6B 66 62 77 76 00"), jet3("MSysObjects"));
    EXPECT_EQ(hex("77 61 6D 57 00"), jet3("Tbl1"));
    EXPECT_EQ(hex("60 61 11 62 00"), jet3("Ab c"));
    EXPECT_EQ(hex("66 6D 60 70 04 00"), jet3("\xE9lan"));
    EXPECT_EQ(hex("75 66 76 78 6F 66 04 22 40"), jet3("r\xE9sum\xE9"));
    EXPECT_EQ(hex("7E 66 64 1E 57 00"), jet3("Zed-1"));
    EXPECT_EQ(hex("90 89 82 89 8D 9E 94 99 9D 88 89 FF"), jet3("MSysObjects", false));
    EXPECT_EQ(hex("64 60 77 60 61 60 76 66 76 00"), jet3("Databases"));
    EXPECT_EQ(hex("6F 76 7D 76 64 61 00"), jet3("MSysDb"));
}

TEST(Jet3TextKey, FoldsCaseTrimsAndCuts) {
    EXPECT_EQ(jet3("Hello"), jet3("hELLO   "));
    std::string a(255, 'x'), b(255, 'x');
    a += "abc";
    EXPECT_EQ(jet3(a), jet3(b));
    EXPECT_EQ(hex("00"), jet3(""));
    EXPECT_EQ(hex("00"), jet3(std::string_view("\0", 1))) << "byte 0 is ignored";
}

TEST(Jet3TextKey, OtherCodePagesKnowOnlyAscii) {
    EXPECT_EQ(jet3("Tables"), jet3("Tables", true, 1251));
    Bytes out;
    std::string problem;
    const uint8_t cyrillic[] = {'M', 0xC8, 0xD0};  // "MИР" in code page 1251
    EXPECT_FALSE(jet::appendJet3TextKey(out, cyrillic, 1251, true, problem));
    EXPECT_NE(std::string::npos, problem.find("Cyrillic")) << problem;
    EXPECT_EQ(hex("6F"), out);
    problem.clear();
    EXPECT_FALSE(jet::appendJet3TextKey(out, cyrillic, 1250, true, problem));
    EXPECT_NE(std::string::npos, problem.find("1250")) << problem;
}

TEST(TextKey, OnlyTheGeneralCollatingOrderIsEncoded) {
    jet::IndexKeyColumn c;
    c.type = jet::ColumnType::Text;
    c.collation = 0x0419;  // Russian
    Bytes out;
    std::string problem;
    EXPECT_FALSE(jet::appendKeyColumn(out, c, jet::IndexKeyValue::fromText(u"abc"), problem));
    EXPECT_NE(std::string::npos, problem.find("0x0419")) << problem;
    problem.clear();
    out.clear();
    EXPECT_TRUE(jet::appendKeyColumn(out, c, jet::IndexKeyValue::null(), problem)) << "a null needs no codes";
    c.collation = jet::kGeneralCollation;
    c.collationVersion = 1;  // the newer General order of later Access versions
    EXPECT_FALSE(jet::appendKeyColumn(out, c, jet::IndexKeyValue::fromText(u"abc"), problem));
}

TEST(TextSortCodes, TablesParseIntoTheExpectedClasses) {
    using Kind = jet::TextSortCode::Kind;
    EXPECT_EQ(Kind::Ignored, jet::jet3SortCode(0x00).kind);
    EXPECT_EQ(Kind::Significant, jet::jet3SortCode('a').kind);
    EXPECT_EQ(Kind::International, jet::jet3SortCode(0xE9).kind);
    EXPECT_EQ(4, jet::jet3SortCode(0xE9).extra);
    EXPECT_EQ(2, jet::jet3SortCode(0xDF).primaryLength);  // sharp s sorts as "ss"
    EXPECT_EQ(Kind::Unprintable, jet::jet4SortCode(u'-').kind);
    EXPECT_EQ(0x82, jet::jet4SortCode(u'-').extra);
    EXPECT_EQ(Kind::International, jet::jet4SortCode(0x02C6).kind);
    EXPECT_EQ(2, jet::jet4SortCode(0x02C6).primaryLength);
    EXPECT_EQ(Kind::Unknown, jet::jet4SortCode(0x0391).kind);  // Greek capital alpha
    EXPECT_EQ(Kind::Unknown, jet::jet4SortCode(0xD800).kind);
    for (int b = 1; b < 256; ++b) EXPECT_NE(Kind::Unknown, jet::jet3SortCode(uint8_t(b)).kind) << b;
    for (int ch = 1; ch < 256; ++ch) EXPECT_NE(Kind::Unknown, jet::jet4SortCode(char16_t(ch)).kind) << ch;
}

}  // namespace
