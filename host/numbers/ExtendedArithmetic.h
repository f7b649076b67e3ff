#pragma once
// The part of an extended number type that rounds: sums and products are exact in both
// (Decimal), but quotients, roots and the geometric and harmonic means are not, and each
// type rounds them its own way. Type 1 rounds to kDecimalDigits significant decimal
// digits; type 2 keeps exact rationals where their decimal expansion ends and otherwise
// computes with binary significands of more than 256 bits, written with the 77 digits a
// 256-bit one carries.

#include <cstdint>
#include <memory>

#include "host/numbers/Decimal.h"
#include "host/numbers/ExactReader.h"
#include "host/numbers/ResultText.h"

namespace host::numbers {

class ExtendedArithmetic {
public:
    virtual ~ExtendedArithmetic() = default;

    // Significant digits of a rounded result.
    virtual int digits() const = 0;
    // numerator / denominator, denominator > 0.
    virtual DigitText quotient(const Decimal& numerator, const Integer& denominator) const = 0;
    // The square root of numerator / denominator, both >= 0, denominator > 0.
    virtual DigitText squareRootOfQuotient(const Decimal& numerator, const Integer& denominator) const = 0;

    // The geometric and harmonic means of positive numbers handed over one at a time.
    virtual void addFactor(const ExactNumber& number) = 0;
    virtual DigitText geometricMean(uint64_t count) = 0;
    virtual void addReciprocal(const ExactNumber& number) = 0;
    virtual DigitText harmonicMean(uint64_t count) = 0;
};

inline constexpr int kDecimalDigits = 50;
// floor(256 log10 2): the decimal digits a 256-bit significand carries.
inline constexpr int kBinaryDigits = 77;

std::unique_ptr<ExtendedArithmetic> makeDecimalArithmetic();
std::unique_ptr<ExtendedArithmetic> makeBinaryArithmetic();

// Rounds digits (the last standing for 10^exponentOfLast; `sticky`: non-zero digits were
// cut off after them) half to even to at most `precision` significant digits.
DigitText roundedDigits(std::string digits, int64_t exponentOfLast, bool sticky, bool negative, int precision);

}  // namespace host::numbers
