#include "host/numbers/WholeNumbers.h"

#include <cmath>
#include <numeric>

namespace host::numbers {

namespace {

// A chunk is handed to the pairwise stage once it has this many 64-bit limbs.
constexpr std::size_t kChunkLimbs = 32;

std::size_t limbsOf(const Integer& value)
{
    return mpz_size(value.backend().data());
}

uint64_t bitsOf(uint64_t value)
{
    return value == 0 ? 0 : 64 - uint64_t(__builtin_clzll(value));
}

}  // namespace

// ---- WholeFold

void WholeFold::add(uint64_t value)
{
    if (zero_ || tooLarge_)
        return;
    if (value == 0) {
        zero_ = true;
        return;
    }
    unsigned __int128 combined = 0;
    if (operation_ == Operation::Product) {
        noteSize(inputBits_ += bitsOf(value));
        combined = (unsigned __int128)word_ * value;
    } else {
        if (word_ % value == 0)
            return;
        combined = (unsigned __int128)(word_ / std::gcd(word_, value)) * value;
    }
    if (combined <= UINT64_MAX) {
        word_ = uint64_t(combined);
        return;
    }
    flushWord();
    word_ = value;
}

void WholeFold::add(const Integer& value)
{
    if (zero_ || tooLarge_)
        return;
    if (value == 0) {
        zero_ = true;
        return;
    }
    const uint64_t bits = mpz_sizeinbase(value.backend().data(), 2);
    noteSize(operation_ == Operation::Product ? inputBits_ += bits : bits);
    if (!tooLarge_)
        chunks_.push_back(abs(value));
}

void WholeFold::noteSize(uint64_t bits)
{
    if (bits > kMaxResultBits)
        tooLarge_ = true;
}

void WholeFold::flushWord()
{
    auto* chunk = chunk_.backend().data();
    if (operation_ == Operation::Product)
        mpz_mul_ui(chunk, chunk, word_);
    else
        mpz_lcm_ui(chunk, chunk, word_);
    word_ = 1;
    if (limbsOf(chunk_) >= kChunkLimbs) {
        chunks_.push_back(std::move(chunk_));
        chunk_ = 1;
    }
}

Integer WholeFold::result()
{
    if (zero_ || tooLarge_)
        return Integer(0);
    flushWord();
    chunks_.push_back(std::move(chunk_));
    chunk_ = 1;
    while (chunks_.size() > 1) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i + 1 < chunks_.size(); i += 2) {
            auto* a = chunks_[i].backend().data();
            const auto* b = chunks_[i + 1].backend().data();
            if (operation_ == Operation::Product)
                mpz_mul(a, a, b);
            else
                mpz_lcm(a, a, b);
            noteSize(mpz_sizeinbase(a, 2));
            if (tooLarge_)
                return Integer(0);
            chunks_[kept++] = std::move(chunks_[i]);
        }
        if (chunks_.size() % 2 == 1)
            chunks_[kept++] = std::move(chunks_.back());
        chunks_.resize(kept);
    }
    return std::move(chunks_.front());
}

// ---- WholeGcd

void WholeGcd::add(uint64_t value)
{
    if (isBig_) {
        if (value == 0)
            return;
        // The divisor of a 64-bit number fits 64 bits again.
        mpz_gcd_ui(big_.backend().data(), big_.backend().data(), value);
        isBig_ = false;
        word_ = mpz_get_ui(big_.backend().data());
        return;
    }
    if (word_ != 1)  // once 1, it stays 1
        word_ = std::gcd(word_, value);
}

void WholeGcd::add(const Integer& value)
{
    if (!isBig_) {
        big_ = word_;
        isBig_ = true;
    }
    mpz_gcd(big_.backend().data(), big_.backend().data(), value.backend().data());
}

Integer WholeGcd::result() const
{
    return isBig_ ? big_ : Integer(word_);
}

// ---- WholeMultinomial

bool WholeMultinomial::addEstimate(double log2Sum, double j)
{
    // C(sum, j) <= (e sum / j)^j: a bound that needs no difference of huge logarithms.
    if (j > 0)
        estimatedBits_ += j * (log2Sum - std::log2(j) + std::log2(std::exp(1.0)));
    if (!(estimatedBits_ <= double(kMaxResultBits)))
        tooLarge_ = true;
    return !tooLarge_;
}

