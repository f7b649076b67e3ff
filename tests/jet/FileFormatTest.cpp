// The pieces of the format read on their own, where the corpus tests cannot reach or an
// independent truth is at hand: the header (versions, mask, passwords), text codecs and
// name order, usage maps of both kinds, table definitions and rows built byte by byte
// after the format notes, and the damage each reader must refuse.
#include <gtest/gtest.h>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/CodePage.h"
#include "format/Header.h"
#include "format/TextCodec.h"
#include "format/UsageMap.h"
#include "table/Database.h"
#include "table/RowReader.h"
#include "table/Table.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Format;
using jet::Header;
using jet::Version;
using Bytes = std::vector<uint8_t>;

Bytes page0(const std::string& file) {
    Bytes b = readBytes(fixturePath(file));
    b.resize(Format::of(b[0x14] ? Version::Jet4 : Version::Jet3).pageSize);
    return b;
}

TEST(Header, DetectsBothVersionsAndRefusesEverythingElse) {
    EXPECT_EQ(Version::Jet3, Header::detectVersion(page0("testV1997.mdb"), "a"));
    EXPECT_EQ(Version::Jet4, Header::detectVersion(page0("testV2000.mdb"), "b"));
    std::vector<Bytes> others;
    for (uint8_t v : {0x02, 0x03, 0x05, 0x06, 0x7F}) {
        others.push_back(page0("testV2000.mdb"));
        others.back()[0x14] = v;
    }
    others.push_back(page0("testV2000.mdb"));
    std::memcpy(others.back().data() + 4, "MSISAM Database", 15);
    others.push_back({});
    for (const Bytes& p : others) EXPECT_THROW(Header::detectVersion(p, "x"), jet::RuntimeError);
    try {
        Header::detectVersion(Bytes(64, 'x'), "/tmp/notes.txt");
        FAIL();
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::Unspecified, e.number());
        EXPECT_EQ("Unrecognized database format '/tmp/notes.txt'.", e.description());
    }
}

TEST(Header, CodePageSortOrderCreationDateAndPasswordsOfBothVersions) {
    const Header j3 = Header::parse(Version::Jet3, page0("testV1997.mdb"));
    EXPECT_EQ(1252, j3.codePage());
    EXPECT_EQ(0x0409, j3.sortOrder());
    EXPECT_EQ(0.0, j3.creationDate());
    const Header j4 = Header::parse(Version::Jet4, page0("empty.mdb"));
    EXPECT_EQ(1252, j4.codePage());
    EXPECT_EQ("", j4.password()) << "the stored pattern is the mask of an empty password";
    EXPECT_NEAR(38143 + 47219 / 86400.0, j4.creationDate(), 1.0 / 86400);  // 2004-06-05 13:06:59
    EXPECT_EQ(0, std::memcmp(j4.bytes().data() + 0x9C, "4.0", 3)) << "unmasked";

    // A Jet 4 password is masked with the creation date, a Jet 3 one is code page bytes.
    Bytes p = page0("empty.mdb");
    Header::applyMask(Version::Jet4, p.data());
    uint8_t mask[4];
    jet::putLe32(mask, uint32_t(int32_t(jet::lef64(p.data() + 0x72))));
    const std::u16string pw = u"S\u00E9cret";
    for (size_t i = 0; i < 40; ++i) {
        const uint8_t plain = i / 2 < pw.size() ? uint8_t(i % 2 ? pw[i / 2] >> 8 : pw[i / 2] & 0xFF) : 0;
        p[0x42 + i] = plain ^ mask[i % 4];
    }
    Header::applyMask(Version::Jet4, p.data());
    const Header h = Header::parse(Version::Jet4, p);
    EXPECT_EQ("S\u00E9cret", h.password());
    EXPECT_TRUE(h.passwordMatches("S\u00E9cret"));
    EXPECT_FALSE(h.passwordMatches("s\u00E9cret")) << "passwords are case-sensitive";
    p = page0("testV1997.mdb");
    Header::applyMask(Version::Jet3, p.data());
    std::memcpy(p.data() + 0x42, "pa\xA3ss", 5);
    Header::applyMask(Version::Jet3, p.data());
    EXPECT_EQ("pa\u00A3ss", Header::parse(Version::Jet3, p).password());
}

