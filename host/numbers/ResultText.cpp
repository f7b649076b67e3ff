#include "host/numbers/ResultText.h"

#include "jet/Variant.h"

namespace host::numbers {

namespace {

// Like the run time's Double, small numbers switch to exponent form below 1E-04.
constexpr int64_t kSmallestPlain = -4;

std::string exponentForm(const DigitText& value)
{
    std::string text = value.negative ? "-" : "";
    text += value.digits[0];
    if (value.digits.size() > 1) {
        text += '.';
        text.append(value.digits, 1);
    }
    const int64_t exponent = value.leadingExponent;
    std::string written = std::to_string(exponent < 0 ? -exponent : exponent);
    if (written.size() < 2)
        written.insert(0, 1, '0');
    text += exponent < 0 ? "E-" : "E+";
    return text + written;
}

std::string plainForm(const DigitText& value)
{
    std::string text = value.negative ? "-" : "";
    const int64_t lead = value.leadingExponent;
    const int64_t count = int64_t(value.digits.size());
    if (lead < 0) {
        text += "0.";
        text.append(std::size_t(-lead - 1), '0');
        return text + value.digits;
    }
    if (lead + 1 >= count) {
        text += value.digits;
        return text.append(std::size_t(lead + 1 - count), '0');
    }
    text.append(value.digits, 0, std::size_t(lead + 1));
    text += '.';
    return text.append(value.digits, std::size_t(lead + 1));
}

}  // namespace

void DigitText::normalise()
{
    const std::size_t last = digits.find_last_not_of('0');
    if (last == std::string::npos) {
        digits.clear();
        negative = false;
        leadingExponent = 0;
        return;
    }
    digits.resize(last + 1);
    const std::size_t first = digits.find_first_not_of('0');
    if (first > 0) {
        digits.erase(0, first);
        leadingExponent -= int64_t(first);
    }
}

std::string ordinaryText(double value)
{
    return jet::formatDouble(value, ".");
}

std::string extendedText(const DigitText& value, int digits)
{
    if (value.digits.empty())
        return "0";
    const int64_t lead = value.leadingExponent;
    const int64_t count = int64_t(value.digits.size());
    bool plain = lead >= kSmallestPlain && lead < digits;
    if (value.exact && lead >= kSmallestPlain && lead - (count - 1) <= digits)
        plain = true;
    return plain ? plainForm(value) : exponentForm(value);
}

}  // namespace host::numbers
