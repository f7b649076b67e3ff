#include "index/IndexTextCodes.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace jet {
namespace {

// The tables are kept in the compact notation the codes were collected in, one row of
// sixteen characters per line, so that they can be read against the collected lists:
//   -        ignored
//   HH HHHH  simple: one or two primary bytes
//   HH*      significant letter (Jet 3)
//   HH+XX    international: primary byte(s) HH, accent nibble or extra byte XX
//   uXX      unprintable record with code XX (Jet 4)

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

// Jet 4, U+0000-U+00FF (U+0080-U+009F are the C1 control characters).
constexpr const char* kJet4Latin1Rows[16] = {
    "- u03 u04 u05 u06 u07 u08 u09 u0A 0803 0804 0805 0806 0807 u0B u0C",
    "u0D u0E u0F u10 u11 u12 u13 u14 u15 u16 u17 u18 u19 u1A u1B u1C",
    "07 09 0A 0C 0E 10 12 u80 14 16 18 2C 1A u82 1C 1E",
    "36 38 3A 3C 3E 40 42 44 46 48 20 22 2E 30 32 24",
    "26 4A 4C 4D 4F 51 53 55 57 59 5B 5C 5E 60 62 64",
    "66 68 69 6B 6D 6F 71 73 75 76 78 27 29 2A 2B02 2B03",
    "2B07 4A 4C 4D 4F 51 53 55 57 59 5B 5C 5E 60 62 64",
    "66 68 69 6B 6D 6F 71 73 75 76 78 2B09 2B0B 2B0D 2B0F u1D",
    "u1E u1F u20 u21 u22 u23 u24 u25 u26 u27 u28 u29 u2A u2B u2C u2D",
    "u2E u2F u30 u31 u32 u33 u34 u35 u36 u37 u38 u39 u3A u3B u3C u3D",
    "0802 2B10 34A6 34A7 34A8 34A9 2B11 34AA 2B12 34AB 4A+03 3305 34AC u83 34AD 2B13",
    "34AE 3304 3A 3C 2B14 34AF 34B0 34B1 2B15 38 64+03 3307 3712 3716 371A 2B16",
    "4A+0F 4A+0E 4A+12 4A+19 4A+13 4A+1A 4A51 4D+1C 51+0F 51+0E 51+12 51+13 59+0F 59+0E 59+12 59+13",
    "4F+68 62+19 64+0F 64+0E 64+12 64+19 64+13 3309 64+21 6F+0F 6F+0E 6F+12 6F+13 76+0E 6D57 6B6B",
    "4A+0F 4A+0E 4A+12 4A+19 4A+13 4A+1A 4A51 4D+1C 51+0F 51+0E 51+12 51+13 59+0F 59+0E 59+12 59+13",
    "4F+68 62+19 64+0F 64+0E 64+12 64+19 64+13 330A 64+21 6F+0F 6F+0E 6F+12 6F+13 76+0E 6D57 76+13",
};

// Jet 4, characters above U+00FF: the Windows-1252 extras and the Windows-1251 letters and
// signs. Sorted by code point (looked up by binary search).
struct WideCode {
    char16_t ch;
    const char* code;
};
constexpr WideCode kJet4Wide[] = {
    {0x0152, "6451"},    {0x0153, "6451"},    {0x0160, "6B+14"},   {0x0161, "6B+14"},
    {0x0178, "76+13"},   {0x017D, "78+14"},   {0x017E, "78+14"},   {0x0192, "53+7B"},
    {0x02C6, "2B02+03"}, {0x02DC, "2B1C"},    {0x0401, "7936+13"}, {0x0402, "7935"},
    {0x0403, "7932+0E"}, {0x0404, "7937"},    {0x0405, "793A"},    {0x0406, "793C"},
    {0x0407, "793D"},    {0x0408, "793F"},    {0x0409, "7942"},    {0x040A, "7945"},
    {0x040B, "794B"},    {0x040C, "7940+0E"}, {0x040E, "794E"},    {0x040F, "7954"},
    {0x0410, "792F"},    {0x0411, "7930"},    {0x0412, "7931"},    {0x0413, "7932"},
    {0x0414, "7933"},    {0x0415, "7936"},    {0x0416, "7938"},    {0x0417, "7939"},
    {0x0418, "793B"},    {0x0419, "793E"},    {0x041A, "7940"},    {0x041B, "7941"},
    {0x041C, "7943"},    {0x041D, "7944"},    {0x041E, "7946"},    {0x041F, "7947"},
    {0x0420, "7948"},    {0x0421, "7949"},    {0x0422, "794A"},    {0x0423, "794D"},
    {0x0424, "7950"},    {0x0425, "7951"},    {0x0426, "7952"},    {0x0427, "7953"},
    {0x0428, "7955"},    {0x0429, "7956"},    {0x042A, "7957"},    {0x042B, "7958"},
    {0x042C, "7959"},    {0x042D, "795A"},    {0x042E, "795B"},    {0x042F, "795C"},
    {0x0430, "792F"},    {0x0431, "7930"},    {0x0432, "7931"},    {0x0433, "7932"},
    {0x0434, "7933"},    {0x0435, "7936"},    {0x0436, "7938"},    {0x0437, "7939"},
    {0x0438, "793B"},    {0x0439, "793E"},    {0x043A, "7940"},    {0x043B, "7941"},
    {0x043C, "7943"},    {0x043D, "7944"},    {0x043E, "7946"},    {0x043F, "7947"},
    {0x0440, "7948"},    {0x0441, "7949"},    {0x0442, "794A"},    {0x0443, "794D"},
    {0x0444, "7950"},    {0x0445, "7951"},    {0x0446, "7952"},    {0x0447, "7953"},
    {0x0448, "7955"},    {0x0449, "7956"},    {0x044A, "7957"},    {0x044B, "7958"},
    {0x044C, "7959"},    {0x044D, "795A"},    {0x044E, "795B"},    {0x044F, "795C"},
    {0x0451, "7936+13"}, {0x0452, "7935"},    {0x0453, "7932+0E"}, {0x0454, "7937"},
    {0x0455, "793A"},    {0x0456, "793C"},    {0x0457, "793D"},    {0x0458, "793F"},
    {0x0459, "7942"},    {0x045A, "7945"},    {0x045B, "794B"},    {0x045C, "7940+0E"},
    {0x045E, "794E"},    {0x045F, "7954"},    {0x0490, "7932+03"}, {0x0491, "7932+03"},
    {0x2013, "u89"},     {0x2014, "u8B"},     {0x2018, "2B37"},    {0x2019, "2B38"},
    {0x201A, "2B39"},    {0x201C, "2B3B"},    {0x201D, "2B3C"},    {0x201E, "2B3D"},
    {0x2020, "34B3"},    {0x2021, "34B4"},    {0x2022, "34B5"},    {0x2026, "34B9"},
    {0x2030, "34BA"},    {0x2039, "2B46"},    {0x203A, "2B47"},    {0x20AC, "35A1"},
    {0x2116, "6302"},    {0x2122, "6E04"},
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
    if (s[0] == 'u') {
        c.kind = TextSortCode::Kind::Unprintable;
        c.extra = hexByte(s.substr(1));
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

struct Jet4Wide {
    std::vector<char16_t> chars;
    std::vector<TextSortCode> codes;
};

const Jet4Wide& jet4Wide() {
    static const Jet4Wide wide = [] {
        Jet4Wide w;
        for (const WideCode& c : kJet4Wide) {
            if (!w.chars.empty() && w.chars.back() >= c.ch) throw std::logic_error("wide sort codes out of order");
            w.chars.push_back(c.ch);
            w.codes.push_back(parseCode(c.code));
        }
        return w;
    }();
    return wide;
}

const TextSortCode kUnknown{};

}  // namespace

const TextSortCode& jet3SortCode(uint8_t byte) {
    static const std::array<TextSortCode, 256> table = parseRows(kJet3Rows);
    return table[byte];
}

const TextSortCode& jet4SortCode(char16_t ch) {
    static const std::array<TextSortCode, 256> latin1 = parseRows(kJet4Latin1Rows);
    if (ch <= 0xFF) return latin1[ch];
    const Jet4Wide& wide = jet4Wide();
    auto it = std::lower_bound(wide.chars.begin(), wide.chars.end(), ch);
    if (it == wide.chars.end() || *it != ch) return kUnknown;
    return wide.codes[size_t(it - wide.chars.begin())];
}

}  // namespace jet
