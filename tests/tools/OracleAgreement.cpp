#include "OracleAgreement.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "CsvExport.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Database.h"
#include "jet/Recordset.h"
#include "jet/Table.h"
#include "jet/ValueReader.h"
#include "testkit/MdbReaderDump.h"
#include "testkit/TempDir.h"

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
    case T::Numeric:
        return "Numeric (" + std::to_string(c.precision) + ", " + std::to_string(c.scale) + ")";
    }
    return "?";
}

// mdb-schema's tables: name -> lines "column type".
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
            if (type.size() > 9 && type.compare(type.size() - 9, 9, " NOT NULL") == 0) type.resize(type.size() - 9);
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
        std::string text = "\"{";
        for (size_t i = 0; i < hex.size(); i += 2) text += char(std::stoi(hex.substr(i, 2), nullptr, 16));
        out += text + "}\"";
        last = (*it)[0].second;
    }
    out.append(last, csv.cend());
    return out;
}

}  // namespace

bool oraclesAvailable() {
    return !runCommand("command -v mdb-export").empty() && !runCommand("command -v python3").empty() &&
           jet::testkit::mdbReaderAvailable();
}

std::vector<std::string> disagreements(const std::string& path) {
    std::vector<std::string> out;
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path);
    const jet::Database& db = *cn.database();
    jet::CheckReport report = jet::check(db);
    for (const auto& issue : report.issues) out.push_back("checker: " + issue.where + ": " + issue.problem);

    const bool cyrillic3 = db.version() == jet::Version::Jet3 && db.codePage().number() == 1251;
    const std::string env = cyrillic3 ? "MDB_JET3_CHARSET=CP1251 " : "";
    std::set<std::string> ours;
    for (const auto* e : db.catalog().userTables()) ours.insert(e->name);

    const auto listed = lines(runCommand(env + "mdb-tables -1 " + shellQuoted(path) + " 2>/dev/null"));
    if (std::set<std::string>(listed.begin(), listed.end()) != ours) out.push_back("mdb-tables lists other tables");
    const auto schema = mdbSchema(env, path);
    const auto reader = jet::testkit::mdbReaderDump(path);
    if (reader.size() != ours.size()) out.push_back("mdb-reader lists " + std::to_string(reader.size()) + " tables");

    jet::testkit::TempDir dir;
    for (const std::string& name : ours) {
        const std::string where = "table " + name + ": ";
        const auto table = db.openTable(name);
        std::vector<std::string> columns, readerColumns;
        std::string binary;
        for (const jet::Column& c : table->def().columns()) {
            columns.push_back(c.name + " " + mdbToolsType(c, db.version()));
            readerColumns.push_back(c.name);
            if (c.type() == jet::ColumnType::Binary || c.type() == jet::ColumnType::Ole)
                binary += (binary.empty() ? "" : ",") + c.name;
        }
        auto s = schema.find(name);
        if (s == schema.end() || s->second != columns) out.push_back(where + "mdb-schema shows other columns");
        auto r = reader.find(name);
        if (r == reader.end()) {
            out.push_back(where + "mdb-reader does not list it");
        } else {
            if (r->second.columns != readerColumns) out.push_back(where + "mdb-reader shows other columns");
            if (r->second.rows != jet::testkit::rowsInReaderNotation(db, name))
                out.push_back(where + "mdb-reader reads other rows");
        }

        jet::Recordset rs;
        rs.Open("SELECT * FROM [" + name + "]", cn);
        std::ostringstream csv;
        sheetwright::cli::exportCsv(rs, csv);
        const std::string mine = dir.file("ours.csv"), theirs = dir.file("theirs.csv");
        std::ofstream(mine, std::ios::binary) << csv.str();
        const std::string exported = runCommand(env + "mdb-export -T '%Y-%m-%d %H:%M:%S' -b hex " + shellQuoted(path) +
                                                " " + shellQuoted(name) + " 2>/dev/null");
        std::ofstream(theirs, std::ios::binary) << guidsAsText(exported);
        const std::string verdict = runCommand("BINARY_COLUMNS=" + shellQuoted(binary) + " python3 " +
                                               shellQuoted((oracles / "csv-compare.py").string()) + " " + shellQuoted(mine) +
                                               " " + shellQuoted(theirs) + " 2>&1 || echo failed");
        if (!verdict.empty()) out.push_back(where + "mdb-export: " + verdict);
    }
    return out;
}

}  // namespace sheetwright::testing
