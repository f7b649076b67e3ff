#pragma once
// Text values and names as stored in rows and definitions: Jet 3 bytes in a code page,
// Jet 4 UCS-2 little-endian or its compressed form (0xFF 0xFE, then runs of one byte per
// character switched with 0x00 bytes).

#include <cstdint>
#include <span>
#include <string>

#include "CodePage.h"
#include "Format.h"

namespace jet {

// Jet 4 text (compressed or not) as UTF-16. Throws CorruptError for an odd UCS-2 length.
std::u16string decodeJet4Text(std::span<const uint8_t> bytes);

// Any stored text as UTF-8: Jet 3 through the code page, Jet 4 through decodeJet4Text.
std::string decodeText(Version version, const CodePage& codePage, std::span<const uint8_t> bytes);

}  // namespace jet
