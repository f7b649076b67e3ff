// Type 1: arbitrary-precision decimal arithmetic. Quotients and square roots are computed
// with whole numbers to one digit more than kDecimalDigits and rounded half to even, so
// they are correctly rounded. The geometric mean needs logarithms and runs in 80-digit
// decimal floating point; the harmonic mean sums reciprocals as 70-digit whole
// quotients; both then take the same rounding.

#include <boost/multiprecision/cpp_dec_float.hpp>

#include "host/numbers/ExtendedArithmetic.h"

namespace host::numbers {

namespace {

using Float = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<80>>;

int64_t decimalDigitsOf(const Integer& value)
{
    return int64_t(mpz_sizeinbase(value.backend().data(), 10));
}

Float mantissaOf(const ExactNumber& number)
{
    return number.big ? Float(digitsOf(*number.big)) : Float(number.magnitude);
}

Float powerOfTenFloat(int64_t exponent)
{
    return Float("1e" + std::to_string(exponent));
}

DigitText roundedFloat(const Float& value, int precision)
{
    // Boost writes "d.ddddde+xx", rounded to `precision` significant digits.
    const std::string text = value.str(precision - 1, std::ios_base::scientific);
    const bool negative = text[0] == '-';
    const std::size_t start = negative ? 1 : 0;
    const std::size_t e = text.find('e');
    std::string digits;
    for (std::size_t i = start; i < e; ++i) {
        if (text[i] != '.')
            digits += text[i];
    }
    DigitText result;
    result.negative = negative;
    result.digits = digits;
    result.leadingExponent = std::stoll(text.substr(e + 1));
    result.exact = false;
    result.normalise();
    return result;
}

class DecimalArithmetic final : public ExtendedArithmetic {
public:
    int digits() const override { return kDecimalDigits; }

    DigitText quotient(const Decimal& numerator, const Integer& denominator) const override
    {
        if (numerator.mantissa == 0)
            return {};
        Integer dividend = abs(numerator.mantissa);
        Integer divisor = denominator;
        // Scale so that the whole quotient has at least kDecimalDigits + 2 digits.
        const int64_t scale = kDecimalDigits + 2 + decimalDigitsOf(divisor) - decimalDigitsOf(dividend) + 1;
        if (scale >= 0)
            multiplyByPowerOfTen(dividend, uint64_t(scale));
        else
            multiplyByPowerOfTen(divisor, uint64_t(-scale));
        Integer quotient, remainder;
        mpz_tdiv_qr(quotient.backend().data(), remainder.backend().data(), dividend.backend().data(),
                    divisor.backend().data());
        return roundedDigits(digitsOf(quotient), numerator.exponent - scale, remainder != 0, numerator.mantissa < 0,
                             kDecimalDigits);
    }

    DigitText squareRootOfQuotient(const Decimal& numerator, const Integer& denominator) const override
    {
        if (numerator.mantissa == 0)
            return {};
        // floor(sqrt(x) × 10^t) = isqrt(floor(x × 10^2t)) for x >= 0; t is chosen so that
        // the root has at least kDecimalDigits + 2 digits.
        const int64_t magnitude = decimalDigitsOf(numerator.mantissa) + numerator.exponent - decimalDigitsOf(denominator);
        const int64_t t = kDecimalDigits + 3 - magnitude / 2;
        Integer dividend = numerator.mantissa;
        Integer divisor = denominator;
        const int64_t shift = numerator.exponent + 2 * t;
        if (shift >= 0)
            multiplyByPowerOfTen(dividend, uint64_t(shift));
        else
            multiplyByPowerOfTen(divisor, uint64_t(-shift));
        Integer scaled, remainder, root, rootRemainder;
        mpz_tdiv_qr(scaled.backend().data(), remainder.backend().data(), dividend.backend().data(),
                    divisor.backend().data());
        mpz_sqrtrem(root.backend().data(), rootRemainder.backend().data(), scaled.backend().data());
        return roundedDigits(digitsOf(root), -t, remainder != 0 || rootRemainder != 0, false, kDecimalDigits);
    }