TEST(Text, CodePagesRoundTripEveryByteAndRefuseWhatTheyCannotHold) {
    for (uint16_t number : {1252, 1251}) {
        auto cp = jet::CodePage::get(number);
        for (int b = 0; b < 256; ++b) {
            const uint8_t byte = uint8_t(b);
            EXPECT_EQ(std::string(1, char(b)), cp->fromUtf8(cp->toUtf8({&byte, 1})).value_or("?!")) << number << " " << b;
        }
    }
    EXPECT_EQ(char32_t(0x81), jet::CodePage::get(1252)->toUnicode(0x81)) << "undefined bytes are kept";
    EXPECT_EQ("\u0422\u0430", jet::CodePage::get(1251)->toUtf8(hex("D2 E0")));
    EXPECT_FALSE(jet::CodePage::get(1251)->fromUtf8("\u00E9").has_value());
    EXPECT_FALSE(jet::CodePage::get(1252)->fromUtf8("\u0416").has_value());
    EXPECT_EQ("\xB3", jet::CodePage::get(1250)->fromUtf8("\u0142").value()) << "other pages come from iconv";
    EXPECT_THROW(jet::CodePage::get(4242), jet::RuntimeError);
}

TEST(Text, Jet4TextInBothFormsAndUtfEdges) {
    EXPECT_EQ(u"Ab\u0416", jet::decodeJet4Text(hex("41 00 62 00 16 04")));
    // "ab", two-byte mode for U+0416 U+0417, back to one byte for "z".
    EXPECT_EQ(u"ab\u0416\u0417z", jet::decodeJet4Text(hex("FF FE 61 62 00 16 04 17 04 00 7A")));
    EXPECT_THROW(jet::decodeJet4Text(hex("41 00 62")), jet::CorruptError);
    EXPECT_THROW(jet::decodeJet4Text(hex("FF FE 00 16")), jet::CorruptError);
    for (const std::u16string& s : {std::u16string(u"abc"), std::u16string(u"ab\u0416"), std::u16string(u"\u00E9t\u00E9s")})
        EXPECT_EQ(s, jet::decodeJet4Text(jet::encodeJet4Text(s, true)));
    EXPECT_EQ("\uFFFDa", jet::utf16ToUtf8(std::u16string{char16_t(0xD800), u'a'}));
    EXPECT_EQ(u"\uFFFD", jet::utf8ToUtf16("\xC0\x80")) << "an overlong NUL is not a character";
    EXPECT_TRUE(jet::equalsIgnoreCase("\u00C9t\u00E9", "\u00E9T\u00C9"));
    // Table names sort with punctuation before digits, without case or accents, Latin first.
    const char* sorted[] = {"apple", "Banana", "\u00E9cole", "ezra", "Table1_desc", "Table10", "Table9", "TableA", "\u0430\u0431"};
    for (size_t i = 1; i < std::size(sorted); ++i) EXPECT_LT(jet::collateNames(sorted[i - 1], sorted[i]), 0) << sorted[i];
    EXPECT_NE(0, jet::collateNames("abc", "ABC")) << "the order is total";
}

// Rows packed from the page end in slot order on a Jet 4 data page.
void putRows(Bytes& file, uint32_t page, const std::vector<Bytes>& rows) {
    uint8_t* p = file.data() + page * 4096;
    p[0] = p[1] = 0x01;
    jet::putLe16(p + 0x0C, uint16_t(rows.size()));
    uint32_t end = 4096;
    for (size_t k = 0; k < rows.size(); ++k) {
        end -= uint32_t(rows[k].size());
        std::copy(rows[k].begin(), rows[k].end(), p + end);
        jet::putLe16(p + 0x0E + 2 * k, uint16_t(end));
    }
}

