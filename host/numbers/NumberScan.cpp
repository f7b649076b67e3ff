#include "host/numbers/NumberScan.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace host::numbers {

namespace {

// Exponents are kept far inside int64 so that adding digit counts never overflows; any
// number this far out is refused long before its exponent is used.
constexpr int64_t kExponentCap = int64_t(1) << 40;

bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

std::u16string_view trimmedOfSpaces(std::u16string_view text)
{
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    return text.substr(begin, end - begin);
}

bool isPoint(char16_t c) { return c == u'.' || c == u','; }

// Reads the exponent part "e[sign]digits" at `i`; false when it is malformed.
bool readExponent(std::u16string_view text, std::size_t& i, int64_t& exponent)
{
    ++i;  // the e
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        negative = text[i++] == u'-';
    if (i == text.size() || !isDigit(text[i]))
        return false;
    int64_t value = 0;
    for (; i < text.size() && isDigit(text[i]); ++i)
        value = std::min(value * 10 + (text[i] - u'0'), kExponentCap);
    exponent = negative ? -value : value;
    return true;
}

}  // namespace

int decimalDigitCount(uint64_t value)
{
    int count = 1;
    while (value >= 10) {
        value /= 10;
        ++count;
    }
    return count;
}

int64_t ScannedNumber::leadingExponent() const
{
    return digits == 0 ? 0 : exponent + decimalDigitCount(digits) - 1;
}

bool scanNumber(std::u16string_view text, ScannedNumber& number)
{
    text = trimmedOfSpaces(text);
    std::size_t i = 0;
    const std::size_t end = text.size();
    number = ScannedNumber();
    if (i < end && (text[i] == u'+' || text[i] == u'-'))
        number.negative = text[i++] == u'-';

    uint64_t digits = 0;
    int kept = 0;
    int64_t exponent = 0;
    bool anyDigit = false;
    bool more = false;
    for (; i < end && isDigit(text[i]); ++i) {
        anyDigit = true;
        const int d = text[i] - u'0';
        if (kept == 0 && d == 0)
            continue;
        if (kept < ScannedNumber::kKeptDigits) {
            digits = digits * 10 + d;
            ++kept;
        } else {
            ++exponent;
            more |= d != 0;
        }
    }
    if (i < end && isPoint(text[i])) {
        for (++i; i < end && isDigit(text[i]); ++i) {
            anyDigit = true;
            const int d = text[i] - u'0';
            if (kept == 0 && d == 0) {
                --exponent;
            } else if (kept < ScannedNumber::kKeptDigits) {
                digits = digits * 10 + d;
                ++kept;
                --exponent;
            } else {
                more |= d != 0;
            }
        }
    }
    if (!anyDigit)
        return false;
    if (i < end && (text[i] == u'e' || text[i] == u'E')) {
        int64_t written = 0;
        if (!readExponent(text, i, written))
            return false;
        exponent += written;
    }
    if (i != end)
        return false;
    number.digits = digits;
    number.exponent = digits == 0 ? 0 : exponent;
    number.moreDigits = more;
    return true;
}

double toDouble(const ScannedNumber& number, std::u16string_view text)
{
    // Below 2^53 and within 10^22 both the digits and the power of ten are exact doubles,
    // so one multiplication or division rounds the value correctly.
    static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                         1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (!number.moreDigits && number.digits <= (uint64_t(1) << 53) && number.exponent >= -22 &&
        number.exponent <= 22) {
        double value = double(number.digits);
        value = number.exponent >= 0 ? value * kPowers[number.exponent] : value / kPowers[-number.exponent];
        return number.negative ? -value : value;
    }
    text = trimmedOfSpaces(text);
    // from_chars reads "-" itself but takes no "+", which is dropped here together with
    // the one an exponent may carry. Cell texts are short: the buffer on the stack serves
    // all but freak ones.
    char stackBuffer[64];
    std::string longBuffer;
    char* ascii = stackBuffer;
    if (text.size() > sizeof stackBuffer) {
        longBuffer.resize(text.size());
        ascii = longBuffer.data();
    }
    std::size_t length = 0;
    for (char16_t c : text) {
        if (c != u'+')
            ascii[length++] = c == u',' ? '.' : char(c);
    }
    double value = 0;
    const std::errc error = std::from_chars(ascii, ascii + length, value).ec;
    if (error == std::errc::result_out_of_range) {
        value = number.leadingExponent() > 0 ? std::numeric_limits<double>::infinity() : 0.0;
        return number.negative ? -value : value;
    }
    return value;
}

std::string allDigits(std::u16string_view text, int64_t& exponentOfLast)
{
    text = trimmedOfSpaces(text);
    std::string digits;
    int64_t exponent = 0;
    std::size_t i = 0;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        ++i;
    bool inFraction = false;
    for (; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (isPoint(c)) {
            inFraction = true;
            continue;
        }
        if (!isDigit(c))
            break;
        if (inFraction)
            --exponent;
        if (digits.empty() && c == u'0')
            continue;
        digits += char(c);
    }
    if (i < text.size()) {
        int64_t written = 0;
        readExponent(text, i, written);
        exponent += written;
    }
    exponentOfLast = exponent;
    return digits;
}

}  // namespace host::numbers
