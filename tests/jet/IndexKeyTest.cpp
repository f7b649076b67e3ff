// Keys of every column type: the published examples byte for byte, and the property an
// index depends on, that the unsigned byte order of keys is the order of the values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "IndexHex.h"
#include "jet/Bytes.h"
#include "jet/IndexKey.h"

namespace {

using jet::ColumnType;
using jet::IndexKeyColumn;
using jet::IndexKeyValue;
using jet::Version;
using Bytes = std::vector<uint8_t>;

IndexKeyColumn column(ColumnType type, bool ascending = true, Version v = Version::Jet4) {
    IndexKeyColumn c;
    c.type = type;
    c.ascending = ascending;
    c.version = v;
    return c;
}

Bytes keyOf(const IndexKeyColumn& c, const IndexKeyValue& v) {
    Bytes key;
    std::string problem;
    EXPECT_TRUE(jet::appendKeyColumn(key, c, v, problem)) << problem;
    return key;
}

template <typename T>
Bytes stored(T value) {
    Bytes b(sizeof(T));
    std::memcpy(b.data(), &value, sizeof(T));  // the engine runs on little-endian machines only
    return b;
}

Bytes keyOfLong(int32_t v, bool asc = true) {
    auto s = stored(v);
    return keyOf(column(ColumnType::Long, asc), IndexKeyValue::fromStored(s));
}

TEST(IndexKey, PublishedFixedTypeExamples) {
    EXPECT_EQ(hex("7F 80 00 00 01"), keyOfLong(1));
    EXPECT_EQ(hex("7F 7F FF FF FF"), keyOfLong(-1));
    EXPECT_EQ(hex("80 7F FF FF FE"), keyOfLong(1, false));
    auto i5 = stored(int16_t(5));
    EXPECT_EQ(hex("7F 80 05"), keyOf(column(ColumnType::Int), IndexKeyValue::fromStored(i5)));
    Bytes b200{200};
    EXPECT_EQ(hex("7F C8"), keyOf(column(ColumnType::Byte), IndexKeyValue::fromStored(b200)));
    EXPECT_EQ(hex("80 37"), keyOf(column(ColumnType::Byte, false), IndexKeyValue::fromStored(b200)));
    auto money = stored(int64_t(15000));
    EXPECT_EQ(hex("7F 80 00 00 00 00 00 3A 98"), keyOf(column(ColumnType::Money), IndexKeyValue::fromStored(money)));
    auto one = stored(1.0), minusOne = stored(-1.0);
    EXPECT_EQ(hex("7F BF F0 00 00 00 00 00 00"), keyOf(column(ColumnType::Double), IndexKeyValue::fromStored(one)));
    EXPECT_EQ(hex("7F 40 0F FF FF FF FF FF FF"),
              keyOf(column(ColumnType::Double), IndexKeyValue::fromStored(minusOne)));
    EXPECT_EQ(hex("00"), keyOf(column(ColumnType::Long), IndexKeyValue::null()));
    EXPECT_EQ(hex("FF"), keyOf(column(ColumnType::Long, false), IndexKeyValue::null()));
}

TEST(IndexKey, GuidSortsByItsTextAndIsSegmented) {
    // {00112233-4455-6677-8899-AABBCCDDEEFF} as stored in a row.
    Bytes g = hex("33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF");
    EXPECT_EQ(hex("7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08"),
              keyOf(column(ColumnType::Guid), IndexKeyValue::fromStored(g)));
    // Descending: data of inner segments inverted with the 0x09 kept, the last segment
    // inverted together with its length byte.
    EXPECT_EQ(hex("80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7"),
              keyOf(column(ColumnType::Guid, false), IndexKeyValue::fromStored(g)));
}

TEST(IndexKey, BooleanIsNeverNull) {
    const auto asc = column(ColumnType::Bool), desc = column(ColumnType::Bool, false);
    EXPECT_EQ(hex("7F 00"), keyOf(asc, IndexKeyValue::fromBool(true)));
    EXPECT_EQ(hex("7F FF"), keyOf(asc, IndexKeyValue::fromBool(false)));
    EXPECT_EQ(hex("80 FF"), keyOf(desc, IndexKeyValue::fromBool(true)));
    EXPECT_EQ(hex("80 00"), keyOf(desc, IndexKeyValue::fromBool(false)));
    EXPECT_EQ(hex("7F FF"), keyOf(asc, IndexKeyValue::null())) << "a missing bit is false";
    const IndexKeyColumn cols[] = {asc};
    const IndexKeyValue vals[] = {IndexKeyValue::null()};
    EXPECT_FALSE(jet::buildIndexKey(cols, vals).allNull);
}

TEST(IndexKey, DecimalAscendingAndRefusedDescending) {
    // +1 and -1 with scale 0: sign byte, four little-endian words, most significant first.
    Bytes plusOne = hex("00 00000000 00000000 00000000 01000000");
    Bytes minusOne = hex("80 00000000 00000000 00000000 01000000");
    Bytes big = hex("00 00000000 00000000 01000000 00000000");  // 2^32
    auto kPlus = keyOf(column(ColumnType::Numeric), IndexKeyValue::fromStored(plusOne));
    EXPECT_EQ(hex("7F FF 00000000 00000000 00000000 00000001"), kPlus);
    auto kMinus = keyOf(column(ColumnType::Numeric), IndexKeyValue::fromStored(minusOne));
    EXPECT_EQ(hex("7F 00 FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFE"), kMinus);
    EXPECT_LT(kMinus, kPlus);
    EXPECT_LT(kPlus, keyOf(column(ColumnType::Numeric), IndexKeyValue::fromStored(big)));

    Bytes key;
    std::string problem;
    EXPECT_FALSE(jet::appendKeyColumn(key, column(ColumnType::Numeric, false), IndexKeyValue::fromStored(plusOne),
                                      problem));
    EXPECT_NE(std::string::npos, problem.find("decimal"));
}

TEST(IndexKey, RefusesWhatItCannotEncode) {
    Bytes key;
    std::string problem;
    Bytes three{1, 2, 3};
    EXPECT_FALSE(jet::appendKeyColumn(key, column(ColumnType::Long), IndexKeyValue::fromStored(three), problem));
    EXPECT_NE(std::string::npos, problem.find("4 bytes")) << problem;
    problem.clear();
    EXPECT_FALSE(jet::appendKeyColumn(key, column(ColumnType::Ole), IndexKeyValue::fromStored(three), problem));
    EXPECT_FALSE(problem.empty());
}

TEST(IndexKey, MultiColumnKeysConcatenateTheirParts) {
    // The catalogue's (ParentId, Name) index, Jet 4, entry of "Tables".
    auto parent = stored(int32_t(0x0F000000));
    std::u16string name = u"Tables";
    const IndexKeyColumn cols[] = {column(ColumnType::Long), column(ColumnType::Text)};
    const IndexKeyValue vals[] = {IndexKeyValue::fromStored(parent), IndexKeyValue::fromText(name)};
    auto key = jet::buildIndexKey(cols, vals);
    ASSERT_TRUE(key.exact());
    EXPECT_FALSE(key.allNull);
    EXPECT_EQ(hex("7F 8F 00 00 00 7F 6D 4A 4C 5E 51 6B 01 00"), key.bytes);

    const IndexKeyValue nulls[] = {IndexKeyValue::null(), IndexKeyValue::null()};
    auto nullKey = jet::buildIndexKey(cols, nulls);
    EXPECT_TRUE(nullKey.allNull);
    EXPECT_EQ(hex("00 00"), nullKey.bytes);
}

// Sorting values by their keys must give the values' own order, for every numeric type,
// ascending and descending: this is what makes range scans and uniqueness work.
template <typename T, typename Gen>
void expectKeyOrderFollowsValues(ColumnType type, Gen gen) {
    std::mt19937 rng(1234);
    std::vector<T> values;
    for (int i = 0; i < 400; ++i) values.push_back(gen(rng));
    for (bool asc : {true, false}) {
        std::vector<std::pair<Bytes, T>> keyed;
        for (T v : values) {
            auto s = stored(v);
            keyed.emplace_back(keyOf(column(type, asc), IndexKeyValue::fromStored(s)), v);
        }
        std::sort(keyed.begin(), keyed.end(), [](auto& a, auto& b) { return a.first < b.first; });
        for (size_t i = 1; i < keyed.size(); ++i) {
            if (asc)
                EXPECT_LE(keyed[i - 1].second, keyed[i].second) << "type " << int(type);
            else
                EXPECT_GE(keyed[i - 1].second, keyed[i].second) << "type " << int(type);
        }
    }
}

TEST(IndexKey, ByteOrderOfKeysIsValueOrder) {
    expectKeyOrderFollowsValues<uint8_t>(ColumnType::Byte, [](auto& r) { return uint8_t(r()); });
    expectKeyOrderFollowsValues<int16_t>(ColumnType::Int, [](auto& r) { return int16_t(r()); });
    expectKeyOrderFollowsValues<int32_t>(ColumnType::Long, [](auto& r) { return int32_t(r()); });
    expectKeyOrderFollowsValues<int64_t>(ColumnType::Money,
                                         [](auto& r) { return int64_t((uint64_t(r()) << 32) | r()); });
    expectKeyOrderFollowsValues<float>(ColumnType::Float, [](auto& r) {
        return std::uniform_real_distribution<float>(-1e6f, 1e6f)(r) * (r() % 2 ? 1e-3f : 1e3f);
    });
    expectKeyOrderFollowsValues<double>(ColumnType::Double, [](auto& r) {
        return std::ldexp(std::uniform_real_distribution<double>(-1, 1)(r), int(r() % 200) - 100);
    });
    expectKeyOrderFollowsValues<double>(ColumnType::DateTime, [](auto& r) {
        return std::uniform_real_distribution<double>(-80000, 80000)(r);
    });
}

TEST(IndexKey, BinaryKeysSortLikeTheBytesWithShorterFirst) {
    std::mt19937 rng(99);
    std::vector<Bytes> values;
    for (int i = 0; i < 300; ++i) {
        Bytes v(rng() % 20);
        for (auto& b : v) b = uint8_t(rng() % 3);  // few symbols: many shared prefixes
        values.push_back(v);
    }
    for (bool asc : {true, false}) {
        std::vector<std::pair<Bytes, Bytes>> keyed;
        for (auto& v : values) keyed.emplace_back(keyOf(column(ColumnType::Binary, asc), IndexKeyValue::fromStored(v)), v);
        std::sort(keyed.begin(), keyed.end());
        for (size_t i = 1; i < keyed.size(); ++i) {
            if (keyed[i - 1].first == keyed[i].first) {
                EXPECT_EQ(keyed[i - 1].second, keyed[i].second) << "different values share a key";
                continue;
            }
            if (asc)
                EXPECT_LT(keyed[i - 1].second, keyed[i].second);
            else
                EXPECT_GT(keyed[i - 1].second, keyed[i].second);
        }
    }
}

TEST(IndexKey, BinarySegmentsEndInTheirLength) {
    Bytes nine = hex("01 02 03 04 05 06 07 08 09");
    EXPECT_EQ(hex("7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01"),
              keyOf(column(ColumnType::Binary), IndexKeyValue::fromStored(nine)));
    Bytes eight = hex("01 02 03 04 05 06 07 08");
    EXPECT_EQ(hex("7F 01 02 03 04 05 06 07 08 08"), keyOf(column(ColumnType::Binary), IndexKeyValue::fromStored(eight)));
}

}  // namespace
