// Code pages, Jet 4 text forms and the UTF helpers behind names and values.
#include <gtest/gtest.h>

#include "jet/CodePage.h"
#include "jet/Pager.h"
#include "jet/TextCodec.h"
#include "jet/Utf.h"

namespace {

using jet::CodePage;

std::vector<uint8_t> bytes(std::initializer_list<int> v) { return {v.begin(), v.end()}; }

TEST(CodePage, Windows1252DecodesTheEuroAndKeepsTheFiveUndefinedBytes) {
    auto cp = CodePage::get(1252);
    EXPECT_EQ("\u20AC \u00A3 \u0160", cp->toUtf8(bytes({0x80, 0x20, 0xA3, 0x20, 0x8A})));
    for (int b : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        EXPECT_EQ(char32_t(b), cp->toUnicode(uint8_t(b)));
        std::string text = cp->toUtf8(bytes({b}));
        auto back = cp->fromUtf8(text);
        ASSERT_TRUE(back.has_value());
        EXPECT_EQ(std::string(1, char(b)), *back) << "byte " << b << " must round-trip";
    }
}

TEST(CodePage, EveryByteOfTheBuiltInPagesRoundTrips) {
    for (uint16_t number : {1252, 1251}) {
        auto cp = CodePage::get(number);
        for (int b = 0; b < 256; ++b) {
            auto back = cp->fromUtf8(cp->toUtf8(bytes({b})));
            ASSERT_TRUE(back.has_value()) << number << " byte " << b;
            EXPECT_EQ(uint8_t(b), uint8_t((*back)[0])) << number << " byte " << b;
        }
    }
}

TEST(CodePage, Windows1251HoldsCyrillicAndRefusesWhatItCannotStore) {
    auto cp = CodePage::get(1251);
    EXPECT_EQ("\u0422\u0430\u0431\u043B\u0438\u0446\u0430", cp->toUtf8(bytes({0xD2, 0xE0, 0xE1, 0xEB, 0xE8, 0xF6, 0xE0})));
    EXPECT_EQ("\xA8\xB8", cp->fromUtf8("\u0401\u0451").value());
    EXPECT_FALSE(cp->fromUtf8("\u00E9").has_value()) << "1251 has no e-acute";
    EXPECT_FALSE(CodePage::get(1252)->fromUtf8("\u0416").has_value());
}

TEST(CodePage, OtherPagesComeFromIconvAndUnknownOnesAreRefused) {
    auto cp = CodePage::get(1250);
    EXPECT_EQ("\u0142", cp->toUtf8(bytes({0xB3})));  // l with stroke
    EXPECT_EQ("\xB3", cp->fromUtf8("\u0142").value());
    try {
        CodePage::get(4242);
        FAIL() << "an unknown code page must be refused";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::Unspecified, e.number());
        EXPECT_NE(std::string::npos, e.description().find("4242"));
    }
}

TEST(Jet4Text, PlainUcs2AndTheCompressedFormWithModeSwitches) {
    EXPECT_EQ(u"Ab\u0416", jet::decodeJet4Text(bytes({'A', 0, 'b', 0, 0x16, 0x04})));
    EXPECT_EQ(u"abc", jet::decodeJet4Text(bytes({0xFF, 0xFE, 'a', 'b', 'c'})));
    // "ab", switch to two-byte mode for U+0416 U+0417, back to one byte for "z".
    EXPECT_EQ(u"ab\u0416\u0417z", jet::decodeJet4Text(bytes({0xFF, 0xFE, 'a', 'b', 0, 0x16, 0x04, 0x17, 0x04, 0, 'z'})));
    EXPECT_EQ(u"", jet::decodeJet4Text(bytes({0xFF, 0xFE})));
    EXPECT_EQ(u"", jet::decodeJet4Text({}));
}

TEST(Jet4Text, DamagedValuesAreErrorsNotGuesses) {
    EXPECT_THROW(jet::decodeJet4Text(bytes({'A', 0, 'b'})), jet::CorruptError);
    EXPECT_THROW(jet::decodeJet4Text(bytes({0xFF, 0xFE, 0, 0x16})), jet::CorruptError);
}

TEST(Utf, SurrogatePairsAndUnpairedSurrogates) {
    EXPECT_EQ("\U0001F600", jet::utf16ToUtf8(u"\U0001F600"));
    EXPECT_EQ(u"\U0001F600x", jet::utf8ToUtf16("\U0001F600x"));
    EXPECT_EQ("\uFFFDa", jet::utf16ToUtf8(std::u16string{char16_t(0xD800), u'a'}));
    EXPECT_EQ(u"\uFFFD", jet::utf8ToUtf16("\xC3"));
    EXPECT_EQ(u"\uFFFD", jet::utf8ToUtf16("\xC0\x80")) << "an overlong NUL is not a character";
}

TEST(Utf, NamesCompareWithoutCaseAcrossScripts) {
    EXPECT_TRUE(jet::equalsIgnoreCase("MSysObjects", "msysOBJECTS"));
    EXPECT_TRUE(jet::equalsIgnoreCase("\u0422\u0430\u0431\u043B\u0438\u0446\u0430", "\u0442\u0410\u0411\u041B\u0418\u0426\u0410"));
    EXPECT_TRUE(jet::equalsIgnoreCase("\u00C9t\u00E9", "\u00E9T\u00C9"));
    EXPECT_FALSE(jet::equalsIgnoreCase("Table1", "Table10"));
    EXPECT_LT(jet::compareIgnoreCase("table1", "Table10"), 0);
    EXPECT_GT(jet::compareIgnoreCase("b", "A"), 0);
}

TEST(Utf, NameOrderPutsPunctuationBeforeDigitsAndIgnoresCaseAndAccents) {
    EXPECT_LT(jet::collateNames("Table1_desc", "Table10"), 0);
    EXPECT_LT(jet::collateNames("Table9", "TableA"), 0);
    EXPECT_LT(jet::collateNames("apple", "Banana"), 0);
    EXPECT_LT(jet::collateNames("\u00E9cole", "ezra"), 0) << "e-acute sorts with e";
    EXPECT_LT(jet::collateNames("zebra", "\u0430\u0431"), 0) << "Cyrillic after Latin";
    EXPECT_NE(0, jet::collateNames("abc", "ABC")) << "the order is total";
    EXPECT_EQ(0, jet::collateNames("abc", "abc"));
}

}  // namespace
