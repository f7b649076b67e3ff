#pragma once
// Sort codes of characters in the "General" collating order, the raw material of text
// index keys.
//  - Jet 3: known for every byte of code page 1252; anything else is Unknown, never
//    guessed (a key built from a guessed code would sort differently from what Jet
//    computes, and Jet would then miss the row through the index).
//  - Jet 4: known for every UTF-16 code unit, compiled in from data/jet4-text-keys at
//    build time. Surrogates have a code of their kind, which the key writer refuses to use.

#include <cstdint>

namespace jet {

struct TextSortCode {
    enum class Kind : uint8_t {
        Unknown,        // no code known: a key containing this byte cannot be built
        Ignored,        // contributes nothing
        Simple,         // primary bytes only
        Significant,    // a letter that counts for accent positions
        International,  // primary bytes plus an accent nibble
    };
    Kind kind = Kind::Unknown;
    uint8_t primaryLength = 0;
    uint8_t primary[2] = {0, 0};
    uint8_t extra = 0;  // accent nibble
};

// Code of one byte of Jet 3 text stored in code page 1252.
const TextSortCode& jet3SortCode(uint8_t byte);

struct Jet4SortCode {
    enum class Kind : uint8_t { Ignored, Simple, International, Unprintable, Modifier, Kana, Surrogate };
    Kind kind = Kind::Ignored;
    uint8_t primaryLength = 0;  // 0-4
    uint8_t extraLength = 0;    // 0-2: accent bytes (international, kana, surrogate); 1 for a modifier
    uint8_t primary[4] = {};
    uint8_t extra[2] = {};      // a modifier's one byte is the amount it adds to the accent before it
    uint8_t unprintable = 0;    // unprintable: the code byte of its record
    uint8_t kana = 0;           // kana: 2 (small) or 3

    // The table stores each code as one 64-bit word: kind in bits 0-2, the two lengths in
    // 3-5 and 6-7, primary bytes in 8-39, accent bytes in 40-55, the unprintable or kana
    // value in 56-63.
    constexpr uint64_t packed() const {
        uint64_t w = uint64_t(kind) | uint64_t(primaryLength) << 3 | uint64_t(extraLength) << 6;
        for (int i = 0; i < 4; ++i) w |= uint64_t(primary[i]) << (8 + 8 * i);
        w |= uint64_t(extra[0]) << 40 | uint64_t(extra[1]) << 48;
        return w | uint64_t(kind == Kind::Kana ? kana : unprintable) << 56;
    }
    static constexpr Jet4SortCode unpacked(uint64_t w) {
        Jet4SortCode c;
        c.kind = Kind(w & 7);
        c.primaryLength = uint8_t(w >> 3 & 7);
        c.extraLength = uint8_t(w >> 6 & 3);
        for (int i = 0; i < 4; ++i) c.primary[i] = uint8_t(w >> (8 + 8 * i));
        c.extra[0] = uint8_t(w >> 40);
        c.extra[1] = uint8_t(w >> 48);
        (c.kind == Kind::Kana ? c.kana : c.unprintable) = uint8_t(w >> 56);
        return c;
    }
};

// Code of one UTF-16 code unit of Jet 4 text.
Jet4SortCode jet4SortCode(char16_t ch);

}  // namespace jet
