#pragma once
// How results are written. An ordinary result is written as the run time writes a Double:
// at most 15 significant digits, "." as the decimal point, exponent form from 1E+15 up
// and below 1E-04 ("1.5E-07"). An extended result carries every significant digit it has,
// without trailing zeros after the point, in the same two forms; an exact whole number
// stays in plain digits as long as it ends in at most `digits` zeros, so 30! reads in
// full, while a rounded one never shows zeros its precision does not vouch for.

#include <cstdint>
#include <string>

namespace host::numbers {

// A decimal value as its digits: 0.d1d2d3... read as d1.d2d3... × 10^leadingExponent.
struct DigitText {
    bool negative = false;
    std::string digits;  // no leading or trailing zeros; empty for zero
    int64_t leadingExponent = 0;
    bool exact = true;  // false: the digits are rounded to the arithmetic's precision

    // Drops trailing zeros and turns all-zero digits into zero.
    void normalise();
};

std::string ordinaryText(double value);
// `digits`: the significant digits of the arithmetic that made the value.
std::string extendedText(const DigitText& value, int digits);

}  // namespace host::numbers
