// Index keys where the fixtures' indexes (all rebuilt exactly by the checker test) do not
// reach: the published examples of decimal, binary and descending Jet 4 text keys, the
// property an index depends on (the unsigned byte order of keys is the order of the
// values) over many values, the folding and trimming rules of text, and the refusal of
// what cannot be encoded exactly.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "base/Bytes.h"
#include "index/IndexKey.h"
#include "index/IndexTextCodes.h"
#include "index/IndexTextKey.h"
#include "testkit/TestFiles.h"

namespace {

using jet::ColumnType;
using jet::IndexKeyColumn;
using jet::IndexKeyValue;
using jet::testkit::hex;
using Bytes = std::vector<uint8_t>;

IndexKeyColumn column(ColumnType type, bool ascending = true) {
    IndexKeyColumn c;
    c.type = type;
    c.ascending = ascending;
    return c;
}

Bytes keyOf(ColumnType type, const IndexKeyValue& v, bool ascending = true) {
    Bytes key;
    std::string problem;
    EXPECT_TRUE(jet::appendKeyColumn(key, column(type, ascending), v, problem)) << problem;
    return key;
}

template <typename T>
Bytes stored(T value) {
    Bytes b(sizeof(T));
    std::memcpy(b.data(), &value, sizeof(T));  // the engine runs on little-endian machines only
    return b;
}

Bytes jet4(std::u16string_view text, bool asc = true) {
    Bytes out;
    std::string problem;
    EXPECT_TRUE(jet::appendJet4TextKey(out, text, asc, problem)) << problem;
    return out;
}

Bytes jet3(std::string_view cp1252, bool asc = true) {
    Bytes out;
    std::string problem;
    EXPECT_TRUE(jet::appendJet3TextKey(out, {reinterpret_cast<const uint8_t*>(cp1252.data()), cp1252.size()}, 1252, asc,
                                       problem))
        << problem;
    return out;
}

TEST(IndexKey, PublishedExamplesTheFixturesDoNotHold) {
    const Bytes guid = hex("33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF");  // {00112233-4455-...} as stored
    const std::tuple<ColumnType, Bytes, bool, const char*> cases[] = {
        {ColumnType::Long, stored(int32_t(1)), false, "80 7F FF FF FE"},
        {ColumnType::Money, stored(int64_t(15000)), true, "7F 80 00 00 00 00 00 3A 98"},
        {ColumnType::Double, stored(-1.0), true, "7F 40 0F FF FF FF FF FF FF"},
        // Descending: inner segments inverted with their 0x09 kept, the last one with its length.
        {ColumnType::Guid, guid, false, "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7"},
        {ColumnType::Binary, hex("01 02 03 04 05 06 07 08 09"), true, "7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01"},
        {ColumnType::Binary, hex("01 02 03 04 05 06 07 08"), true, "7F 01 02 03 04 05 06 07 08 08"},
        // Decimal: sign byte, four little-endian words, most significant first.
        {ColumnType::Numeric, hex("00 00000000 00000000 00000000 01000000"), true, "7F FF 00000000 00000000 00000000 00000001"},
        {ColumnType::Numeric, hex("80 00000000 00000000 00000000 01000000"), true, "7F 00 FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFE"},
    };
    for (const auto& [type, value, asc, expected] : cases) EXPECT_EQ(hex(expected), keyOf(type, IndexKeyValue::fromStored(value), asc)) << expected;
    EXPECT_EQ(hex("00"), keyOf(ColumnType::Long, IndexKeyValue::null()));
    EXPECT_EQ(hex("FF"), keyOf(ColumnType::Long, IndexKeyValue::null(), false));
    EXPECT_EQ(hex("7F FF"), keyOf(ColumnType::Bool, IndexKeyValue::null())) << "Yes/No is never Null: a missing bit is false";

    // The catalogue's (ParentId, Name) index, Jet 4, entry of "Tables".
    const Bytes parent = stored(int32_t(0x0F000000));
    const IndexKeyColumn cols[] = {column(ColumnType::Long), column(ColumnType::Text)};
    const IndexKeyValue vals[] = {IndexKeyValue::fromStored(parent), IndexKeyValue::fromText(u"Tables")};
    EXPECT_EQ(hex("7F 8F 00 00 00 7F 6D 4A 4C 5E 51 6B 01 00"), jet::buildIndexKey(cols, vals).bytes);
    const IndexKeyValue nulls[] = {IndexKeyValue::null(), IndexKeyValue::null()};
    EXPECT_TRUE(jet::buildIndexKey(cols, nulls).allNull);
}

TEST(IndexKey, RefusesWhatItCannotEncodeExactly) {
    std::string problem;
    Bytes key;
    const Bytes three{1, 2, 3};
    EXPECT_FALSE(jet::appendKeyColumn(key, column(ColumnType::Long), IndexKeyValue::fromStored(three), problem));
    EXPECT_NE(std::string::npos, problem.find("4 bytes")) << problem;
    EXPECT_FALSE(jet::appendKeyColumn(key, column(ColumnType::Ole), IndexKeyValue::fromStored(three), problem));
    EXPECT_FALSE(jet::appendKeyColumn(key, column(ColumnType::Numeric, false), IndexKeyValue::fromStored(Bytes(17)), problem));
    EXPECT_NE(std::string::npos, problem.find("decimal")) << "descending decimal keys are not known";
    IndexKeyColumn russian = column(ColumnType::Text);
    russian.collation = 0x0419;
    EXPECT_FALSE(jet::appendKeyColumn(key, russian, IndexKeyValue::fromText(u"abc"), problem));
    EXPECT_NE(std::string::npos, problem.find("0x0419")) << problem;
    EXPECT_TRUE(jet::appendKeyColumn(key, russian, IndexKeyValue::null(), problem)) << "a null needs no codes";
    IndexKeyColumn newerGeneral = column(ColumnType::Text);
    newerGeneral.collationVersion = 1;
    EXPECT_FALSE(jet::appendKeyColumn(key, newerGeneral, IndexKeyValue::fromText(u"abc"), problem));
}

// Sorting values by their keys must give the values' own order, ascending and descending:
// this is what makes lookups and uniqueness work.
template <typename T, typename Gen>
void expectKeyOrderFollowsValues(ColumnType type, Gen gen) {
    std::mt19937 rng(1234);
    for (bool asc : {true, false}) {
        std::vector<std::pair<Bytes, T>> keyed;
        for (int i = 0; i < 400; ++i) {
            const T v = gen(rng);
            keyed.emplace_back(keyOf(type, IndexKeyValue::fromStored(stored(v)), asc), v);
        }
        std::sort(keyed.begin(), keyed.end(), [](auto& a, auto& b) { return a.first < b.first; });
        for (size_t i = 1; i < keyed.size(); ++i)
            EXPECT_TRUE(asc ? keyed[i - 1].second <= keyed[i].second : keyed[i - 1].second >= keyed[i].second)
                << "type " << int(type);
    }
}

TEST(IndexKey, ByteOrderOfKeysIsValueOrder) {
    expectKeyOrderFollowsValues<int16_t>(ColumnType::Int, [](auto& r) { return int16_t(r()); });
    expectKeyOrderFollowsValues<int32_t>(ColumnType::Long, [](auto& r) { return int32_t(r()); });
    expectKeyOrderFollowsValues<int64_t>(ColumnType::Money, [](auto& r) { return int64_t((uint64_t(r()) << 32) | r()); });
    expectKeyOrderFollowsValues<float>(ColumnType::Float, [](auto& r) {
        return std::uniform_real_distribution<float>(-1e6f, 1e6f)(r) * (r() % 2 ? 1e-3f : 1e3f);
    });
    expectKeyOrderFollowsValues<double>(ColumnType::Double, [](auto& r) {
        return std::ldexp(std::uniform_real_distribution<double>(-1, 1)(r), int(r() % 200) - 100);
    });
    // Binary: the bytes' order, shorter first; different values never share a key.
    std::mt19937 rng(99);
    for (bool asc : {true, false}) {
        std::vector<std::pair<Bytes, Bytes>> keyed;
        for (int i = 0; i < 300; ++i) {
            Bytes v(rng() % 20);
            for (auto& b : v) b = uint8_t(rng() % 3);  // few symbols: many shared prefixes
            keyed.emplace_back(keyOf(ColumnType::Binary, IndexKeyValue::fromStored(v), asc), v);
        }
        std::sort(keyed.begin(), keyed.end());
        for (size_t i = 1; i < keyed.size(); ++i)
            EXPECT_TRUE(keyed[i - 1].first == keyed[i].first
                            ? keyed[i - 1].second == keyed[i].second
                            : (asc ? keyed[i - 1].second < keyed[i].second : keyed[i - 1].second > keyed[i].second));
    }
}

TEST(TextKey, PublishedExamplesOfBothVersions) {
    const std::pair<std::u16string, const char*> jet4Cases[] = {
        {u"MSysObjects", "60 6B 76 6B 64 4C 5B 51 4D 6D 6B 01 00"},
        {u"\u00E9lan", "51 5E 4A 62 01 0E 00"},
        {u"Zed-1", "78 51 4F 38 01 01 01 01 80 13 06 82 00"},
        {u"it's", "59 6D 6B 01 01 01 01 80 0F 06 80 00"},
        {u"\u0401\u043B\u043A\u0430", "79 36 79 41 79 40 79 2F 01 13 00"},
        {u"a\u00E9", "4A 51 01 02 0E 00"},       // a "no accent" filler for 'a', then e-acute's extra byte
        {u"\u00E9a", "51 4A 01 0E 00"},          // trailing fillers are dropped
        {u"\u00E9-", "51 01 0E 01 01 01 80 0B 06 82 00"},  // the position counts extra bytes once an accent was seen
        {u"a-", "4A 01 01 01 01 80 0B 06 82 00"},
    };
    for (const auto& [text, expected] : jet4Cases) EXPECT_EQ(hex(expected), jet4(text)) << expected;
    EXPECT_EQ(hex("B5 B3 FE FF 00"), jet4(u"ab", false));
    EXPECT_EQ(hex("75 66 76 78 6F 66 04 22 40"), jet3("r\xE9sum\xE9"));
    EXPECT_EQ(hex("00"), jet3(std::string(1, '\0'))) << "byte 0 is ignored";
    EXPECT_EQ(hex("90 89 82 89 8D 9E 94 99 9D 88 89 FF"), jet3("MSysObjects", false));
}

TEST(TextKey, FoldingTrimmingAndTheOrderOfAccents) {
    EXPECT_EQ(jet4(u"abc"), jet4(u"ABC  "));
    EXPECT_NE(jet4(u"abc"), jet4(u" abc")) << "only trailing spaces are dropped";
    EXPECT_EQ(jet4(std::u16string(255, u'a')), jet4(std::u16string(255, u'a') + u"xyz")) << "the tail beyond 255 is cut";
    EXPECT_EQ(jet3("Hello"), jet3("hELLO   "));
    EXPECT_EQ(jet3(std::string(255, 'x')), jet3(std::string(255, 'x') + "abc"));
    EXPECT_LT(jet4(u"ea"), jet4(u"\u00E9a")) << "unaccented text sorts before the same letters with an accent";
    EXPECT_LT(jet4(u"\u00E9a"), jet4(u"eb"));
    for (char16_t upper = 0x0410; upper <= 0x042F; ++upper)
        EXPECT_EQ(jet4(std::u16string(1, upper)), jet4(std::u16string(1, char16_t(upper + 0x20))));
    for (char16_t upper = 0x00C0; upper <= 0x00DE; ++upper)
        EXPECT_TRUE(upper == 0x00D7 || jet4(std::u16string(1, upper)) == jet4(std::u16string(1, char16_t(upper + 0x20))))
            << int(upper);  // the multiplication sign is no letter
    for (int b = 1; b < 256; ++b) EXPECT_NE(jet::TextSortCode::Kind::Unknown, jet::jet3SortCode(uint8_t(b)).kind) << b;
    for (int ch = 1; ch < 256; ++ch) EXPECT_NE(jet::TextSortCode::Kind::Unknown, jet::jet4SortCode(char16_t(ch)).kind) << ch;
}

TEST(TextKey, CharactersWithoutKnownCodesAreRefusedKeepingTheKnownBeginning) {
    for (const std::u16string s : {u"\u03B1", u"ab\u6F22", u"x\xD83D\xDE00"}) {
        Bytes out;
        std::string problem;
        EXPECT_FALSE(jet::appendJet4TextKey(out, s, true, problem));
        EXPECT_NE(std::string::npos, problem.find("U+")) << problem;
    }
    Bytes out;
    std::string problem;
    EXPECT_FALSE(jet::appendJet4TextKey(out, u"ab\u6F22c", false, problem));
    EXPECT_EQ(hex("B5 B3"), out) << "what the checker compares";
    // Jet 3 files of other code pages know only ASCII.
    EXPECT_EQ(jet3("Tables"), [] {
        Bytes k;
        std::string p;
        jet::appendJet3TextKey(k, hex("54 61 62 6C 65 73"), 1251, true, p);
        return k;
    }());
    for (uint16_t codePage : {1251, 1250}) {
        out.clear();
        EXPECT_FALSE(jet::appendJet3TextKey(out, hex("4D C8 D0"), codePage, true, problem));
        EXPECT_NE(std::string::npos, problem.find(codePage == 1251 ? "Cyrillic" : "1250")) << problem;
        EXPECT_EQ(hex("6F"), out);
    }
}

}  // namespace
