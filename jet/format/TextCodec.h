#pragma once
// Text values and names as stored in rows and definitions: Jet 3 bytes in a code page,
// Jet 4 UCS-2 little-endian or its compressed form (0xFF 0xFE, then runs of one byte per
// character switched with 0x00 bytes).

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/CodePage.h"
#include "format/Format.h"

namespace jet {

// Jet 4 text (compressed or not) as UTF-16. Throws CorruptError for an odd UCS-2 length.
std::u16string decodeJet4Text(std::span<const uint8_t> bytes);

// Any stored text as UTF-8: Jet 3 through the code page, Jet 4 through decodeJet4Text.
std::string decodeText(Version version, const CodePage& codePage, std::span<const uint8_t> bytes);

// Jet 4 text as stored. With `compress` (columns that allow it), a value of 3 to 1024
// characters that all lie in U+0001..U+00FF takes the compressed form with one byte per
// character and no mode switch, as Access writes it; anything else is plain UCS-2.
std::vector<uint8_t> encodeJet4Text(std::u16string_view text, bool compress);

}  // namespace jet
