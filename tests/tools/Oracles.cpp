#include "Oracles.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "CsvExport.h"
#include "base/Bytes.h"
#include "format/CodePage.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/DateSerial.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/Table.h"
#include "table/ValueReader.h"
#include "testkit/TestFiles.h"

namespace sheetwright::testing {

namespace {

namespace fs = std::filesystem;
using jet::testkit::runCommand;

const fs::path oracles = fs::path(SHEETWRIGHT_SOURCE_DIR) / "tests" / "oracles";

std::string shellQuoted(const std::string& s) { return "'" + s + "'"; }

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (!line.empty()) out.push_back(line);
    return out;
}

// How mdb-schema names a column's type.
std::string mdbToolsType(const jet::Column& c, jet::Version v) {
    using T = jet::ColumnType;
    switch (c.type()) {
    case T::Bool: return "Boolean";
    case T::Byte: return "Byte";
    case T::Int: return "Integer";
    case T::Long: return "Long Integer";
    case T::Money: return "Currency";
    case T::Float: return "Single";
    case T::Double: return "Double";
    case T::DateTime: return "DateTime";
    case T::Binary: return "Binary";
    case T::Text: return "Text (" + std::to_string(v == jet::Version::Jet3 ? c.length : c.length / 2) + ")";
    case T::Ole: return "OLE (255)";
    case T::Memo: return "Memo/Hyperlink (255)";
    case T::Guid: return "Replication ID";
    case T::Numeric: return "Numeric (" + std::to_string(c.precision) + ", " + std::to_string(c.scale) + ")";
    }
    return "?";
}

// mdb-schema's tables: name -> "column type" lines.
std::map<std::string, std::vector<std::string>> mdbSchema(const std::string& env, const std::string& path) {
    std::map<std::string, std::vector<std::string>> out;
    std::string table;
    for (std::string line : lines(runCommand(env + "mdb-schema " + shellQuoted(path) + " access 2>/dev/null"))) {
        if (line.rfind("CREATE TABLE [", 0) == 0) {
            table = line.substr(14, line.rfind(']') - 14);
            out[table];
        } else if (!table.empty() && line.size() > 2 && line[0] == '\t' && line[1] == '[') {
            const size_t close = line.find(']');
            std::string type = line.substr(close + 1);
            type.erase(0, type.find_first_not_of('\t'));
            while (!type.empty() && (type.back() == ' ' || type.back() == ',')) type.pop_back();
            if (type.size() > 9 && type.ends_with(" NOT NULL")) type.resize(type.size() - 9);
            out[table].push_back(line.substr(2, close - 2) + " " + type);
        }
    }
    return out;
}

// With -b hex, mdb-export prints a Replication ID as the hex of its braced text.
std::string guidsAsText(const std::string& csv) {
    static const std::regex hexGuid("\"7B((?:[0-9A-F]{2}){35,36})7D\"");
    std::string out;
    auto last = csv.cbegin();
    for (std::sregex_iterator it(csv.begin(), csv.end(), hexGuid), end; it != end; ++it) {
        out.append(last, (*it)[0].first);
        const std::string hex = (*it)[1];
        out += "\"{";
        for (size_t i = 0; i < hex.size(); i += 2) out += char(std::stoi(hex.substr(i, 2), nullptr, 16));
        out += "}\"";
        last = (*it)[0].second;
    }
    return out.append(last, csv.cend());
}

struct ReaderTable {
    std::vector<std::string> columns;  // names, in the reader's order
    std::vector<std::string> rows;     // one JSON array per row, as the dump prints it
};

// The dump prints one line per column and one per row; names come first in each table.
std::map<std::string, ReaderTable> mdbReaderDump(const std::string& path) {
    std::map<std::string, ReaderTable> tables;
    std::string current;
    bool inRows = false;
    for (std::string line : lines(runCommand("node " + shellQuoted((oracles / "mdb-reader-dump.mjs").string()) + " " +
                                             shellQuoted(path) + " 2>/dev/null"))) {
        line.erase(0, line.find_first_not_of(' '));
        if (line.rfind("\"name\": \"", 0) == 0) {
            current = line.substr(9, line.rfind('"') - 9);
            tables[current];
        } else if (line.rfind("{\"name\":\"", 0) == 0) {
            tables[current].columns.push_back(line.substr(9, line.find('"', 9) - 9));
        } else if (line.rfind("\"rows\": [", 0) == 0) {
            inRows = line.back() != ']';
        } else if (inRows && line[0] == '[') {
            if (line.back() == ',') line.pop_back();
            tables[current].rows.push_back(line);
        } else if (inRows && line[0] == ']') {
            inRows = false;
        }
    }
    return tables;
}

// Numbers as JavaScript prints them: shortest round trip, exponent only outside 1e-7..1e21.
std::string jsNumber(double v) {
    if (v == 0) return "0";
    char buf[64];
    const double a = std::fabs(v);
    std::string s(buf, std::to_chars(buf, buf + sizeof buf, v,
                                     a >= 1e-7 && a < 1e21 ? std::chars_format::fixed : std::chars_format::scientific).ptr);
    if (const size_t e = s.find('e'); e != std::string::npos) {
        std::string exp = s.substr(e + 2);
        exp.erase(0, std::min(exp.find_first_not_of('0'), exp.size() - 1));
        s = s.substr(0, e) + "e" + (s[e + 1] == '-' ? "-" : "+") + exp;
    }
    return s;
}

std::string jsString(const std::string& s) {
    std::string out = "\"";
    for (unsigned char c : s) {
        const char* escaped = c == '"' ? "\\\"" : c == '\\' ? "\\\\" : c == '\b' ? "\\b" : c == '\f' ? "\\f"
                            : c == '\n' ? "\\n" : c == '\r' ? "\\r" : c == '\t' ? "\\t" : nullptr;
        char buf[8];
        if (!escaped && c < 0x20) std::snprintf(buf, sizeof buf, "\\u%04x", c);
        out += escaped ? escaped : c < 0x20 ? buf : std::string(1, char(c));
    }
    return out + "\"";
}

std::string readerNotation(const jet::Variant& v, const jet::Column& c, const jet::Database& db) {
    using T = jet::Variant::Type;
    char buf[64];
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
        const int64_t x = v.asCurrency();
        const uint64_t m = x < 0 ? uint64_t(0) - uint64_t(x) : uint64_t(x);
        std::snprintf(buf, sizeof buf, "\"%s%llu.%04llu\"", x < 0 ? "-" : "", (unsigned long long)(m / 10000),
                      (unsigned long long)(m % 10000));
        return buf;
    }
    case T::Decimal: return "\"" + v.asDecimal().toString() + "\"";
    case T::Date: {
        const double days = std::floor(v.asDate());
        const jet::DateParts d = jet::dateParts(days), t = jet::dateParts(v.asDate() - days);
        std::snprintf(buf, sizeof buf, "\"%04d-%02d-%02d %02d:%02d:%02d\"", d.year, d.month, d.day, t.hour, t.minute,
                      t.second);
        return buf;
    }
    case T::String: {
        std::string s = v.asString();
        if (c.type() == jet::ColumnType::Guid) {
            s = s.substr(1, s.size() - 2);
            for (char& ch : s) ch = char(std::tolower(static_cast<unsigned char>(ch)));
        } else if (db.version() == jet::Version::Jet3) {
            if (db.codePageOf(c).number() != 1252)
                if (const auto bytes = db.codePageOf(c).fromUtf8(s))
                    s = jet::CodePage::get(1252)->toUtf8({reinterpret_cast<const uint8_t*>(bytes->data()), bytes->size()});
            for (const char* gap : {"\u0081", "\u008D", "\u008F", "\u0090", "\u009D"})
                for (size_t at; (at = s.find(gap)) != std::string::npos;) s.replace(at, 2, "\uFFFD");
        }
        return jsString(s);
    }
    case T::ByteArray: {
        std::string out = "\"0x";
        for (uint8_t b : v.asBytes()) {
            std::snprintf(buf, sizeof buf, "%02X", b);
            out += buf;
        }
        return out + "\"";
    }
    }
    return "?";
}