void WholeMultinomial::add(uint64_t k)
{
    if (tooLarge())
        return;
    if (k == 0)
        return;
    if (sumIsBig_) {
        mpz_set_ui(bigK_.backend().data(), k);
        return addBinomialOfBigSum(bigK_);
    }
    if (sum_ > UINT64_MAX - k) {
        bigSum_ = sum_;
        sumIsBig_ = true;
        mpz_set_ui(bigK_.backend().data(), k);
        return addBinomialOfBigSum(bigK_);
    }
    const uint64_t sum = sum_ + k;
    sum_ = sum;
    // C(sum, k) = C(sum, j) with the smaller j; built step by step in 128 bits while the
    // steps fit, each partial result being a binomial itself and so a whole number.
    const uint64_t j = std::min(k, sum - k);
    if (!addEstimate(std::log2(double(sum)), double(j)))
        return;
    unsigned __int128 binomial = 1;
    bool fits = true;
    for (uint64_t t = 1; t <= j; ++t) {
        const unsigned __int128 next = binomial * (sum - j + t);
        if (next / (sum - j + t) != binomial || next / t > UINT64_MAX) {
            fits = false;
            break;
        }
        binomial = next / t;
    }
    if (fits) {
        product_.add(uint64_t(binomial));
        return;
    }
    mpz_set_ui(bigK_.backend().data(), sum);
    addBinomial(bigK_, j);
}

void WholeMultinomial::add(const Integer& k)
{
    if (tooLarge() || k == 0)
        return;
    if (!sumIsBig_) {
        bigSum_ = sum_;
        sumIsBig_ = true;
    }
    addBinomialOfBigSum(k);
}

void WholeMultinomial::addBinomialOfBigSum(const Integer& k)
{
    bigSum_ += k;
    Integer j = bigSum_ - k;
    if (k < j)
        j = k;
    if (j == 0)
        return;
    if (!mpz_fits_ulong_p(j.backend().data())) {
        tooLarge_ = true;
        return;
    }
    // The bit length of the sum bounds its logarithm from above.
    if (!addEstimate(double(mpz_sizeinbase(bigSum_.backend().data(), 2)), j.convert_to<double>()))
        return;
    addBinomial(bigSum_, mpz_get_ui(j.backend().data()));
}

void WholeMultinomial::addBinomial(const Integer& n, uint64_t j)
{
    // GMP's own works from the prime factors and is the fastest while n is small; for a
    // larger n its cost grows with j squared, so the falling factorial n (n - 1) ... is
    // built as a balanced tree and divided by j!. That numerator is refused when it
    // would be far larger than any result allowed.
    if (mpz_cmp_ui(n.backend().data(), kPrimeFactorLimit) <= 0) {
        mpz_bin_uiui(binomial_.backend().data(), mpz_get_ui(n.backend().data()), j);
    } else {
        if (double(j) * double(mpz_sizeinbase(n.backend().data(), 2)) > 2.0 * double(kMaxResultBits)) {
            tooLarge_ = true;
            return;
        }
        fallingFactorial(binomial_, n, 0, j);
        Integer factorial;
        mpz_fac_ui(factorial.backend().data(), j);
        mpz_divexact(binomial_.backend().data(), binomial_.backend().data(), factorial.backend().data());
    }
    product_.add(binomial_);
}

void WholeMultinomial::fallingFactorial(Integer& out, const Integer& n, uint64_t from, uint64_t count)
{
    // (n - from) (n - from - 1) ... for count factors.
    if (count <= 16) {
        out = 1;
        Integer factor;
        for (uint64_t t = from; t < from + count; ++t) {
            mpz_sub_ui(factor.backend().data(), n.backend().data(), t);
            out *= factor;
        }
        return;
    }
    Integer right;
    fallingFactorial(out, n, from, count / 2);
    fallingFactorial(right, n, from + count / 2, count - count / 2);
    out *= right;
}

Integer WholeMultinomial::result()
{
    return product_.result();
}

// ---- WholeStatistic

void WholeStatistic::add(uint64_t value)
{
    if (statistic_ == Statistic::LeastCommonMultiple)
        lcm_.add(value);
    else if (statistic_ == Statistic::GreatestCommonDivisor)
        gcd_.add(value);
    else
        multinomial_.add(value);
}

void WholeStatistic::add(const Integer& value)
{
    if (statistic_ == Statistic::LeastCommonMultiple)
        lcm_.add(value);
    else if (statistic_ == Statistic::GreatestCommonDivisor)
        gcd_.add(value);
    else
        multinomial_.add(value);
}

bool WholeStatistic::tooLarge() const
{
    return statistic_ == Statistic::LeastCommonMultiple ? lcm_.tooLarge()
                                                        : statistic_ == Statistic::Multinomial && multinomial_.tooLarge();
}

Integer WholeStatistic::result()
{
    if (statistic_ == Statistic::LeastCommonMultiple)
        return lcm_.result();
    return statistic_ == Statistic::GreatestCommonDivisor ? gcd_.result() : multinomial_.result();
}

}  // namespace host::numbers