TEST(UsageMap, InlineAndReferenceMapsAndTheirDamage) {
    Bytes file(5 * 4096, 0);
    putRows(file, 1, {hex("00 08000000 05 80"), hex("01 02000000 00000000 03000000"), hex("07 00 00")});
    file[2 * 4096] = file[3 * 4096] = 0x05;  // usage-map pages
    file[2 * 4096 + 1] = file[3 * 4096 + 1] = 0x01;
    file[2 * 4096 + 4] = 0x02;               // page 1
    file[2 * 4096 + 4 + 4091] = 0x80;        // page 4091 * 8 + 7 = 32735, the window's last page
    file[3 * 4096 + 4] = 0x01;               // the third window (the second has no page): 2 * 32736
    const Format& f = Format::of(Version::Jet4);
    jet::Pager pager(std::make_unique<MemoryFile>(file), "maps", 4096);
    const jet::UsageMap inlineMap = jet::UsageMap::read(pager, f, 1u << 8);
    EXPECT_EQ(jet::UsageMap::Kind::Inline, inlineMap.kind());
    EXPECT_EQ((std::vector<uint32_t>{8, 10, 23}), inlineMap.pages());
    EXPECT_TRUE(inlineMap.contains(10));
    EXPECT_FALSE(inlineMap.contains(9));
    const jet::UsageMap reference = jet::UsageMap::read(pager, f, 1u << 8 | 1);
    EXPECT_EQ((std::vector<uint32_t>{2, 0, 3}), reference.mapPages());
    EXPECT_EQ((std::vector<uint32_t>{1, 32735, 2 * 32736}), reference.pages());
    for (uint32_t bad : {1u << 8 | 2, 1u << 8 | 9, 0u, 4u << 8, 77u << 8})  // type, row, header, page kind, end
        EXPECT_THROW(jet::UsageMap::read(pager, f, bad), jet::CorruptError) << bad;
    file[3 * 4096] = 0x01;
    jet::Pager damaged(std::make_unique<MemoryFile>(file), "maps", 4096);
    EXPECT_THROW(jet::UsageMap::read(damaged, f, 1u << 8 | 1), jet::CorruptError) << "a window page of another kind";
}

TEST(TableDef, DamagedDefinitionsAreRefused) {
    Bytes bytes = readBytes(fixturePath("testV1997.mdb"));
    auto v3 = openInMemory(bytes);
    const auto pages = v3->openTable("Table2")->def().pages();
    jet::putLe32(bytes.data() + size_t(pages[1]) * 2048 + 4, pages[0]);  // the chain loops back
    EXPECT_THROW(openInMemory(bytes)->openTable("Table2"), jet::CorruptError);
    auto v4 = jet::Database::open(fixturePath("testV2000.mdb"));
    const auto& def = v4->openTable("Table1")->def();
    std::vector<uint8_t> stream = def.stream();
    jet::putLe16(stream.data() + 0x2D, 0xFFFF);  // column count
    EXPECT_THROW(jet::TableDef::parse(v4->format(), v4->codePage(), stream), jet::CorruptError);
    stream = def.stream();
    stream.resize(def.parsedLength() - 10);  // cut inside the index names
    EXPECT_THROW(jet::TableDef::parse(v4->format(), v4->codePage(), stream), jet::CorruptError);
}

jet::Column column(uint16_t number, jet::ColumnType type, uint16_t offsetOrSlot) {
    jet::Column c;
    c.typeCode = uint8_t(type);
    c.number = number;
    if (type == jet::ColumnType::Text) {
        c.varIndex = offsetOrSlot;
    } else {
        c.flags = jet::column_flag::Fixed;
        c.fixedOffset = offsetOrSlot;
    }
    return c;
}

