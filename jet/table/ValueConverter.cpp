#include "table/ValueConverter.h"

#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "base/Utf.h"
#include "jet/DateSerial.h"
#include "jet/RuntimeError.h"
#include "table/ValueReader.h"

namespace jet {

namespace {

using u128 = unsigned __int128;

[[noreturn]] void refuse(const Column& c, const std::string& why) {
    throw RuntimeError(err::MultipleStepErrors, "Multiple-step operation generated errors. Check each status value. "
                                                "The field '" + c.name + "' cannot take this value: " + why + ".");
}

std::string quotedForError(const std::string& text) {
    return "'" + (text.size() > 40 ? text.substr(0, 40) + "..." : text) + "'";
}

std::string_view trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

// A number typed as text, kept exactly: value = +-digits * 10^exponent.
struct ExactNumber {
    bool negative = false;
    u128 digits = 0;
    int exponent = 0;
    std::string normalized;  // for strtod: "." as separator
};

std::optional<ExactNumber> parseNumber(std::string_view s, const std::string& separator) {
    s = trim(s);
    ExactNumber n;
    size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) n.negative = s[i++] == '-';
    if (n.negative) n.normalized += '-';
    bool anyDigit = false, inFraction = false;
    int dropped = 0;  // digits beyond what 128 bits hold, before the separator
    while (i < s.size()) {
        char ch = s[i];
        if (std::isdigit(static_cast<unsigned char>(ch))) {
            anyDigit = true;
            n.normalized += ch;
            if (n.digits < (u128(1) << 120) / 10) {
                n.digits = n.digits * 10 + u128(ch - '0');
                if (inFraction) --n.exponent;
            } else if (!inFraction) {
                ++dropped;
            }
            ++i;
        } else if (!inFraction && (s.substr(i, separator.size()) == separator || ch == '.')) {
            inFraction = true;
            n.normalized += '.';
            i += ch == '.' ? 1 : separator.size();
        } else {
            break;
        }
    }
    if (!anyDigit) return std::nullopt;
    n.exponent += dropped;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        size_t j = i + 1;
        bool negExp = false;
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) negExp = s[j++] == '-';
        if (j >= s.size() || !std::isdigit(static_cast<unsigned char>(s[j]))) return std::nullopt;
        int e = 0;
        while (j < s.size() && std::isdigit(static_cast<unsigned char>(s[j]))) {
            if (e < 10000) e = e * 10 + (s[j] - '0');
            ++j;
        }
        n.normalized += 'e';
        n.normalized += negExp ? '-' : '+';
        n.normalized += std::to_string(e);
        n.exponent += negExp ? -e : e;
        i = j;
    }
    if (i != s.size()) return std::nullopt;
    return n;
}

// digits * 10^exponent scaled to 10^-scale, halves to even; nullopt when it passes 2^126.
std::optional<u128> scaledMagnitude(const ExactNumber& n, int scale) {
    u128 v = n.digits;
    int shift = n.exponent + scale;
    if (v == 0) return u128(0);
    for (; shift > 0; --shift) {
        if (v > (u128(1) << 126) / 10) return std::nullopt;
        v *= 10;
    }
    if (shift < 0) {
        // rest: the most significant digit dropped; sticky: whether any digit below it was not 0.
        u128 rest = 0;
        bool sticky = false;
        for (; shift < 0 && (v != 0 || rest != 0); ++shift) {
            sticky = sticky || rest != 0;
            rest = v % 10;
            v /= 10;
        }
        if (shift < 0) rest = 0, sticky = true;  // only zeros were left: the value is below half a unit
        if (rest > 5 || (rest == 5 && (sticky || (v & 1)))) ++v;
    }
    return v;
}

double toDouble(const ExactNumber& n) { return std::strtod(n.normalized.c_str(), nullptr); }

bool equalsWord(std::string_view s, std::string_view word) { return equalsIgnoreCase(s, word); }

std::optional<bool> boolFromText(std::string_view s, const std::string& separator) {
    s = trim(s);
    if (equalsWord(s, "True") || equalsWord(s, "Yes") || equalsWord(s, "On")) return true;
    if (equalsWord(s, "False") || equalsWord(s, "No") || equalsWord(s, "Off")) return false;
    if (auto n = parseNumber(s, separator)) return n->digits != 0;
    return std::nullopt;
}

