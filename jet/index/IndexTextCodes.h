#pragma once
// Sort codes of characters in the "General" collating order, the raw material of text
// index keys. Jet 3 codes are known for every byte of code page 1252; Jet 4 codes are
// known for U+0001-U+00FF, the Windows-1252 extras and the Windows-1251 (Cyrillic)
// characters. Everything else is reported as Unknown, never guessed: a key built from a
// guessed code would sort differently from what Jet itself computes, and Jet would then
// fail to find the row through the index.

#include <cstdint>

namespace jet {

struct TextSortCode {
    enum class Kind : uint8_t {
        Unknown,        // no code known: a key containing this character cannot be built
        Ignored,        // contributes nothing
        Simple,         // primary bytes only
        Significant,    // Jet 3: a letter that counts for accent positions
        International,  // primary bytes plus an accent (Jet 3 nibble, Jet 4 extra byte)
        Unprintable,    // Jet 4: no primary bytes, a record in the unprintable section
    };
    Kind kind = Kind::Unknown;
    uint8_t primaryLength = 0;
    uint8_t primary[2] = {0, 0};
    uint8_t extra = 0;  // accent nibble / extra byte, or the unprintable record's code
};

// Code of one byte of Jet 3 text stored in code page 1252.
const TextSortCode& jet3SortCode(uint8_t byte);

// Code of one UTF-16 code unit of Jet 4 text (surrogates are Unknown).
const TextSortCode& jet4SortCode(char16_t ch);

}  // namespace jet
