#include "index/IndexTextCodes.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace jet {

extern const uint64_t kJet4SortCodeWords[0x10000];  // generated from data/jet4-text-keys

namespace {

// The Jet 3 table is kept in the compact notation the codes were collected in, one row of
// sixteen bytes per line, so that it can be read against the collected lists:
//   -        ignored
//   HH HHHH  simple: one or two primary bytes
//   HH*      significant letter
//   HH+XX    international: primary byte(s) HH, accent nibble XX

// Jet 3, bytes 0x00-0xFF of code page 1252.
constexpr const char* kJet3Rows[16] = {
    "- 10 10 10 10 10 10 10 10 11 10 10 10 10 10 10",
    "10 10 10 10 10 10 10 10 10 10 10 10 10 10 10 10",
    "11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F 20",
    "56 57 58 59 5A 5B 5C 5D 5E 5F 21 22 23 24 25 26",
    "27 60* 61 62* 64 66* 67 68 69 6A* 6B 6C 6D 6F 70* 72*",
    "73 74 75 76* 77 78* 7A 7B 7C 7D* 7E 28 29 2A 2B 2C",
    "2D 60* 61 62* 64 66* 67 68 69 6A* 6B 6C 6D 6F 70* 72*",
    "73 74 75 76* 77 78* 7A 7B 7C 7D* 7E 2E 2F 30 31 10",
    "10 10 18 32 13 33 34 35 36 37 76+0A 18 7266 10 10 10",
    "10 18 18 13 13 38 1E 1E 39 3A 76+0A 18 7266 10 10 7D+06",
    "11 3B 3C 3D 3E 3F 40 41 42 43 44 13 45 1E 46 47",
    "48 49 58 59 4A 4B 4C 4D 4E 57 4F 13 50 51 52 53",
    "60+03 60+04 60+05 60+07 60+06 60+08 6066 62+09 66+03 66+04 66+05 66+06 6A+03 6A+04 6A+05 6A+06",
    "65 70+07 72+03 72+04 72+05 72+07 72+06 54 81 78+03 78+04 78+05 78+06 7D+04 7F 7676",
    "60+03 60+04 60+05 60+07 60+06 60+08 6066 62+09 66+03 66+04 66+05 66+06 6A+03 6A+04 6A+05 6A+06",
    "65 70+07 72+03 72+04 72+05 72+07 72+06 55 81 78+03 78+04 78+05 78+06 7D+04 7F 7D+06",
};

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw std::logic_error("bad hex digit in a sort-code table");
}

uint8_t hexByte(std::string_view s) { return uint8_t(hexDigit(s[0]) * 16 + hexDigit(s[1])); }

TextSortCode parseCode(std::string_view s) {
    TextSortCode c;
    if (s == "-") {
        c.kind = TextSortCode::Kind::Ignored;
        return c;
    }
    std::string_view primary = s;
    c.kind = TextSortCode::Kind::Simple;
    if (size_t plus = s.find('+'); plus != std::string_view::npos) {
        c.kind = TextSortCode::Kind::International;
        primary = s.substr(0, plus);
        c.extra = hexByte(s.substr(plus + 1));
    } else if (s.back() == '*') {
        c.kind = TextSortCode::Kind::Significant;
        primary = s.substr(0, s.size() - 1);
    }
    if (primary.size() != 2 && primary.size() != 4) throw std::logic_error("bad sort code in a table");
    c.primaryLength = uint8_t(primary.size() / 2);
    for (size_t i = 0; i < c.primaryLength; ++i) c.primary[i] = hexByte(primary.substr(2 * i, 2));
    return c;
}

std::array<TextSortCode, 256> parseRows(const char* const (&rows)[16]) {
    std::array<TextSortCode, 256> table{};
    for (size_t r = 0; r < 16; ++r) {
        std::string_view row = rows[r];
        size_t col = 0;
        while (!row.empty()) {
            size_t space = row.find(' ');
            std::string_view cell = row.substr(0, space);
            if (col >= 16) throw std::logic_error("sort-code table row too long");
            table[r * 16 + col++] = parseCode(cell);
            row = space == std::string_view::npos ? std::string_view{} : row.substr(space + 1);
        }
        if (col != 16) throw std::logic_error("sort-code table row too short");
    }
    return table;
}

}  // namespace

const TextSortCode& jet3SortCode(uint8_t byte) {
    static const std::array<TextSortCode, 256> table = parseRows(kJet3Rows);
    return table[byte];
}

Jet4SortCode jet4SortCode(char16_t ch) { return Jet4SortCode::unpacked(kJet4SortCodeWords[ch]); }

}  // namespace jet
