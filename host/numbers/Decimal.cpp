#include "host/numbers/Decimal.h"

#include <vector>

namespace host::numbers {

namespace {

// Powers up to this one are cached; the exponents the extended types take keep larger
// ones rare (they appear only when terms lie very far apart).
constexpr uint64_t kCachedPowers = 1024;

constexpr uint64_t kSmallPowers[] = {1ull,
                                     10ull,
                                     100ull,
                                     1000ull,
                                     10000ull,
                                     100000ull,
                                     1000000ull,
                                     10000000ull,
                                     100000000ull,
                                     1000000000ull,
                                     10000000000ull,
                                     100000000000ull,
                                     1000000000000ull,
                                     10000000000000ull,
                                     100000000000000ull,
                                     1000000000000000ull,
                                     10000000000000000ull,
                                     100000000000000000ull,
                                     1000000000000000000ull,
                                     10000000000000000000ull};

}  // namespace

const Integer& powerOfTen(uint64_t k)
{
    thread_local std::vector<Integer> cache;
    thread_local Integer uncached;
    if (k >= kCachedPowers) {
        mpz_ui_pow_ui(uncached.backend().data(), 10, k);
        return uncached;
    }
    while (cache.size() <= k) {
        Integer next = cache.empty() ? Integer(1) : cache.back() * 10;
        cache.push_back(std::move(next));
    }
    return cache[k];
}

void multiplyByPowerOfTen(Integer& value, uint64_t k)
{
    if (k < std::size(kSmallPowers))
        mpz_mul_ui(value.backend().data(), value.backend().data(), kSmallPowers[k]);
    else
        mpz_mul(value.backend().data(), value.backend().data(), powerOfTen(k).backend().data());
}

std::string digitsOf(const Integer& value)
{
    const auto* z = value.backend().data();
    std::string text(mpz_sizeinbase(z, 10) + 2, '\0');
    mpz_get_str(text.data(), 10, z);
    text.resize(std::char_traits<char>::length(text.data()));
    if (!text.empty() && text[0] == '-')
        text.erase(0, 1);
    return text;
}

DigitText Decimal::digitText() const
{
    DigitText text;
    text.negative = mantissa < 0;
    text.digits = digitsOf(mantissa);
    text.leadingExponent = exponent + int64_t(text.digits.size()) - 1;
    text.exact = true;
    text.normalise();
    return text;
}

void DecimalSum::alignTo(int64_t exponent)
{
    if (empty_) {
        sum_.mantissa = 0;
        sum_.exponent = exponent;
        empty_ = false;
    } else if (exponent < sum_.exponent) {
        multiplyByPowerOfTen(sum_.mantissa, uint64_t(sum_.exponent - exponent));
        sum_.exponent = exponent;
    }
}

void DecimalSum::add(uint64_t magnitude, bool negative, int64_t exponent)
{
    if (magnitude == 0)
        return alignTo(empty_ ? 0 : sum_.exponent);
    alignTo(exponent);
    auto* sum = sum_.mantissa.backend().data();
    if (exponent == sum_.exponent) {
        if (negative)
            mpz_sub_ui(sum, sum, magnitude);
        else
            mpz_add_ui(sum, sum, magnitude);
        return;
    }
    mpz_set_ui(term_.backend().data(), magnitude);
    multiplyByPowerOfTen(term_, uint64_t(exponent - sum_.exponent));
    if (negative)
        mpz_sub(sum, sum, term_.backend().data());
    else
        mpz_add(sum, sum, term_.backend().data());
}

void DecimalSum::add(const Integer& mantissa, int64_t exponent)
{
    if (mantissa == 0)
        return alignTo(empty_ ? 0 : sum_.exponent);
    alignTo(exponent);
    auto* sum = sum_.mantissa.backend().data();
    if (exponent == sum_.exponent) {
        mpz_add(sum, sum, mantissa.backend().data());
        return;
    }
    term_ = mantissa;
    multiplyByPowerOfTen(term_, uint64_t(exponent - sum_.exponent));
    mpz_add(sum, sum, term_.backend().data());
}

}  // namespace host::numbers
