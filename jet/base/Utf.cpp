#include "base/Utf.h"

namespace jet {

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        if (c >= 0xD800 && c < 0xE000) c = 0xFFFD;
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x110000) {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        appendUtf8(out, 0xFFFD);
    }
}

std::string utf16ToUtf8(std::u16string_view s) {
    std::string out;
    out.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        char32_t c = s[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (s[i + 1] - 0xDC00);
            ++i;
        }
        appendUtf8(out, c);
    }
    return out;
}

char32_t nextCodePoint(std::string_view s, size_t& pos) {
    auto byte = [&](size_t i) { return uint8_t(s[i]); };
    uint8_t b = byte(pos);
    int extra;
    char32_t c;
    if (b < 0x80) { ++pos; return b; }
    if ((b & 0xE0) == 0xC0) { extra = 1; c = b & 0x1F; }
    else if ((b & 0xF0) == 0xE0) { extra = 2; c = b & 0x0F; }
    else if ((b & 0xF8) == 0xF0) { extra = 3; c = b & 0x07; }
    else { ++pos; return 0xFFFD; }
    if (pos + size_t(extra) >= s.size()) { ++pos; return 0xFFFD; }
    for (int k = 1; k <= extra; ++k) {
        uint8_t t = byte(pos + size_t(k));
        if ((t & 0xC0) != 0x80) { ++pos; return 0xFFFD; }
        c = (c << 6) | (t & 0x3F);
    }
    static const char32_t minimum[4] = {0, 0x80, 0x800, 0x10000};
    pos += size_t(extra) + 1;
    if (c < minimum[extra] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return 0xFFFD;
    return c;
}

std::u16string utf8ToUtf16(std::string_view s) {
    std::u16string out;
    out.reserve(s.size());
    size_t pos = 0;
    while (pos < s.size()) {
        char32_t c = nextCodePoint(s, pos);
        if (c >= 0x10000) {
            c -= 0x10000;
            out += char16_t(0xD800 + (c >> 10));
            out += char16_t(0xDC00 + (c & 0x3FF));
        } else {
            out += char16_t(c);
        }
    }
    return out;
}

char32_t foldCase(char32_t c) {
    if (c >= 'A' && c <= 'Z') return c + 32;
    if (c < 0xC0) return c;
    if (c <= 0xDE && c != 0xD7) return c + 32;                   // Latin-1 capitals
    if ((c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177)) return c | 1;  // Latin Extended-A pairs
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return (c & 1) ? c + 1 : c;
    if (c == 0x178) return 0xFF;
    if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return c + 32;     // Greek capitals
    if (c >= 0x410 && c <= 0x42F) return c + 32;                   // Cyrillic А..Я
    if (c >= 0x400 && c <= 0x40F) return c + 80;                   // Ѐ..Џ
    return c;
}

namespace {

char32_t latin1Base(char32_t c) {
    static const char base[] = "aaaaaaaceeeeiiiidnooooo/ouuuuyty";  // U+00E0..U+00FF
    if (c >= 0xE0 && c <= 0xFF && c != 0xF7) return char32_t(base[c - 0xE0]);
    return c;
}

uint32_t primaryWeight(char32_t c) {
    c = latin1Base(foldCase(c));
    if (c >= '0' && c <= '9') return 0x110000 + c;
    if (c >= 'a' && c <= 'z') return 0x120000 + c;
    if (c >= 0x80) return 0x130000 + c;  // other scripts after Latin, each in code point order
    return c;                            // spaces, punctuation and controls first
}

// Compares two UTF-8 strings code point by code point through a weight function.
template <typename Weight>
int compareBy(std::string_view a, std::string_view b, Weight weight) {
    size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        uint32_t x = weight(nextCodePoint(a, i));
        uint32_t y = weight(nextCodePoint(b, j));
        if (x != y) return x < y ? -1 : 1;
    }
    if (i < a.size()) return 1;
    if (j < b.size()) return -1;
    return 0;
}

}  // namespace

int compareIgnoreCase(std::string_view a, std::string_view b) {
    return compareBy(a, b, [](char32_t c) { return uint32_t(foldCase(c)); });
}

int collateNames(std::string_view a, std::string_view b) {
    if (int c = compareBy(a, b, primaryWeight)) return c;
    if (int c = compareIgnoreCase(a, b)) return c;
    return a.compare(b) < 0 ? -1 : a.compare(b) > 0 ? 1 : 0;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) { return compareIgnoreCase(a, b) == 0; }

}  // namespace jet
