#include "CsvExport.h"

#include <charconv>
#include <cstring>

#include "jet/DateSerial.h"

namespace sheetwright::cli {

namespace {

// Output is gathered here and written a block at a time.
constexpr size_t kBlock = 1 << 16;

void appendQuoted(std::string& out, std::string_view s) {
    out += '"';
    for (size_t at = 0;;) {
        const size_t quote = s.find('"', at);
        if (quote == std::string_view::npos) {
            out.append(s.substr(at));
            break;
        }
        out.append(s.substr(at, quote + 1 - at));
        out += '"';
        at = quote + 1;
    }
    out += '"';
}

// Names go bare unless they hold something CSV would misread.
void appendName(std::string& out, const std::string& s) {
    if (s.find_first_of(",\"\r\n") == std::string::npos)
        out += s;
    else
        appendQuoted(out, s);
}

template <typename Integer>
void appendInteger(std::string& out, Integer v) {
    char buf[24];
    out.append(buf, std::to_chars(buf, buf + sizeof buf, v).ptr);
}

// As printf's %.<precision>g prints it.
void appendGeneral(std::string& out, double v, int precision) {
    char buf[64];
    out.append(buf, std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, precision).ptr);
}

// As printf's %0<width>d prints it.
void appendPadded(std::string& out, int32_t v, size_t width) {
    char buf[16];
    const uint32_t magnitude = v < 0 ? 0u - uint32_t(v) : uint32_t(v);
    const size_t digits = size_t(std::to_chars(buf, buf + sizeof buf, magnitude).ptr - buf);
    if (v < 0) out += '-';
    const size_t room = width - (v < 0 ? 1 : 0);
    if (digits < room) out.append(room - digits, '0');
    out.append(buf, digits);
}

void appendCurrency(std::string& out, int64_t v) {
    const uint64_t magnitude = v < 0 ? uint64_t(0) - uint64_t(v) : uint64_t(v);
    if (v < 0) out += '-';
    appendInteger(out, magnitude / 10000);
    out += '.';
    appendPadded(out, int32_t(magnitude % 10000), 4);
}

void appendIsoDate(std::string& out, double serial) {
    const jet::DateParts p = jet::dateParts(serial);
    if (p.year < 0 || p.year > 9999) {
        out += '"';
        appendPadded(out, p.year, 4);
    } else {
        char year[5] = {'"', char('0' + p.year / 1000), char('0' + p.year / 100 % 10), char('0' + p.year / 10 % 10),
                        char('0' + p.year % 10)};
        out.append(year, 5);
    }
    // The other parts have two digits each.
    const int32_t parts[5] = {p.month, p.day, p.hour, p.minute, p.second};
    char rest[16] = {'-', 0, 0, '-', 0, 0, ' ', 0, 0, ':', 0, 0, ':', 0, 0, '"'};
    for (int i = 0; i < 5; ++i) {
        rest[3 * i + 1] = char('0' + parts[i] / 10);
        rest[3 * i + 2] = char('0' + parts[i] % 10);
    }
    out.append(rest, sizeof rest);
}

void appendHex(std::string& out, const std::vector<uint8_t>& bytes) {
    static const char digits[] = "0123456789ABCDEF";
    out += '"';
    for (uint8_t b : bytes) {
        out += digits[b >> 4];
        out += digits[b & 15];
    }
    out += '"';
}

void flushIfFull(std::string& buffer, std::ostream& out) {
    if (buffer.size() < kBlock) return;
    out.write(buffer.data(), std::streamsize(buffer.size()));
    buffer.clear();
}

}  // namespace

void appendCsvField(std::string& out, const jet::Variant& v) {
    using T = jet::Variant::Type;
    switch (v.type()) {
    case T::Empty:
    case T::Null: return;
    case T::Boolean: out += v.asBool() ? '1' : '0'; return;
    case T::Byte: appendInteger(out, v.asByte()); return;
    case T::Integer: appendInteger(out, v.asInteger()); return;
    case T::Long: appendInteger(out, v.asLong()); return;
    case T::Currency: appendCurrency(out, v.asCurrency()); return;
    case T::Single: appendGeneral(out, v.asSingle(), 8); return;
    case T::Double: appendGeneral(out, v.asDouble(), 16); return;
    case T::Date: appendIsoDate(out, v.asDate()); return;
    case T::String: appendQuoted(out, v.asString()); return;
    case T::Decimal: out += v.asDecimal().toString(".", false); return;
    case T::ByteArray: appendHex(out, v.asBytes()); return;
    }
}

size_t exportCsv(jet::Recordset& rs, std::ostream& out) {
    const auto& fields = rs.Fields();
    const int32_t n = fields.Count();
    std::string buffer;
    buffer.reserve(kBlock + 4096);
    for (int32_t i = 0; i < n; ++i) {
        if (i) buffer += ',';
        appendName(buffer, fields.Item(i).Name());
    }
    buffer += '\n';
    size_t records = 0;
    if (rs.RecordCount() > 0) {
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            for (int32_t i = 0; i < n; ++i) {
                if (i) buffer += ',';
                appendCsvField(buffer, fields.Item(i).Value());
            }
            buffer += '\n';
            ++records;
            flushIfFull(buffer, out);
        }
    }
    out.write(buffer.data(), std::streamsize(buffer.size()));
    return records;
}

}  // namespace sheetwright::cli