// Reads up to `maxDigits` digits at pos; -1 when there is none.
int readInt(std::string_view s, size_t& pos, size_t maxDigits, size_t* count = nullptr) {
    size_t start = pos;
    int v = 0;
    while (pos < s.size() && pos - start < maxDigits && std::isdigit(static_cast<unsigned char>(s[pos])))
        v = v * 10 + (s[pos++] - '0');
    if (count) *count = pos - start;
    return pos == start ? -1 : v;
}

bool validDate(int y, int m, int d) {
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1) return false;
    bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return d <= days[m - 1] + (m == 2 && leap ? 1 : 0);
}

// "hh:nn[:ss]" from pos to the end.
bool parseTime(std::string_view s, size_t pos, DateParts& p) {
    p.hour = readInt(s, pos, 2);
    if (p.hour < 0 || pos >= s.size() || s[pos] != ':') return false;
    ++pos;
    p.minute = readInt(s, pos, 2);
    if (p.minute < 0) return false;
    p.second = 0;
    if (pos < s.size() && s[pos] == ':') {
        ++pos;
        p.second = readInt(s, pos, 2);
        if (p.second < 0) return false;
    }
    return pos == s.size() && p.hour < 24 && p.minute < 60 && p.second < 60;
}

std::optional<double> dateFromText(std::string_view s, const Locale& locale) {
    s = trim(s);
    DateParts p;
    std::string_view datePart = s, timePart;
    size_t split = s.find_first_of(" T");
    if (split != std::string_view::npos) {
        datePart = s.substr(0, split);
        timePart = trim(s.substr(split + 1));
    }
    if (datePart.find(':') != std::string_view::npos && timePart.empty()) {  // a time alone: day 0
        if (!parseTime(datePart, 0, p)) return std::nullopt;
        return dateSerial(p);
    }
    int f[3];
    size_t digits[3];
    size_t pos = 0;
    for (int k = 0; k < 3; ++k) {
        f[k] = readInt(datePart, pos, 4, &digits[k]);
        if (f[k] < 0) return std::nullopt;
        if (k < 2) {
            if (pos >= datePart.size()) return std::nullopt;
            char sep = datePart[pos];
            if (sep != locale.dateSeparator && sep != '-' && sep != '/' && sep != '.') return std::nullopt;
            ++pos;
        }
    }
    if (pos != datePart.size()) return std::nullopt;
    int y, m, d;
    size_t yearDigits;
    if (digits[0] == 4 || locale.dateOrder == Locale::DateOrder::YearMonthDay) {
        y = f[0], m = f[1], d = f[2], yearDigits = digits[0];
    } else if (locale.dateOrder == Locale::DateOrder::DayMonthYear) {
        d = f[0], m = f[1], y = f[2], yearDigits = digits[2];
    } else {
        m = f[0], d = f[1], y = f[2], yearDigits = digits[2];
    }
    if (yearDigits <= 2) y += y < 30 ? 2000 : 1900;  // VB's window for two-digit years
    if (!validDate(y, m, d)) return std::nullopt;
    p.year = y, p.month = m, p.day = d;
    if (!timePart.empty() && !parseTime(timePart, 0, p)) return std::nullopt;
    return dateSerial(p);
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

double numericValue(const Variant& v) {
    switch (v.type()) {
    case Variant::Type::Boolean: return v.asBool() ? -1 : 0;
    case Variant::Type::Byte: return v.asByte();
    case Variant::Type::Integer: return v.asInteger();
    case Variant::Type::Long: return v.asLong();
    case Variant::Type::Currency: return double(v.asCurrency()) / 10000.0;
    case Variant::Type::Single: return v.asSingle();
    case Variant::Type::Double: return v.asDouble();
    case Variant::Type::Date: return v.asDate();
    default: break;
    }
    const Decimal& d = v.asDecimal();
    double m = double(d.magnitude) / std::pow(10.0, d.scale);
    return d.negative ? -m : m;
}

// Any value as an exact number; nullopt for text that is not a number.
std::optional<ExactNumber> exactOf(const Variant& v, const Locale& locale) {
    switch (v.type()) {
    case Variant::Type::String: return parseNumber(v.asString(), locale.decimalSeparator);
    case Variant::Type::Currency: {
        ExactNumber n;
        int64_t c = v.asCurrency();
        n.negative = c < 0;
        n.digits = n.negative ? u128(-(c + 1)) + 1 : u128(c);
        n.exponent = -4;
        return n;
    }
    case Variant::Type::Decimal: {
        const Decimal& d = v.asDecimal();
        ExactNumber n;
        n.negative = d.negative;
        n.digits = d.magnitude;
        n.exponent = -int(d.scale);
        return n;
    }
    case Variant::Type::Single:
    case Variant::Type::Double:
    case Variant::Type::Date: {
        double x = numericValue(v);
        if (!std::isfinite(x)) return std::nullopt;
        char buf[64];
        // Single keeps its 7 significant digits, so 0.1f becomes 0.1 and not 0.100000001.
        std::snprintf(buf, sizeof buf, v.type() == Variant::Type::Single ? "%.7g" : "%.17g", x);
        return parseNumber(buf, ".");
    }
    default: {
        double x = numericValue(v);
        ExactNumber n;
        n.negative = x < 0;
        n.digits = u128(std::fabs(x));
        return n;
    }
    }
}

Variant convertWhole(const Column& c, const Variant& v, const Locale& locale, int64_t lo, int64_t hi) {
    auto n = exactOf(v, locale);
    if (!n) refuse(c, quotedForError(v.toString(locale)) + " is not a number");
    auto mag = scaledMagnitude(*n, 0);
    if (!mag || *mag > u128(hi) + 1) refuse(c, "the number is out of the column's range");
    int64_t value = n->negative ? -int64_t(*mag) : int64_t(*mag);
    if (value < lo || value > hi) refuse(c, "the number " + std::to_string(value) + " is out of the column's range");
    switch (c.type()) {
    case ColumnType::Byte: return Variant::byte(uint8_t(value));
    case ColumnType::Int: return Variant::integer(int16_t(value));
    default: return Variant::longValue(int32_t(value));
    }
}

Variant convertDate(const Column& c, const Variant& v, const Locale& locale) {
    double serial;
    if (v.type() == Variant::Type::String) {
        auto d = dateFromText(v.asString(), locale);
        if (!d) refuse(c, quotedForError(v.asString()) + " is not a date");
        serial = *d;
    } else {
        serial = numericValue(v);
    }
    // Jet's dates run from 100-01-01 to 9999-12-31.
    if (!std::isfinite(serial) || serial < -657434.0 || serial >= 2958466.0) refuse(c, "the date is out of range");
    return Variant::date(serial);
}

Variant convertDecimal(const Column& c, const Variant& v, const Locale& locale) {
    auto n = exactOf(v, locale);
    if (!n) refuse(c, quotedForError(v.toString(locale)) + " is not a number");
    auto mag = scaledMagnitude(*n, c.scale);
    u128 limit = 1;
    for (int k = 0; k < c.precision; ++k) limit *= 10;
    if (!mag || *mag >= limit) refuse(c, "the number has more digits than the column's precision");
    return Variant::decimal(Decimal{n->negative && *mag != 0, *mag, c.scale});
}

Variant convertText(const Column& c, const Variant& v, Version version, const CodePage& codePage, const Locale& locale) {
    if (v.type() == Variant::Type::ByteArray) refuse(c, "binary data is not text");
    std::string text = v.toString(locale);
    if (version == Version::Jet3) {
        auto bytes = codePage.fromUtf8(text);
        if (!bytes) refuse(c, "the text has characters that code page " + std::to_string(codePage.number()) + " cannot hold");
        if (c.type() == ColumnType::Text && bytes->size() > c.length)
            refuse(c, "the text has " + std::to_string(bytes->size()) + " characters, the column holds at most " +
                          std::to_string(c.length));
    } else if (c.type() == ColumnType::Text) {
        size_t units = utf8ToUtf16(text).size();
        if (units * 2 > c.length)
            refuse(c, "the text has " + std::to_string(units) + " characters, the column holds at most " +
                          std::to_string(c.length / 2));
    }
    return Variant::string(std::move(text));
}

}  // namespace

