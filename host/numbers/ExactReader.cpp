#include "host/numbers/ExactReader.h"

namespace host::numbers {

namespace {

// Power of ten of the leading digit of a non-zero number; with an arbitrary-precision
// mantissa it may be one too large.
int64_t leadingExponent(const ExactNumber& number)
{
    if (number.big)
        return number.exponent + int64_t(mpz_sizeinbase(number.big->backend().data(), 10)) - 1;
    return number.exponent + decimalDigitCount(number.magnitude) - 1;
}

}  // namespace

void ExactNumber::mantissaInto(Integer& out) const
{
    if (big)
        out = *big;
    else
        mpz_set_ui(out.backend().data(), magnitude);
    if (negative)
        mpz_neg(out.backend().data(), out.backend().data());
}

int compare(const ExactNumber& a, const ExactNumber& b)
{
    const int signA = a.isZero() ? 0 : (a.negative ? -1 : 1);
    const int signB = b.isZero() ? 0 : (b.negative ? -1 : 1);
    if (signA != signB || signA == 0)
        return signA < signB ? -1 : (signA > signB ? 1 : 0);
    int magnitudeOrder = 0;
    if (!a.big && !b.big) {
        // Align on the smaller exponent; in 128 bits as long as the shift allows.
        const int64_t shift = a.exponent - b.exponent;
        const uint64_t& wider = shift >= 0 ? a.magnitude : b.magnitude;
        const uint64_t& other = shift >= 0 ? b.magnitude : a.magnitude;
        const int64_t distance = shift >= 0 ? shift : -shift;
        if (distance <= 19) {
            unsigned __int128 scaled = wider;
            for (int64_t k = 0; k < distance; ++k)
                scaled *= 10;
            const int order = scaled < other ? -1 : (scaled > other ? 1 : 0);
            magnitudeOrder = shift >= 0 ? order : -order;
            return signA * magnitudeOrder;
        }
    }
    // Leading exponents of arbitrary-precision mantissas may be one too large, so only a
    // difference of two or more decides without aligning the mantissas.
    const int64_t leadA = leadingExponent(a);
    const int64_t leadB = leadingExponent(b);
    if (leadA - leadB >= 2 || leadB - leadA >= 2) {
        magnitudeOrder = leadA < leadB ? -1 : 1;
    } else {
        Integer x, y;
        a.mantissaInto(x);
        b.mantissaInto(y);
        mpz_abs(x.backend().data(), x.backend().data());
        mpz_abs(y.backend().data(), y.backend().data());
        if (a.exponent > b.exponent)
            multiplyByPowerOfTen(x, uint64_t(a.exponent - b.exponent));
        else
            multiplyByPowerOfTen(y, uint64_t(b.exponent - a.exponent));
        const int order = mpz_cmp(x.backend().data(), y.backend().data());
        magnitudeOrder = order < 0 ? -1 : (order > 0 ? 1 : 0);
    }
    return signA * magnitudeOrder;
}

bool wholePart(const ExactNumber& number, uint64_t& small, Integer& big)
{
    if (!number.big) {
        if (number.exponent <= 0) {
            small = number.exponent < -19 ? 0 : number.magnitude;
            for (int64_t k = number.exponent; k < 0 && small != 0; ++k)
                small /= 10;
            return true;
        }
        unsigned __int128 value = number.magnitude;
        int64_t k = 0;
        for (; k < number.exponent && value <= UINT64_MAX; ++k)
            value *= 10;
        if (k == number.exponent && value <= UINT64_MAX) {
            small = uint64_t(value);
            return true;
        }
        mpz_set_ui(big.backend().data(), number.magnitude);
        multiplyByPowerOfTen(big, uint64_t(number.exponent));
        return false;
    }
    big = *number.big;
    if (number.exponent >= 0)
        multiplyByPowerOfTen(big, uint64_t(number.exponent));
    else
        mpz_tdiv_q(big.backend().data(), big.backend().data(), powerOfTen(uint64_t(-number.exponent)).backend().data());
    if (mpz_fits_ulong_p(big.backend().data())) {
        small = mpz_get_ui(big.backend().data());
        return true;
    }
    return false;
}

bool ExactReader::take(const ScannedNumber& scanned, std::u16string_view text, ExactNumber& number)
{
    number.negative = scanned.negative;
    if (!scanned.moreDigits) {
        number.magnitude = scanned.digits;
        number.big = nullptr;
        number.exponent = scanned.exponent;
        if (scanned.digits == 0)
            return true;
    } else {
        int64_t exponentOfLast = 0;
        const std::string digits = allDigits(text, exponentOfLast);
        mpz_set_str(big_.backend().data(), digits.c_str(), 10);
        number.big = &big_;
        number.magnitude = 0;
        number.exponent = exponentOfLast;
    }
    const int64_t lead = leadingExponent(number);
    return lead <= kMaxExponent && lead >= -kMaxExponent;
}

}  // namespace host::numbers
