#include "rt/VbConvert.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "rt/AnsiCodePage.h"
#include "rt/VbError.h"

namespace rt {

namespace {

bool isIgnoredBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n';
}

// The characters of the text with the ignored blanks taken out, as far as they can still
// belong to a number (anything else ends the scan anyway, so the copy stays short).
class Scanner {
public:
    explicit Scanner(const QString& text) : text_(text) {}
    QChar peek()
    {
        while (pos_ < text_.size() && isIgnoredBlank(text_[pos_]))
            ++pos_;
        return pos_ < text_.size() ? text_[pos_] : QChar();
    }
    void next() { ++pos_; }

private:
    const QString& text_;
    qsizetype pos_ = 0;
};

double radixValue(Scanner& in, int radix)
{
    uint64_t value = 0;
    for (;;) {
        const QChar c = in.peek();
        int digit = -1;
        if (c >= u'0' && c <= u'9')
            digit = c.unicode() - u'0';
        else if (radix == 16 && c.toUpper() >= u'A' && c.toUpper() <= u'F')
            digit = c.toUpper().unicode() - u'A' + 10;
        if (digit < 0 || digit >= radix)
            break;
        value = value * radix + digit;
        if (value > 0xFFFFFFFFull)
            throw vbError(vberr::Overflow);
        in.next();
    }
    // As VB: a value that fits 16 bits is an Integer, else a Long, both two's complement.
    if (value <= 0xFFFF)
        return static_cast<int16_t>(static_cast<uint16_t>(value));
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

double roundHalfEven(double value)
{
    const double lower = std::floor(value);
    const double diff = value - lower;
    if (diff > 0.5)
        return lower + 1;
    if (diff < 0.5)
        return lower;
    return std::fmod(lower, 2.0) == 0 ? lower : lower + 1;
}

template <typename T>
T roundChecked(double value)
{
    if (std::isnan(value))
        throw vbError(vberr::Overflow);
    const double rounded = roundHalfEven(value);
    if (rounded < static_cast<double>(std::numeric_limits<T>::min())
        || rounded > static_cast<double>(std::numeric_limits<T>::max()))
        throw vbError(vberr::Overflow);
    return static_cast<T>(rounded);
}

}  // namespace

double Val(const QString& text)
{
    Scanner in(text);
    if (in.peek() == u'&') {
        in.next();
        const QChar kind = in.peek().toUpper();
        if (kind == u'H') {
            in.next();
            return radixValue(in, 16);
        }
        if (kind == u'O')
            in.next();
        return radixValue(in, 8);
    }

    std::string number;
    if (in.peek() == u'-' || in.peek() == u'+') {
        if (in.peek() == u'-')
            number += '-';
        in.next();
    }
    bool digits = false;
    auto takeDigits = [&] {
        while (in.peek() >= u'0' && in.peek() <= u'9') {
            number += static_cast<char>(in.peek().unicode());
            digits = true;
            in.next();
        }
    };
    takeDigits();
    if (in.peek() == u'.') {
        number += '.';
        in.next();
        takeDigits();
    }
    if (!digits)
        return 0;
    const QChar e = in.peek().toUpper();
    if (e == u'E' || e == u'D') {
        in.next();
        std::string exponent = "e";
        if (in.peek() == u'-' || in.peek() == u'+') {
            exponent += static_cast<char>(in.peek().unicode());
            in.next();
        }
        const size_t before = exponent.size();
        while (in.peek() >= u'0' && in.peek() <= u'9') {
            exponent += static_cast<char>(in.peek().unicode());
            in.next();
        }
        if (exponent.size() > before)
            number += exponent;
    }
    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        // Too small to hold is simply zero; too large is the run-time's overflow.
        const bool tiny = number.find("e-") != std::string::npos;
        if (tiny)
            return 0;
        throw vbError(vberr::Overflow);
    }
    if (std::isinf(value))
        throw vbError(vberr::Overflow);
    return value;
}

bool IsNumeric(const QString& text)
{
    const QString t = text.trimmed();
    qsizetype i = 0;
    const qsizetype n = t.size();
    auto digitsWhile = [&](auto isDigit) {
        const qsizetype start = i;
        while (i < n && isDigit(t[i]))
            ++i;
        return i - start;
    };
    const auto decimal = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (n >= 2 && t[0] == u'&') {
        const QChar kind = t[1].toUpper();
        i = 2;
        if (kind == u'H')
            return digitsWhile([](QChar c) { return (c >= u'0' && c <= u'9') || (c.toUpper() >= u'A' && c.toUpper() <= u'F'); }) > 0 && i == n;
        if (kind == u'O')
            return digitsWhile([](QChar c) { return c >= u'0' && c <= u'7'; }) > 0 && i == n;
        return false;
    }
    if (i < n && (t[i] == u'+' || t[i] == u'-'))
        ++i;
    qsizetype mantissa = digitsWhile(decimal);
    if (i < n && t[i] == u'.') {
        ++i;
        mantissa += digitsWhile(decimal);
    }
    if (mantissa == 0)
        return false;
    if (i < n && (t[i].toUpper() == u'E' || t[i].toUpper() == u'D')) {
        ++i;
        if (i < n && (t[i] == u'+' || t[i] == u'-'))
            ++i;
        if (digitsWhile(decimal) == 0)
            return false;
    }
    return i == n;
}

int32_t CLng(double value)
{
    return roundChecked<int32_t>(value);
}

int16_t CInt(double value)
{
    return roundChecked<int16_t>(value);
}

float CSng(double value)
{
    if (std::isnan(value) || std::fabs(value) > std::numeric_limits<float>::max())
        throw vbError(vberr::Overflow);
    return static_cast<float>(value);
}

QString Chr(int32_t code)
{
    if (code < 0 || code > 255)
        throw vbError(vberr::InvalidProcedureCall);
    return QString(AnsiCodePage::current().toChar(static_cast<uint8_t>(code)));
}

int32_t Asc(const QString& text)
{
    if (text.isEmpty())
        throw vbError(vberr::InvalidProcedureCall);
    const int b = AnsiCodePage::current().toByte(text[0]);
    return b < 0 ? '?' : b;
}

}  // namespace rt
