#pragma once
// Exact products, least common multiples, greatest common divisors and multinomials of
// whole numbers. Small factors are combined in a 64-bit word and the words in chunks of a
// few hundred bytes; the chunks are combined pairwise at the end, so a list of a million
// numbers costs about as much as its final multiplication and allocates per chunk, not
// per number. Each result is refused once it would exceed kMaxResultBits.

#include <cstdint>
#include <vector>

#include "host/numbers/Decimal.h"
#include "host/numbers/Statistic.h"

namespace host::numbers {

// About twenty million decimal digits.
inline constexpr uint64_t kMaxResultBits = uint64_t(1) << 26;

// Products and least common multiples fold alike: into a word, the words into a chunk,
// the chunks pairwise.
class WholeFold {
public:
    enum class Operation { Product, LeastCommonMultiple };
    explicit WholeFold(Operation operation) : operation_(operation) {}

    void add(uint64_t value);
    void add(const Integer& value);
    bool tooLarge() const { return tooLarge_; }
    // 1 for no values, 0 when one of them is 0.
    Integer result();

private:
    void flushWord();
    void noteSize(uint64_t bits);

    Operation operation_;
    uint64_t word_ = 1;
    Integer chunk_ = 1;
    std::vector<Integer> chunks_;
    uint64_t inputBits_ = 0;
    bool zero_ = false;
    bool tooLarge_ = false;
};

class WholeGcd {
public:
    void add(uint64_t value);
    void add(const Integer& value);
    // The greatest common divisor; 0 for no values or only zeros.
    Integer result() const;

private:
    uint64_t word_ = 0;
    Integer big_;
    bool isBig_ = false;
};

// MULTINOMIAL(k1, k2, ...) = (k1 + k2 + ...)! / (k1! k2! ...), built as the product of the
// binomials C(k1 + ... + ki, ki).
class WholeMultinomial {
public:
    void add(uint64_t k);
    void add(const Integer& k);
    bool tooLarge() const { return tooLarge_ || product_.tooLarge(); }
    Integer result();

private:
    void addBinomialOfBigSum(const Integer& k);
    // Multiplies in C(n, j), 0 < j <= n - j.
    void addBinomial(const Integer& n, uint64_t j);
    static void fallingFactorial(Integer& out, const Integer& n, uint64_t from, uint64_t count);

    static constexpr unsigned long kPrimeFactorLimit = 1ul << 23;
    bool addEstimate(double log2Sum, double j);

    uint64_t sum_ = 0;
    Integer bigSum_;
    bool sumIsBig_ = false;
    double estimatedBits_ = 0;
    bool tooLarge_ = false;
    WholeFold product_{WholeFold::Operation::Product};
    Integer binomial_;
    Integer bigK_;
};

// LCM, GCD or MULTINOMIAL, as the statistic says.
class WholeStatistic {
public:
    explicit WholeStatistic(Statistic statistic) : statistic_(statistic) {}
    void add(uint64_t value);
    void add(const Integer& value);
    bool tooLarge() const;
    Integer result();

private:
    Statistic statistic_;
    WholeFold lcm_{WholeFold::Operation::LeastCommonMultiple};
    WholeGcd gcd_;
    WholeMultinomial multinomial_;
};

}  // namespace host::numbers
