// Jet 4 text keys for every character Access takes: worked examples of each kind of code
// (checked against another Access library's key writer), the two keys Access itself wrote
// for Greek and Japanese text in testUnicodeCompV2003, and the one refusal left
// (surrogates). The checker test rebuilds every Jet 4 index of the fixtures byte for byte.
#include <gtest/gtest.h>

#include "index/IndexTextCodes.h"
#include "index/IndexTextKey.h"
#include "testkit/TestFiles.h"

namespace {

using jet::testkit::hex;
using Bytes = std::vector<uint8_t>;

Bytes key(std::u16string_view text, bool ascending = true) {
    Bytes out;
    std::string problem;
    EXPECT_TRUE(jet::appendJet4TextKey(out, text, ascending, problem)) << problem;
    return out;
}

struct Example {
    std::u16string text;
    bool ascending;
    const char* key;
};

TEST(Jet4TextKey, WorkedExamplesOfEveryKindOfCode) {
    const Example examples[] = {
        // simple: Greek, CJK, Hebrew; case shares the code
        {u"\u03A9", true, "79 23 01 00"},
        {u"\u03A9", false, "86 DC FE FF 00"},
        {u"\u03C9\u03A9", true, "79 23 79 23 01 00"},
        {u"\u4E2D\u6587", true, "9F 3D B6 F6 01 00"},
        {u"\u05E9\u05DC\u05D5\u05DD", true, "79 A8 79 9F 79 99 79 A0 01 00"},
        // international: Polish, Turkish, a two-byte accent
        {u"\u0142za", true, "5E 78 4A 01 1F 00"},
        {u"A\u011Fa", true, "4A 55 4A 01 02 15 00"},
        {u"A\u011Fa ", true, "4A 55 4A 01 02 15 00"},
        {u"A\u011Fa", false, "B5 AA B5 FE FD EA FF 00"},
        {u"\u0141\u00F3d\u017A", true, "5E 64 4F 78 01 1F 0E 02 0E 00"},
        {u"x\u01C4y", true, "75 4F 78 76 01 02 02 14 00"},
        // unprintable, before and after an accent
        {u"a\u2013b", true, "4A 4C 01 01 01 01 80 0B 06 89 00"},
        {u"\u00E9\u2013", true, "51 01 0E 01 01 01 80 0B 06 89 00"},
        {u"\u0628\u064E", true, "79 AC 01 08 01 01 01 80 0B 06 A3 00"},
        // combining marks: on a plain letter, on a Hebrew letter, leading, on kana
        {u"a\u0301", true, "4A 01 0E 00"},
        {u"\u05E9\u05B0", true, "79 A8 01 24 00"},
        {u"\u0301a", true, "4A 01 0C 00"},
        {u"\u304B\u3099", true, "7F 0A 01 03 01 01 FF 02 80 FF 80 00"},
        // kana: plain, small, voiced, packed three to a byte, with an unprintable
        {u"\u3042", true, "7F 02 01 01 01 FF 02 80 FF 80 00"},
        {u"\u3041", true, "7F 02 01 01 01 A0 FF 02 80 FF 80 00"},
        {u"\u304C", true, "7F 0A 01 03 01 01 FF 02 80 FF 80 00"},
        {u"\u3041\u304C\u3042", true, "7F 02 7F 0A 7F 02 01 02 03 01 01 A0 FF 02 80 FF 80 00"},
        {u"\u3041\u3041\u3041\u3041", true, "7F 02 7F 02 7F 02 7F 02 01 01 01 AA A0 FF 02 80 FF 80 00"},
        {u"\u3041-", true, "7F 02 01 01 01 A0 FF 02 80 FF 80 FF 01 80 0B 06 82 00"},
        // ignored: the same key as the empty text
        {u"\u0640", true, "01 00"},
        {u"", true, "01 00"},
        // primary codes of three and four bytes: ligatures sort as their letters
        {u"\uFB03", true, "53 53 59 01 00"},
        {u"\u05F2", true, "79 9D 79 9D 01 00"},
        // written by Access 2003 into the Unicode index of testUnicodeCompV2003
        {u"\u03F0\u03B1\u1F76 \u03C4\u1F79\u03C4' \u1F10\u03B3\u1F7C \u039A\u1F7B\u03F0\u03BB\u03C9\u03C0\u03B1", true,
         "79 15 79 0C 07 79 1E 79 1E 07 79 0E 07 79 15 79 15 79 16 79 23 79 1B 79 0C 01 03 02 02 02 02 02 02 02 02 03 "
         "01 01 01 80 1B 06 80 00"},
        {u"\u6F22\u5B57\u4EEE\u540D\u4EA4\u3058\u308A\u6587", true,
         "C0 B6 AC AC A0 0D A5 47 9F BE 7F 13 7F 43 B6 F6 01 02 02 02 02 02 03 01 01 FF 02 80 FF 80 00"},
    };
    for (const Example& e : examples) EXPECT_EQ(hex(e.key), key(e.text, e.ascending)) << e.key;
}

TEST(Jet4TextKey, SurrogatesAreRefusedKeepingTheKnownBeginning) {
    for (const bool ascending : {true, false}) {
        Bytes out;
        std::string problem;
        EXPECT_FALSE(jet::appendJet4TextKey(out, u"ab\xD83D\xDE00", ascending, problem));
        EXPECT_NE(std::string::npos, problem.find("U+D83D")) << problem;
        EXPECT_EQ(hex(ascending ? "4A 4C" : "B5 B3"), out) << "what the checker compares";
    }
    int surrogates = 0;
    for (unsigned ch = 0; ch <= 0xFFFF; ++ch)
        surrogates += jet::jet4SortCode(char16_t(ch)).kind == jet::Jet4SortCode::Kind::Surrogate;
    EXPECT_EQ(0x800, surrogates) << "U+D800-U+DFFF and nothing else";
}

}  // namespace
