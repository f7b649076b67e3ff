// Times opening a database and reading every value of every user table, for each fixture
// file, against Debian's mdb-export doing the same work (one process per table, output
// thrown away), and prints the ratio.
//
//   build/bench/jet_scan_bench [FOLDER] [REPEAT]
//
// FOLDER defaults to the fixtures, REPEAT (default 20) is how often each file is read;
// "values" counts the non-null values read per pass.
// Our side is timed twice: in process (what the editor does) and as sheetwright-cli
// export processes (the same shape of work as mdb-export, start-up included).

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "jet/Connection.h"
#include "jet/Recordset.h"
#include "table/Database.h"

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

double seconds(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double>(b - a).count(); }

std::vector<std::string> userTables(const std::string& file) {
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + file);
    auto rs = cn.OpenSchema(jet::ado::SchemaTables, {{}, {}, {}, jet::Variant::string("TABLE")});
    std::vector<std::string> names;
    if (rs->RecordCount() > 0)
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext()) names.push_back(rs->Fields()["TABLE_NAME"].Value().asString());
    return names;
}

// Opens the file and reads every value of every table; returns the number of values.
size_t scanFile(const std::string& file, const std::vector<std::string>& tables) {
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + file);
    size_t values = 0;
    for (const auto& t : tables) {
        jet::Recordset rs;
        rs.Open("SELECT * FROM [" + t + "]", cn);
        const int32_t n = rs.Fields().Count();
        if (rs.RecordCount() == 0) continue;
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
            for (int32_t i = 0; i < n; ++i) values += rs.Fields()[i].Value().isNull() ? 0 : 1;
    }
    return values;
}

double runProcesses(const std::string& program, const std::string& file, const std::vector<std::string>& tables,
                    const std::string& suffix) {
    auto start = Clock::now();
    for (const auto& t : tables) {
        std::string cmd = program + " '" + file + "' '" + t + "'" + suffix + " >/dev/null 2>&1";
        if (std::system(cmd.c_str()) != 0) std::fprintf(stderr, "failed: %s\n", cmd.c_str());
    }
    return seconds(start, Clock::now());
}

}  // namespace

int main(int argc, char** argv) {
    fs::path folder = argc > 1 && *argv[1] ? fs::path(argv[1]) : fs::path(SHEETWRIGHT_MDB_FIXTURES);
    int repeat = argc > 2 ? std::max(1, std::atoi(argv[2])) : 20;
    const std::string cli = std::string(SHEETWRIGHT_BINARY_DIR) + "/tools/sheetwright-cli export";
    std::vector<fs::path> files;
    for (const auto& e : fs::directory_iterator(folder))
        if (e.path().extension() == ".mdb") files.push_back(e.path());
    std::sort(files.begin(), files.end());

    std::printf("%-30s %6s %8s | %10s %10s %10s | %7s %7s\n", "file", "tables", "values", "in-proc ms", "cli ms",
                "mdb ms", "mdb/in", "mdb/cli");
    double totalIn = 0, totalCli = 0, totalMdb = 0;
    for (const auto& f : files) {
        const std::string file = f.string();
        auto tables = userTables(file);
        size_t values = 0;
        auto start = Clock::now();
        for (int r = 0; r < repeat; ++r) values = scanFile(file, tables);
        double in = seconds(start, Clock::now()) / repeat;
        double viaCli = 0, viaMdb = 0;
        for (int r = 0; r < repeat; ++r) {
            viaCli += runProcesses(cli, file, tables, " --format csv");
            viaMdb += runProcesses("mdb-export", file, tables, "");
        }
        viaCli /= repeat;
        viaMdb /= repeat;
        totalIn += in;
        totalCli += viaCli;
        totalMdb += viaMdb;
        std::printf("%-30s %6zu %8zu | %10.3f %10.3f %10.3f | %7.1f %7.2f\n", f.filename().c_str(), tables.size(), values,
                    in * 1e3, viaCli * 1e3, viaMdb * 1e3, in > 0 ? viaMdb / in : 0.0, viaCli > 0 ? viaMdb / viaCli : 0.0);
    }
    std::printf("%-30s %6s %8s | %10.3f %10.3f %10.3f | %7.1f %7.2f\n", "all files", "", "", totalIn * 1e3,
                totalCli * 1e3, totalMdb * 1e3, totalMdb / totalIn, totalMdb / totalCli);
    std::printf("ratios above 1 mean the engine is faster than mdb-export (per file, mean of %d runs)\n", repeat);
    return 0;
}
