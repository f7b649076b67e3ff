#include "CsvExport.h"

#include <cstdio>

#include "jet/DateSerial.h"

namespace sheetwright::cli {

namespace {

std::string quoted(const std::string& s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

// Names go bare unless they hold something CSV would misread.
std::string headerName(const std::string& s) {
    return s.find_first_of(",\"\r\n") == std::string::npos ? s : quoted(s);
}

std::string printfNumber(const char* format, double v) {
    char buf[64];
    std::snprintf(buf, sizeof buf, format, v);
    return buf;
}

std::string currencyText(int64_t v) {
    uint64_t mag = v < 0 ? uint64_t(0) - uint64_t(v) : uint64_t(v);
    char buf[48];
    std::snprintf(buf, sizeof buf, "%s%llu.%04llu", v < 0 ? "-" : "", static_cast<unsigned long long>(mag / 10000),
                  static_cast<unsigned long long>(mag % 10000));
    return buf;
}

std::string isoDate(double serial) {
    jet::DateParts p = jet::dateParts(serial);
    char buf[48];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour, p.minute, p.second);
    return buf;
}

std::string hex(const std::vector<uint8_t>& bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (uint8_t b : bytes) {
        out += digits[b >> 4];
        out += digits[b & 15];
    }
    return out;
}

}  // namespace

std::string csvField(const jet::Variant& v) {
    using T = jet::Variant::Type;
    switch (v.type()) {
    case T::Empty:
    case T::Null: return "";
    case T::Boolean: return v.asBool() ? "1" : "0";
    case T::Byte: return std::to_string(v.asByte());
    case T::Integer: return std::to_string(v.asInteger());
    case T::Long: return std::to_string(v.asLong());
    case T::Currency: return currencyText(v.asCurrency());
    case T::Single: return printfNumber("%.8g", v.asSingle());
    case T::Double: return printfNumber("%.16g", v.asDouble());
    case T::Date: return quoted(isoDate(v.asDate()));
    case T::String: return quoted(v.asString());
    case T::Decimal: return v.asDecimal().toString(".", false);
    case T::ByteArray: return quoted(hex(v.asBytes()));
    }
    return "";
}

size_t exportCsv(jet::Recordset& rs, std::ostream& out) {
    const auto& fields = rs.Fields();
    const int32_t n = fields.Count();
    std::string line;
    for (int32_t i = 0; i < n; ++i) {
        if (i) line += ',';
        line += headerName(fields.Item(i).Name());
    }
    out << line << '\n';
    size_t records = 0;
    if (rs.RecordCount() == 0) return 0;
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
        line.clear();
        for (int32_t i = 0; i < n; ++i) {
            if (i) line += ',';
            line += csvField(fields.Item(i).Value());
        }
        out << line << '\n';
        ++records;
    }
    return records;
}

}  // namespace sheetwright::cli
