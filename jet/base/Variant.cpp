#include "jet/Variant.h"

#include <cstdio>
#include <cstdlib>

#include "base/Utf.h"
#include "jet/DateSerial.h"
#include "jet/RuntimeError.h"

namespace jet {

namespace {

RuntimeError typeMismatch() { return RuntimeError(err::TypeMismatchVb, "Type mismatch"); }

std::string replacePoint(std::string s, const std::string& sep) {
    auto pos = s.find('.');
    if (pos != std::string::npos) s.replace(pos, 1, sep);
    return s;
}

// printf's %G already chooses the notation VB uses (scientific below 1E-4 and from the
// precision on) and drops trailing zeros; the exponent has at least two digits in both.
std::string formatG(double v, int digits, const std::string& sep) {
    if (v == 0) return "0";
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*G", digits, v);
    return replacePoint(buf, sep);
}

std::string two(int v) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "%02d", v);
    return buf;
}

}  // namespace

std::string Decimal::toString(const std::string& sep, bool trim) const {
    std::string digits;
    unsigned __int128 m = magnitude;
    do {
        digits.insert(digits.begin(), char('0' + int(m % 10)));
        m /= 10;
    } while (m != 0);
    if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
    std::string out = digits.substr(0, digits.size() - scale);
    std::string frac = digits.substr(digits.size() - scale);
    if (trim) {
        while (!frac.empty() && frac.back() == '0') frac.pop_back();
    }
    if (!frac.empty()) out += sep + frac;
    bool zero = magnitude == 0;
    return negative && !zero ? "-" + out : out;
}

std::string formatSingle(float v, const std::string& sep) { return formatG(v, 7, sep); }
std::string formatDouble(double v, const std::string& sep) { return formatG(v, 15, sep); }

std::string formatCurrency(int64_t v, const std::string& sep) {
    uint64_t mag = v < 0 ? uint64_t(0) - uint64_t(v) : uint64_t(v);
    std::string out = std::to_string(mag / 10000);
    std::string frac = std::to_string(mag % 10000);
    frac.insert(0, 4 - frac.size(), '0');
    while (!frac.empty() && frac.back() == '0') frac.pop_back();
    if (!frac.empty()) out += sep + frac;
    return v < 0 ? "-" + out : out;
}

std::string formatDate(double serial, const Locale& locale) {
    DateParts p = dateParts(serial);
    const char s = locale.dateSeparator;
    char year[16];
    std::snprintf(year, sizeof year, "%04d", p.year);
    std::string date;
    switch (locale.dateOrder) {
    case Locale::DateOrder::DayMonthYear: date = two(p.day) + s + two(p.month) + s + year; break;
    case Locale::DateOrder::MonthDayYear: date = two(p.month) + s + two(p.day) + s + year; break;
    case Locale::DateOrder::YearMonthDay: date = std::string(year) + s + two(p.month) + s + two(p.day); break;
    }
    std::string time = two(p.hour) + ":" + two(p.minute) + ":" + two(p.second);
    bool dayZero = p.year == 1899 && p.month == 12 && p.day == 30;
    bool midnight = p.hour == 0 && p.minute == 0 && p.second == 0;
    if (dayZero) return time;
    if (midnight) return date;
    return date + " " + time;
}

Variant Variant::null() { return {Type::Null, NullTag{}}; }
Variant Variant::boolean(bool v) { return {Type::Boolean, v}; }
Variant Variant::byte(uint8_t v) { return {Type::Byte, v}; }
Variant Variant::integer(int16_t v) { return {Type::Integer, v}; }
Variant Variant::longValue(int32_t v) { return {Type::Long, v}; }
Variant Variant::currency(int64_t v) { return {Type::Currency, v}; }
Variant Variant::single(float v) { return {Type::Single, v}; }
Variant Variant::doubleValue(double v) { return {Type::Double, v}; }
Variant Variant::date(double v) { return {Type::Date, v}; }
Variant Variant::string(std::string v) { return {Type::String, std::move(v)}; }
Variant Variant::bytes(std::vector<uint8_t> v) { return {Type::ByteArray, std::move(v)}; }
Variant Variant::decimal(Decimal v) { return {Type::Decimal, v}; }

template <typename T>
const T& Variant::get() const {
    if (const T* p = std::get_if<T>(&value_)) return *p;
    throw typeMismatch();
}

bool Variant::asBool() const { return get<bool>(); }
uint8_t Variant::asByte() const { return get<uint8_t>(); }
int16_t Variant::asInteger() const { return get<int16_t>(); }
int32_t Variant::asLong() const { return get<int32_t>(); }
int64_t Variant::asCurrency() const { return get<int64_t>(); }
float Variant::asSingle() const { return get<float>(); }
double Variant::asDouble() const {
    if (type_ == Type::Date) throw typeMismatch();
    return get<double>();
}
double Variant::asDate() const {
    if (type_ != Type::Date) throw typeMismatch();
    return get<double>();
}
const std::string& Variant::asString() const { return get<std::string>(); }
const std::vector<uint8_t>& Variant::asBytes() const { return get<std::vector<uint8_t>>(); }
const Decimal& Variant::asDecimal() const { return get<Decimal>(); }

std::string Variant::toString(const Locale& locale) const {
    const std::string& sep = locale.decimalSeparator;
    switch (type_) {
    case Type::Empty: return "";
    case Type::Null: throw RuntimeError(err::InvalidUseOfNull, "Invalid use of Null");
    case Type::Boolean: return asBool() ? "True" : "False";
    case Type::Byte: return std::to_string(asByte());
    case Type::Integer: return std::to_string(asInteger());
    case Type::Long: return std::to_string(asLong());
    case Type::Currency: return formatCurrency(asCurrency(), sep);
    case Type::Single: return formatSingle(asSingle(), sep);
    case Type::Double: return formatDouble(get<double>(), sep);
    case Type::Date: return formatDate(get<double>(), locale);
    case Type::String: return asString();
    case Type::Decimal: return asDecimal().toString(sep, true);
    case Type::ByteArray: {
        // VB reads a byte array given to CStr as the UTF-16 text it holds.
        const auto& b = asBytes();
        std::u16string s;
        for (size_t i = 0; i < b.size(); i += 2) s += char16_t(b[i] | (i + 1 < b.size() ? b[i + 1] << 8 : 0));
        return utf16ToUtf8(s);
    }
    }
    throw typeMismatch();
}

}  // namespace jet