TEST(RowReader, Jet3JumpTablesAndFillerSlots) {
    // The format notes' example: a LONG and four texts starting at 5, 209, 256 and 256 and
    // ending at 300, so one jump-table entry is needed.
    Bytes row(308, 0);
    row[0] = 5;
    jet::putLe32(&row[1], 12345);
    for (int i = 5; i < 300; ++i) row[size_t(i)] = uint8_t('a' + i % 26);
    const Bytes trailer = hex("2C 00 00 D1 05 02 04 1F");
    std::copy(trailer.begin(), trailer.end(), row.begin() + 300);
    const jet::RowReader r(Format::of(Version::Jet3), 4, row);
    EXPECT_EQ(300u, r.endOfData());
    const size_t sizes[] = {204, 47, 0, 44};
    for (uint16_t k = 0; k < 4; ++k) {
        const auto v = r.column(column(uint16_t(k + 1), jet::ColumnType::Text, k));
        EXPECT_TRUE(v.present);
        EXPECT_EQ(sizes[k], v.bytes.size()) << k;
    }
    EXPECT_EQ(row.data() + 256, r.column(column(4, jet::ColumnType::Text, 3)).bytes.data());
    EXPECT_EQ(12345u, jet::le32(r.column(column(0, jet::ColumnType::Long, 0)).bytes.data()));
    row[306] = 200;  // more variable columns than the row has room for
    EXPECT_THROW(jet::RowReader(Format::of(Version::Jet3), 4, row), jet::CorruptError);

    // A short row padded past 256 bytes: its one jump slot is only a filler (0xFF).
    Bytes padded(260, 0);
    padded[0] = 2;
    std::memcpy(&padded[1], "hello", 5);
    std::memcpy(&padded[255], "\x06\x01\xFF\x01\x02", 5);  // eod, offset 1, filler, count, mask
    const auto v = jet::RowReader(Format::of(Version::Jet3), 1, padded).column(column(1, jet::ColumnType::Text, 0));
    EXPECT_EQ("hello", std::string(v.bytes.begin(), v.bytes.end()));
}

TEST(RowReader, Jet4OffsetsNullsLaterColumnsAndDamage) {
    // LONG 7 at offset 0, "ab" in slot 0, an empty slot 1; columns 0 and 1 present.
    const Bytes good = hex("0300 07000000 6100 6200 0A00 0A00 0600 0200 03");
    const Format& f = Format::of(Version::Jet4);
    const jet::RowReader r(f, 2, good);
    EXPECT_EQ(7u, jet::le32(r.column(column(0, jet::ColumnType::Long, 0)).bytes.data()));
    EXPECT_EQ(4u, r.column(column(1, jet::ColumnType::Text, 0)).bytes.size());
    EXPECT_FALSE(r.column(column(2, jet::ColumnType::Text, 1)).present) << "mask bit 2 is clear";
    EXPECT_FALSE(r.column(column(3, jet::ColumnType::Text, 2)).present) << "added after the row was written";
    EXPECT_TRUE(r.column(column(1, jet::ColumnType::Bool, 0)).present) << "a Yes/No value is its mask bit";
    EXPECT_THROW(r.column(column(0, jet::ColumnType::Double, 6)), jet::CorruptError) << "reaching into the trailer";
    EXPECT_EQ(42u, jet::le32(jet::RowReader(f, 0, hex("0100 2A000000 01")).column(column(0, jet::ColumnType::Long, 0)).bytes.data()))
        << "no variable section in a table without variable columns";
    auto damaged = [&](size_t at, uint16_t value) {
        Bytes row = good;
        jet::putLe16(&row[at], value);
        return row;
    };
    EXPECT_THROW(jet::RowReader(f, 2, damaged(16, 500)), jet::CorruptError) << "variable count";
    EXPECT_THROW(jet::RowReader(f, 2, damaged(10, 200)), jet::CorruptError) << "end of data";
    EXPECT_THROW(jet::RowReader(f, 2, damaged(14, 11)).column(column(1, jet::ColumnType::Text, 0)), jet::CorruptError)
        << "slot 0 starts after slot 1";
    EXPECT_THROW(jet::RowReader(f, 2, Bytes{3}), jet::CorruptError);
}

}  // namespace
