#pragma once
// Reading a cell text as a number. A cell counts as a number when its whole text is one:
// an optional sign, digits with at most one decimal point, and an optional exponent
// ("-12", "3.5", ".5", "1e-3", "2.E+4"). The text is taken as ToPoint leaves it: spaces
// around it are ignored and "," is the decimal point, so the user's locale format of a
// number reads as well as the host's. Anything else (words, dates, "1.000.5", blanks,
// tabs around the number) is not a number and statistics skip it.

#include <cstdint>
#include <string>
#include <string_view>

namespace host::numbers {

// ±digits × 10^exponent, with only the leading significant digits kept.
struct ScannedNumber {
    static constexpr int kKeptDigits = 19;

    uint64_t digits = 0;
    int64_t exponent = 0;     // power of ten of the last kept digit; saturates far beyond any use
    bool negative = false;
    bool moreDigits = false;  // non-zero digits follow those kept: `digits` is cut short

    bool isZero() const { return digits == 0; }
    // Power of ten of the leading digit (0 for zero).
    int64_t leadingExponent() const;
};

// The number of decimal digits of a value (1 for 0).
int decimalDigitCount(uint64_t value);

// False when the text is not one number as a whole.
bool scanNumber(std::u16string_view text, ScannedNumber& number);

// The double nearest to the value: ±infinity above the range of doubles, ±0 below it.
double toDouble(const ScannedNumber& number, std::u16string_view text);

// Every significant digit of a number (leading zeros dropped) as ASCII, for the rare
// number with more digits than ScannedNumber keeps; the last digit stands for
// 10^exponentOfLast. The text must be one that scanNumber accepted.
std::string allDigits(std::u16string_view text, int64_t& exponentOfLast);

}  // namespace host::numbers