// Our rows in the reader's notation and order: it meets a moved row where its data lies.
std::vector<std::string> rowsInReaderNotation(const jet::Database& db, const std::string& table) {
    const auto t = db.openTable(table);
    const auto& rows = t->rowLocations();
    std::vector<std::pair<uint32_t, size_t>> order;
    for (size_t i = 0; i < rows.size(); ++i) {
        const jet::DataPage page(db.format(), db.pager().read(rows[i].page));
        jet::RowLocation at = rows[i];
        if (page.isOverflowHeader(at.slot)) at = jet::RowLocation::fromPointer(jet::le32(page.row(at.slot).data()));
        order.emplace_back(at.pointer(), i);
    }
    std::stable_sort(order.begin(), order.end());
    std::vector<std::string> out;
    for (auto [key, i] : order) {
        const jet::RowReader r = t->reader(rows[i]);
        std::string line;
        for (const auto& c : t->def().columns())
            line += (line.empty() ? "[" : ",") + readerNotation(jet::readValue(db, c, r.column(c)), c, db);
        out.push_back(line + "]");
    }
    return out;
}

}  // namespace

bool oraclesAvailable() {
    return !runCommand("command -v mdb-export").empty() && !runCommand("command -v python3").empty() &&
           !runCommand("command -v node").empty() && fs::exists(oracles / "node_modules" / "mdb-reader");
}

