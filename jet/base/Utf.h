#pragma once
// Conversions between the engine's UTF-8 strings and the UTF-16 text of Jet 4 files.
// Unpaired surrogates cannot be written in UTF-8; they become U+FFFD.

#include <cstdint>
#include <string>
#include <string_view>

namespace jet {

void appendUtf8(std::string& out, char32_t c);
std::string utf16ToUtf8(std::u16string_view s);
// Invalid UTF-8 sequences become U+FFFD.
std::u16string utf8ToUtf16(std::string_view s);
// Decodes one code point at pos and advances pos; invalid bytes give U+FFFD.
char32_t nextCodePoint(std::string_view s, size_t& pos);

// Simple case folding for name comparisons (Latin, Greek and Cyrillic letters).
char32_t foldCase(char32_t c);
// Case-insensitive equality and ordering of UTF-8 names, as Jet compares object names.
bool equalsIgnoreCase(std::string_view a, std::string_view b);
int compareIgnoreCase(std::string_view a, std::string_view b);
// The order Jet lists object names in: case and accents are ignored first, and spaces and
// punctuation sort before digits, digits before letters ("Table1_x" before "Table10").
// Ties fall back to case-insensitive, then to exact comparison, so the order is total.
int collateNames(std::string_view a, std::string_view b);

}  // namespace jet
