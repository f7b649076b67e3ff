#pragma once
// Text index keys in the "General" collating order. The value bytes of a text column's
// key part (the flag byte in front of them is the caller's); both return false when a
// character has no known sort code, with the reason in `problem`. On failure `out` still
// gains the bytes that are certain to begin the true key part (the primary codes of the
// characters before the unknown one), which lets the integrity checker verify at least
// that much of an entry written by Jet.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

// Jet 4: the value as UTF-16 code units (compression already undone).
bool appendJet4TextKey(std::vector<uint8_t>& out, std::u16string_view text, bool ascending, std::string& problem);

// Jet 3: the value as stored, single bytes in `codePage`. Codes exist for code page 1252;
// in any other code page only ASCII bytes (identical in every Windows code page) are known.
bool appendJet3TextKey(std::vector<uint8_t>& out, std::span<const uint8_t> bytes, uint16_t codePage, bool ascending,
                       std::string& problem);

// Characters of a text value that take part in its key: the first 255, trailing spaces removed.
inline constexpr size_t kMaxKeyCharacters = 255;

}  // namespace jet