    void addFactor(const ExactNumber& number) override
    {
        // The decimal exponents are summed apart and the running product is brought back
        // near 1 now and then, so a million factors cannot leave the range of the floats.
        product_ *= mantissaOf(number);
        exponentSum_ += number.exponent;
        if (++sinceRescale_ == 256) {
            sinceRescale_ = 0;
            const int64_t exponent = product_.backend().order();
            product_ *= powerOfTenFloat(-exponent);
            exponentSum_ += exponent;
        }
    }

    DigitText geometricMean(uint64_t count) override
    {
        const Float logarithm = (log(product_) + Float(exponentSum_) * log(Float(10))) / Float(count);
        return roundedFloat(Float(exp(logarithm)), kDecimalDigits);
    }

    void addReciprocal(const ExactNumber& number) override
    {
        // 1 / (m × 10^e) as the whole quotient 10^(G + 20) / m, at least G digits
        // long, times 10^-(G + 20 + e); summed exactly, so the sum is short by less than
        // one part in 10^G however many terms there are.
        const Integer& scale = powerOfTen(kReciprocalDigits + 20);
        if (number.big) {
            mpz_tdiv_q(reciprocal_.backend().data(), powerOfTen(kReciprocalDigits + decimalDigitsOf(*number.big)).backend().data(),
                       number.big->backend().data());
            reciprocals_.add(reciprocal_, -kReciprocalDigits - decimalDigitsOf(*number.big) - number.exponent);
            return;
        }
        mpz_tdiv_q_ui(reciprocal_.backend().data(), scale.backend().data(), number.magnitude);
        reciprocals_.add(reciprocal_, -kReciprocalDigits - 20 - number.exponent);
    }

    DigitText harmonicMean(uint64_t count) override
    {
        // count / (s × 10^x) = count × 10^-x / s
        const Decimal& sum = reciprocals_.value();
        Decimal numerator;
        numerator.mantissa = count;
        numerator.exponent = -sum.exponent;
        return quotient(numerator, sum.mantissa);
    }

private:
    Float product_ = 1;
    int64_t exponentSum_ = 0;
    int sinceRescale_ = 0;
    static constexpr int64_t kReciprocalDigits = 70;
    DecimalSum reciprocals_;
    Integer reciprocal_;
};

}  // namespace

DigitText roundedDigits(std::string digits, int64_t exponentOfLast, bool sticky, bool negative, int precision)
{
    DigitText result;
    result.negative = negative;
    const std::size_t first = digits.find_first_not_of('0');
    if (first == std::string::npos)
        return {};
    digits.erase(0, first);
    result.leadingExponent = exponentOfLast + int64_t(digits.size()) - 1;
    result.exact = !sticky;
    if (digits.size() > std::size_t(precision)) {
        const char firstCut = digits[std::size_t(precision)];
        const bool restNonZero = sticky || digits.find_first_not_of('0', std::size_t(precision) + 1) != std::string::npos;
        result.exact = firstCut == '0' && !restNonZero;
        digits.resize(std::size_t(precision));
        const bool lastOdd = (digits.back() - '0') % 2 == 1;
        const bool up = firstCut > '5' || (firstCut == '5' && (restNonZero || lastOdd));
        if (up) {
            std::size_t i = digits.size();
            while (i > 0 && digits[i - 1] == '9')
                digits[--i] = '0';
            if (i == 0) {
                digits.insert(digits.begin(), '1');
                digits.pop_back();
                ++result.leadingExponent;
            } else {
                ++digits[i - 1];
            }
        }
    }
    result.digits = std::move(digits);
    result.normalise();
    return result;
}

std::unique_ptr<ExtendedArithmetic> makeDecimalArithmetic()
{
    return std::make_unique<DecimalArithmetic>();
}

}  // namespace host::numbers
