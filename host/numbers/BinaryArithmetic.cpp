// Type 2: arbitrary-precision binary arithmetic through GMP and MPFR. Quotients stay exact
// rationals (GMP) and are written exactly whenever their decimal expansion ends; the rest
// is computed in MPFR with 336-bit significands and written with kBinaryDigits digits,
// the digits of a 256-bit one. Writing from the wider value rounds once, so the last
// digit is the nearest one and not off by the error of a second rounding.

#include <boost/multiprecision/gmp.hpp>
#include <boost/multiprecision/mpfr.hpp>

#include "host/numbers/ExtendedArithmetic.h"

namespace host::numbers {

namespace {

using boost::multiprecision::mpq_rational;
using Working = boost::multiprecision::number<boost::multiprecision::mpfr_float_backend<100>>;
static_assert(std::numeric_limits<Working>::digits >= 256 + 64);

DigitText digitTextOf(const Working& value)
{
    if (value == 0)
        return {};
    mpfr_exp_t exponent = 0;
    char* text = mpfr_get_str(nullptr, &exponent, 10, kBinaryDigits, value.backend().data(), MPFR_RNDN);
    DigitText result;
    result.negative = text[0] == '-';
    result.digits = text + (result.negative ? 1 : 0);
    mpfr_free_str(text);
    result.leadingExponent = int64_t(exponent) - 1;
    result.exact = false;
    result.normalise();
    return result;
}

// The rational numerator / denominator.
mpq_rational rationalOf(const Decimal& numerator, const Integer& denominator)
{
    Integer top = numerator.mantissa;
    Integer bottom = denominator;
    if (numerator.exponent >= 0)
        multiplyByPowerOfTen(top, uint64_t(numerator.exponent));
    else
        multiplyByPowerOfTen(bottom, uint64_t(-numerator.exponent));
    return mpq_rational(top, bottom);
}

class BinaryArithmetic final : public ExtendedArithmetic {
public:
    int digits() const override { return kBinaryDigits; }

    DigitText quotient(const Decimal& numerator, const Integer& denominator) const override
    {
        const mpq_rational value = rationalOf(numerator, denominator);
        // The expansion ends when the reduced denominator has no prime factors but 2 and 5;
        // then value × 10^k is whole for k the larger of their multiplicities.
        Integer rest = boost::multiprecision::denominator(value);
        const uint64_t twos = mpz_remove(rest.backend().data(), rest.backend().data(), Integer(2).backend().data());
        const uint64_t fives = mpz_remove(rest.backend().data(), rest.backend().data(), Integer(5).backend().data());
        if (rest == 1) {
            const uint64_t k = std::max(twos, fives);
            Decimal exact;
            exact.mantissa = boost::multiprecision::numerator(value);
            multiplyByPowerOfTen(exact.mantissa, k);
            mpz_divexact(exact.mantissa.backend().data(), exact.mantissa.backend().data(),
                         boost::multiprecision::denominator(value).backend().data());
            exact.exponent = -int64_t(k);
            return exact.digitText();
        }
        Working rounded;
        mpfr_set_q(rounded.backend().data(), value.backend().data(), MPFR_RNDN);
        return digitTextOf(rounded);
    }

    DigitText squareRootOfQuotient(const Decimal& numerator, const Integer& denominator) const override
    {
        Working value;
        mpfr_set_q(value.backend().data(), rationalOf(numerator, denominator).backend().data(), MPFR_RNDN);
        return digitTextOf(Working(sqrt(value)));
    }

    void addFactor(const ExactNumber& number) override
    {
        // Binary and decimal exponents are summed apart from the running product, which
        // therefore never leaves MPFR's exponent range.
        if (number.big)
            mpfr_mul_z(product_.backend().data(), product_.backend().data(), number.big->backend().data(), MPFR_RNDN);
        else
            mpfr_mul_ui(product_.backend().data(), product_.backend().data(), number.magnitude, MPFR_RNDN);
        decimalExponents_ += number.exponent;
        binaryExponents_ += mpfr_get_exp(product_.backend().data());
        mpfr_set_exp(product_.backend().data(), 0);
    }

    DigitText geometricMean(uint64_t count) override
    {
        const Working logarithm = (log(product_) + Working(binaryExponents_) * log(Working(2)) +
                                   Working(decimalExponents_) * log(Working(10))) /
                                  Working(count);
        return digitTextOf(Working(exp(logarithm)));
    }

    void addReciprocal(const ExactNumber& number) override
    {
        // 1 / (m × 10^e) = 10^-e / m; cell texts mostly share few exponents, so the last
        // power of ten is kept.
        Working reciprocal;
        if (number.big)
            mpfr_set_z(reciprocal.backend().data(), number.big->backend().data(), MPFR_RNDN);
        else
            mpfr_set_ui(reciprocal.backend().data(), number.magnitude, MPFR_RNDN);
        mpfr_ui_div(reciprocal.backend().data(), 1, reciprocal.backend().data(), MPFR_RNDN);
        if (number.exponent != 0) {
            if (number.exponent != powerExponent_) {
                powerExponent_ = number.exponent;
                power_ = pow(Working(10), Working(-number.exponent));
            }
            reciprocal *= power_;
        }
        reciprocals_ += reciprocal;
    }

    DigitText harmonicMean(uint64_t count) override { return digitTextOf(Working(Working(count) / reciprocals_)); }

private:
    Working product_ = 1;
    int64_t binaryExponents_ = 0;
    int64_t decimalExponents_ = 0;
    Working reciprocals_ = 0;
    int64_t powerExponent_ = 0;
    Working power_ = 1;
};

}  // namespace

std::unique_ptr<ExtendedArithmetic> makeBinaryArithmetic()
{
    return std::make_unique<BinaryArithmetic>();
}

}  // namespace host::numbers
