#include "ValueSamples.h"

#include <string>

#include "jet/DateSerial.h"

namespace jet::testkit {

namespace {

std::string letters(std::mt19937_64& rng, size_t n, bool latin1) {
    static const char* extra[] = {"\xC3\xA9", "\xC3\xBC", "\xC3\x9F", "\xC3\xA5"};  // é ü ß å
    std::string s;
    for (size_t i = 0; i < n; ++i) {
        if (latin1 && rng() % 10 == 0) s += extra[rng() % 4];
        else s += char('a' + rng() % 26);
    }
    return s;
}

// Inline, in one long-value row, or in a chain of them.
size_t longLength(std::mt19937_64& rng) {
    const size_t sizeClass = rng() % 3;
    return sizeClass == 0 ? rng() % 60 : sizeClass == 1 ? 100 + rng() % 1800 : 4100 + rng() % 9000;
}

}  // namespace

Variant sampleValue(const Column& c, Version version, std::mt19937_64& rng, uint64_t unique) {
    const bool jet4 = version == Version::Jet4;
    switch (c.type()) {
    case ColumnType::Bool: return Variant::boolean(rng() & 1);
    case ColumnType::Byte: return Variant::byte(uint8_t(unique % 256));
    case ColumnType::Int: return Variant::integer(int16_t(unique % 60000 - 30000));
    case ColumnType::Long: return Variant::longValue(int32_t(unique * 7919 % 2000000000) - 1000000000);
    case ColumnType::Money: return Variant::currency(int64_t(unique) * 12345 - 99999999);
    case ColumnType::Float: return Variant::single(float(unique % 100000) / 8.0f - 1000.0f);
    case ColumnType::Double: return Variant::doubleValue(double(unique) * 1.25 - 77.5);
    case ColumnType::DateTime:
        return Variant::date(dateSerial({int32_t(1950 + unique % 80), int32_t(1 + unique % 12), int32_t(1 + unique % 28),
                                         int32_t(unique % 24), int32_t(unique % 60), int32_t(rng() % 60)}));
    case ColumnType::Guid: {
        char text[40];
        std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%04X-%012llX}", unsigned(unique), unsigned(rng() & 0xFFFF),
                      unsigned(rng() & 0xFFFF), unsigned(rng() & 0xFFFF),
                      static_cast<unsigned long long>(rng() & 0xFFFFFFFFFFFFull));
        return Variant::string(text);
    }
    case ColumnType::Numeric: {
        Decimal d;
        d.scale = c.scale;
        d.negative = unique % 3 == 0;
        unsigned __int128 limit = 1;
        for (int k = 0; k < std::min<int>(c.precision, 18); ++k) limit *= 10;
        d.magnitude = (unique * 1000003) % limit;
        if (d.magnitude == 0) d.negative = false;
        return Variant::decimal(d);
    }
    case ColumnType::Text: {
        const size_t max = jet4 ? c.length / 2 : c.length;
        std::string s = "t" + std::to_string(unique) + " " + letters(rng, 3 + rng() % 20, jet4);
        // Cut at a character boundary: the Latin-1 letters take two bytes in UTF-8.
        size_t chars = 0, cut = 0;
        while (cut < s.size() && chars < max) {
            cut += (static_cast<unsigned char>(s[cut]) >= 0xC0) ? 2 : 1;
            ++chars;
        }
        return Variant::string(s.substr(0, cut));
    }
    case ColumnType::Memo: return Variant::string("m" + std::to_string(unique) + letters(rng, longLength(rng), jet4));
    case ColumnType::Ole:
    case ColumnType::Binary: {
        size_t n = c.type() == ColumnType::Binary ? 1 + rng() % std::max<size_t>(1, c.length) : longLength(rng);
        std::vector<uint8_t> bytes(n);
        for (auto& b : bytes) b = uint8_t(rng());
        if (!bytes.empty()) bytes[0] = uint8_t(unique);
        return Variant::bytes(std::move(bytes));
    }
    }
    return Variant::null();
}

}  // namespace jet::testkit
