#pragma once
// The value type of the engine's ADO-like surface: what a field hands out and what a
// caller writes into it. The kinds are those ADO gives for Jet columns; a Replication ID
// arrives as a String in the braced form "{8E39276A-BCA8-4AC4-891E-49911D8438DD}".
//
// toString() follows VB's CStr: Null is run-time error 94, Empty is "", Boolean is
// "True"/"False", numbers use the locale's decimal separator (Single with 7 significant
// digits, Double with 15, Currency and Decimal without trailing zeros), dates as
// described in Locale.h.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "jet/Locale.h"

namespace jet {

// A Jet 4 NUMERIC value: sign, unscaled magnitude and scale (value = magnitude / 10^scale).
struct Decimal {
    bool negative = false;
    unsigned __int128 magnitude = 0;
    uint8_t scale = 0;

    // All digits of the scale ("1.50" for scale 2); trimTrailingZeros gives "1.5".
    std::string toString(const std::string& decimalSeparator = ".", bool trimTrailingZeros = false) const;
    bool operator==(const Decimal&) const = default;
};

class Variant {
public:
    // The numbers are VB's VarType values.
    enum class Type : uint16_t {
        Empty = 0, Null = 1, Integer = 2, Long = 3, Single = 4, Double = 5, Currency = 6,
        Date = 7, String = 8, Boolean = 11, Decimal = 14, Byte = 17, ByteArray = 8192 + 17,
    };

    Variant() = default;  // Empty
    static Variant null();
    static Variant boolean(bool v);
    static Variant byte(uint8_t v);
    static Variant integer(int16_t v);
    static Variant longValue(int32_t v);
    static Variant currency(int64_t tenThousandths);
    static Variant single(float v);
    static Variant doubleValue(double v);
    static Variant date(double serial);
    static Variant string(std::string utf8);
    static Variant bytes(std::vector<uint8_t> v);
    static Variant decimal(Decimal v);

    Type type() const { return type_; }
    bool isNull() const { return type_ == Type::Null; }
    bool isEmpty() const { return type_ == Type::Empty; }

    // Accessors of the stored kind; asking for another kind is VB's type mismatch (13).
    bool asBool() const;
    uint8_t asByte() const;
    int16_t asInteger() const;
    int32_t asLong() const;
    int64_t asCurrency() const;   // units of 1/10000
    float asSingle() const;
    double asDouble() const;
    double asDate() const;
    const std::string& asString() const;
    const std::vector<uint8_t>& asBytes() const;
    const Decimal& asDecimal() const;

    // VB's CStr, with the given locale (default: the current one).
    std::string toString() const { return toString(Locale::current()); }
    std::string toString(const Locale& locale) const;

    bool operator==(const Variant&) const = default;

private:
    struct NullTag {
        bool operator==(const NullTag&) const = default;
    };
    using Storage = std::variant<std::monostate, NullTag, bool, uint8_t, int16_t, int32_t, int64_t, float, double,
                                 std::string, std::vector<uint8_t>, Decimal>;
    Variant(Type type, Storage value) : type_(type), value_(std::move(value)) {}
    template <typename T>
    const T& get() const;

    Type type_ = Type::Empty;
    Storage value_;
};

// VB's text forms of single values, shared by Variant and the callers that format a
// number they hold directly.
std::string formatSingle(float v, const std::string& decimalSeparator);
std::string formatDouble(double v, const std::string& decimalSeparator);
std::string formatCurrency(int64_t tenThousandths, const std::string& decimalSeparator);
std::string formatDate(double serial, const Locale& locale);

}  // namespace jet