std::vector<std::string> disagreements(const std::string& path) {
    std::vector<std::string> out;
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path);
    const jet::Database& db = *cn.database();
    for (const auto& issue : jet::check(db).issues) out.push_back("checker: " + issue.where + ": " + issue.problem);

    const bool cyrillic3 = db.version() == jet::Version::Jet3 && db.codePage().number() == 1251;
    const std::string env = cyrillic3 ? "MDB_JET3_CHARSET=CP1251 " : "";
    std::set<std::string> ours;
    for (const auto* e : db.catalog().userTables()) ours.insert(e->name);
    const auto listed = lines(runCommand(env + "mdb-tables -1 " + shellQuoted(path) + " 2>/dev/null"));
    if (std::set<std::string>(listed.begin(), listed.end()) != ours) out.push_back("mdb-tables lists other tables");
    const auto schema = mdbSchema(env, path);
    const auto reader = mdbReaderDump(path);
    if (reader.size() != ours.size()) out.push_back("mdb-reader lists " + std::to_string(reader.size()) + " tables");

    jet::testkit::TempDir dir;
    for (const std::string& name : ours) {
        const std::string where = "table " + name + ": ";
        std::vector<std::string> columns, readerColumns;
        std::string binary;
        for (const jet::Column& c : db.openTable(name)->def().columns()) {
            columns.push_back(c.name + " " + mdbToolsType(c, db.version()));
            readerColumns.push_back(c.name);
            if (c.type() == jet::ColumnType::Binary || c.type() == jet::ColumnType::Ole)
                binary += (binary.empty() ? "" : ",") + c.name;
        }
        if (auto s = schema.find(name); s == schema.end() || s->second != columns)
            out.push_back(where + "mdb-schema shows other columns");
        if (auto r = reader.find(name); r == reader.end() || r->second.columns != readerColumns)
            out.push_back(where + "mdb-reader shows other columns");
        else if (r->second.rows != rowsInReaderNotation(db, name))
            out.push_back(where + "mdb-reader reads other rows");

        jet::Recordset rs;
        rs.Open("SELECT * FROM [" + name + "]", cn);
        std::ostringstream csv;
        sheetwright::cli::exportCsv(rs, csv);
        jet::testkit::writeAll(dir.file("ours.csv"), csv.str());
        jet::testkit::writeAll(dir.file("theirs.csv"),
                               guidsAsText(runCommand(env + "mdb-export -T '%Y-%m-%d %H:%M:%S' -b hex " + shellQuoted(path) +
                                                      " " + shellQuoted(name) + " 2>/dev/null")));
        const std::string verdict =
            runCommand("BINARY_COLUMNS=" + shellQuoted(binary) + " python3 " + shellQuoted((oracles / "csv-compare.py").string()) +
                       " " + shellQuoted(dir.file("ours.csv")) + " " + shellQuoted(dir.file("theirs.csv")) + " 2>&1 || echo failed");
        if (!verdict.empty()) out.push_back(where + "mdb-export: " + verdict);
    }
    return out;
}

}  // namespace sheetwright::testing