bool guidBytes(std::string_view s, uint8_t out[16]) {
    s = trim(s);
    if (s.size() == 38 && s.front() == '{' && s.back() == '}') s = s.substr(1, 36);
    if (s.size() != 36) return false;
    uint8_t raw[16];
    size_t k = 0;
    for (size_t i = 0; i < s.size();) {
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (s[i] != '-') return false;
            ++i;
            continue;
        }
        int hi = hexDigit(s[i]), lo = hexDigit(s[i + 1]);
        if (hi < 0 || lo < 0) return false;
        raw[k++] = uint8_t(hi * 16 + lo);
        i += 2;
    }
    // The first three groups are stored little-endian.
    const int order[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    for (int i = 0; i < 16; ++i) out[i] = raw[order[i]];
    return true;
}

Variant convertForColumn(const Column& c, const Variant& v, Version version, const CodePage& codePage,
                         const Locale& locale) {
    const bool isText = c.type() == ColumnType::Text || c.type() == ColumnType::Memo;
    bool blank = v.isNull() || v.isEmpty();
    if (!isText && v.type() == Variant::Type::String && trim(v.asString()).empty()) blank = true;
    if (c.type() == ColumnType::Bool) {
        if (blank) return Variant::boolean(false);
        if (v.type() == Variant::Type::String) {
            auto b = boolFromText(v.asString(), locale.decimalSeparator);
            if (!b) refuse(c, quotedForError(v.asString()) + " is not Yes or No");
            return Variant::boolean(*b);
        }
        if (v.type() == Variant::Type::ByteArray) refuse(c, "binary data is not Yes or No");
        if (v.type() == Variant::Type::Decimal) return Variant::boolean(v.asDecimal().magnitude != 0);
        if (v.type() == Variant::Type::Currency) return Variant::boolean(v.asCurrency() != 0);
        return Variant::boolean(numericValue(v) != 0);
    }
    if (blank) return Variant::null();
    const bool binaryIn = v.type() == Variant::Type::ByteArray;
    switch (c.type()) {
    case ColumnType::Text:
    case ColumnType::Memo: return convertText(c, v, version, codePage, locale);
    case ColumnType::Binary:
    case ColumnType::Ole:
        if (!binaryIn) refuse(c, "only binary data can be stored in it");
        if (c.type() == ColumnType::Binary && v.asBytes().size() > c.length)
            refuse(c, "the data has " + std::to_string(v.asBytes().size()) + " bytes, the column holds at most " +
                          std::to_string(c.length));
        return v;
    case ColumnType::Guid: {
        uint8_t bytes[16];
        if (v.type() != Variant::Type::String || !guidBytes(v.asString(), bytes))
            refuse(c, quotedForError(v.toString(locale)) + " is not a Replication ID");
        return Variant::string(guidText(bytes));
    }
    default: break;
    }
    if (binaryIn) refuse(c, "binary data is not a number");
    switch (c.type()) {
    case ColumnType::Byte: return convertWhole(c, v, locale, 0, 255);
    case ColumnType::Int: return convertWhole(c, v, locale, INT16_MIN, INT16_MAX);
    case ColumnType::Long: return convertWhole(c, v, locale, INT32_MIN, INT32_MAX);
    case ColumnType::Money: {
        auto n = exactOf(v, locale);
        if (!n) refuse(c, quotedForError(v.toString(locale)) + " is not a number");
        auto mag = scaledMagnitude(*n, 4);
        if (!mag || *mag > u128(INT64_MAX)) refuse(c, "the amount is out of the Currency range");
        return Variant::currency(n->negative ? -int64_t(*mag) : int64_t(*mag));
    }
    case ColumnType::Float:
    case ColumnType::Double: {
        double x;
        if (v.type() == Variant::Type::String) {
            auto n = parseNumber(v.asString(), locale.decimalSeparator);
            if (!n) refuse(c, quotedForError(v.asString()) + " is not a number");
            x = toDouble(*n);
        } else {
            x = numericValue(v);
        }
        if (!std::isfinite(x) || (c.type() == ColumnType::Float && std::fabs(x) > FLT_MAX))
            refuse(c, "the number is out of the column's range");
        if (c.type() == ColumnType::Float) return Variant::single(float(x));
        return Variant::doubleValue(x);
    }
    case ColumnType::DateTime: return convertDate(c, v, locale);
    case ColumnType::Numeric: return convertDecimal(c, v, locale);
    default: break;
    }
    refuse(c, "the column's type cannot be written");
}

}  // namespace jet
