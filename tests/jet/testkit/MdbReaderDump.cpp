#include "MdbReaderDump.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "jet/Bytes.h"
#include "jet/CodePage.h"
#include "jet/Database.h"
#include "jet/DateSerial.h"
#include "jet/Table.h"
#include "jet/ValueReader.h"

namespace jet::testkit {

namespace {

namespace fs = std::filesystem;

const fs::path oracles = fs::path(SHEETWRIGHT_SOURCE_DIR) / "tests" / "oracles";

// Numbers as JavaScript prints them: shortest round trip, exponent only outside 1e-7..1e21.
std::string jsNumber(double v) {
    if (v == 0) return "0";
    char buf[64];
    double a = std::fabs(v);
    auto fmt = a >= 1e-7 && a < 1e21 ? std::chars_format::fixed : std::chars_format::scientific;
    auto end = std::to_chars(buf, buf + sizeof buf, v, fmt).ptr;
    std::string s(buf, end);
    auto e = s.find('e');
    if (e != std::string::npos) {
        std::string exp = s.substr(e + 1);
        bool neg = exp[0] == '-';
        exp = exp.substr(1);
        exp.erase(0, std::min(exp.find_first_not_of('0'), exp.size() - 1));
        s = s.substr(0, e) + "e" + (neg ? "-" : "+") + exp;
    }
    return s;
}

std::string jsString(const std::string& s) {
    std::string out = "\"";
    for (unsigned char c : s) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\b': out += "\\b"; break;
        case '\f': out += "\\f"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (c < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", c);
                out += buf;
            } else {
                out += char(c);
            }
        }
    }
    return out + "\"";
}

std::string shellQuoted(const std::string& path) { return "'" + path + "'"; }

}  // namespace

std::string runCommand(const std::string& command) {
    std::string out;
    FILE* p = ::popen(command.c_str(), "r");
    if (!p) return out;
    char buf[65536];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
    ::pclose(p);
    return out;
}

bool mdbReaderAvailable() {
    return fs::exists(oracles / "node_modules" / "mdb-reader") && !runCommand("command -v node").empty();
}

// The dump prints one line per column and one per row; names come first in each table.
std::map<std::string, ReaderTable> mdbReaderDump(const std::string& path, const std::string& table) {
    std::string cmd = "node " + shellQuoted((oracles / "mdb-reader-dump.mjs").string()) + " " + shellQuoted(path);
    if (!table.empty()) cmd += " --table " + shellQuoted(table);
    const std::string dump = runCommand(cmd + " 2>/dev/null");
    std::map<std::string, ReaderTable> tables;
    std::string current;
    bool inRows = false;
    for (size_t pos = 0; pos < dump.size();) {
        size_t nl = dump.find('\n', pos);
        std::string line = dump.substr(pos, nl - pos);
        pos = nl == std::string::npos ? dump.size() : nl + 1;
        line.erase(0, line.find_first_not_of(' '));
        if (line.rfind("\"name\": \"", 0) == 0) {
            current = line.substr(9, line.rfind('"') - 9);
            tables[current];
        } else if (line.rfind("{\"name\":\"", 0) == 0) {
            tables[current].columns.push_back(line.substr(9, line.find('"', 9) - 9));
        } else if (line.rfind("\"rows\": [", 0) == 0) {
            inRows = line.back() != ']';
        } else if (inRows && !line.empty() && line[0] == '[') {
            if (line.back() == ',') line.pop_back();
            tables[current].rows.push_back(line);
        } else if (inRows && !line.empty() && line[0] == ']') {
            inRows = false;
        }
    }
    return tables;
}

std::string readerNotation(const Variant& v, const Column& c, const Database& db) {
    using T = Variant::Type;
    switch (v.type()) {
    case T::Empty:
    case T::Null: return "null";
    case T::Boolean: return v.asBool() ? "true" : "false";
    case T::Byte: return std::to_string(v.asByte());
    case T::Integer: return std::to_string(v.asInteger());
    case T::Long: return std::to_string(v.asLong());
    case T::Single: return jsNumber(double(v.asSingle()));
    case T::Double: return jsNumber(v.asDouble());
    case T::Currency: {
        int64_t x = v.asCurrency();
        uint64_t m = x < 0 ? uint64_t(0) - uint64_t(x) : uint64_t(x);
        char buf[48];
        std::snprintf(buf, sizeof buf, "\"%s%llu.%04llu\"", x < 0 ? "-" : "", (unsigned long long)(m / 10000),
                      (unsigned long long)(m % 10000));
        return buf;
    }
    case T::Decimal: return "\"" + v.asDecimal().toString() + "\"";
    case T::Date: {
        DateParts p = dateParts(v.asDate());
        char buf[48];
        std::snprintf(buf, sizeof buf, "\"%04d-%02d-%02d %02d:%02d:%02d\"", p.year, p.month, p.day, p.hour, p.minute,
                      p.second);
        return buf;
    }
    case T::String: {
        std::string s = v.asString();
        if (c.type() == ColumnType::Guid) {
            s = s.substr(1, s.size() - 2);
            for (char& ch : s) ch = char(std::tolower(static_cast<unsigned char>(ch)));
        } else if (db.version() == Version::Jet3) {
            if (db.codePageOf(c).number() != 1252) {
                const auto bytes = db.codePageOf(c).fromUtf8(s);
                if (bytes) s = CodePage::get(1252)->toUtf8({reinterpret_cast<const uint8_t*>(bytes->data()), bytes->size()});
            }
            for (const char* gap : {"\u0081", "\u008D", "\u008F", "\u0090", "\u009D"})
                for (size_t at; (at = s.find(gap)) != std::string::npos;) s.replace(at, 2, "\uFFFD");
        }
        return jsString(s);
    }
    case T::ByteArray: {
        std::string out = "\"0x";
        char buf[4];
        for (uint8_t b : v.asBytes()) {
            std::snprintf(buf, sizeof buf, "%02X", b);
            out += buf;
        }
        return out + "\"";
    }
    }
    return "?";
}

std::vector<std::string> rowsInReaderNotation(const Database& db, const std::string& table) {
    auto t = db.openTable(table);
    const auto& rows = t->rowLocations();
    std::vector<std::pair<uint32_t, size_t>> order;
    for (size_t i = 0; i < rows.size(); ++i) {
        DataPage page(db.format(), db.pager().read(rows[i].page));
        RowLocation at = rows[i];
        if (page.isOverflowHeader(at.slot)) at = RowLocation::fromPointer(le32(page.row(at.slot).data()));
        order.emplace_back(at.pointer(), i);
    }
    std::stable_sort(order.begin(), order.end());
    std::vector<std::string> out;
    for (auto [key, i] : order) {
        RowReader r = t->reader(rows[i]);
        std::string line = "[";
        for (const auto& c : t->def().columns()) {
            if (line.size() > 1) line += ",";
            line += readerNotation(readValue(db, c, r.column(c)), c, db);
        }
        out.push_back(line + "]");
    }
    return out;
}

}  // namespace jet::testkit
