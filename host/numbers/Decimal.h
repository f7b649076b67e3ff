#pragma once
// Exact decimal numbers for the extended number types: an arbitrary-precision integer
// mantissa times a power of ten. Sums, differences and products of decimal inputs stay
// exact; only the operations that cannot be exact (division, roots) round, in the
// arithmetic of each type.

#include <cstdint>

#include <boost/multiprecision/gmp.hpp>

#include "host/numbers/ResultText.h"

namespace host::numbers {

using Integer = boost::multiprecision::mpz_int;

// 10^k, kept for reuse.
const Integer& powerOfTen(uint64_t k);
void multiplyByPowerOfTen(Integer& value, uint64_t k);

// The decimal digits of a non-negative integer.
std::string digitsOf(const Integer& value);

// mantissa × 10^exponent
struct Decimal {
    Integer mantissa;
    int64_t exponent = 0;

    DigitText digitText() const;
};

// An exact running sum. Terms are aligned to the smallest exponent seen, so once the sum
// has grown to its size, adding a term allocates nothing.
class DecimalSum {
public:
    void add(uint64_t magnitude, bool negative, int64_t exponent);
    void add(const Integer& mantissa, int64_t exponent);
    const Decimal& value() const { return sum_; }

private:
    void alignTo(int64_t exponent);

    Decimal sum_;
    bool empty_ = true;
    Integer term_;
};

}  // namespace host::numbers
