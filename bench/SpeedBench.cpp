// The engine's speed and memory on one large Jet 4 table (Long, Text(100), Double, Date,
// Boolean, Currency), each kind of work in a process of its own so that its peak resident
// memory is measured alone:
//   - CSV export (sheetwright-cli export) against mdb-export on the same file, whole process;
//   - a full scan in process (every value of every row through the record set);
//   - an insert of all the rows in one transaction, in process (journaled and synced);
//   - sheetwright-cli load of the same rows from CSV, whole process;
//   - an insert of 100,000 rows into a table with a text primary key and a text index.
// Each is run RUNS times on a fresh copy of its file; medians are printed, with the ratio
// reference / ours (above 1: we are faster).
//
//   build/bench/jet_speed_bench [ROWS] [RUNS]        (defaults 1000000 and 5)
//   build/bench/jet_speed_bench --memory [ROWS]      scan and export of a file of ROWS rows
//                                                    (default 10,000,000: about 1 GB)
// bench/instruction-counts runs the same work under callgrind, which the machine's load
// does not disturb.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include "BenchKit.h"
#include "jet/Connection.h"
#include "table/Database.h"
#include "jet/Recordset.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

const std::string cli = std::string(SHEETWRIGHT_BINARY_DIR) + "/tools/sheetwright-cli";
const char* const kIndexedFixture = "testIndexPropertiesV2003.mdb";
const char* const kIndexedTable = "TableIgnoreNulls1_temp";  // row Text(50) primary key, data Text(50) indexed
const uint64_t kIndexedRows = 100000;

double since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// Child modes: each prints the seconds of its own work (start-up and file copies excluded).

int scanMode(const std::string& file) {
    const auto start = Clock::now();
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + file);
    jet::Recordset rs;
    rs.Open(std::string("SELECT * FROM ") + bench::kBigTable, cn);
    const int32_t n = rs.Fields().Count();
    uint64_t values = 0;
    if (rs.RecordCount() > 0)
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
            for (int32_t i = 0; i < n; ++i) values += rs.Fields()[i].Value().isNull() ? 0 : 1;
    std::printf("%.6f %llu\n", since(start), static_cast<unsigned long long>(values));
    return 0;
}

int insertMode(const std::string& file, uint64_t rows) {
    const auto start = Clock::now();
    bench::insertBigRows(file, 0, rows);
    std::printf("%.6f\n", since(start));
    return 0;
}

int insertIndexedMode(const std::string& file, uint64_t rows) {
    const auto start = Clock::now();
    auto db = jet::Database::open(file);
    jet::Transaction tx(*db);
    jet::TableWriter& writer = tx.table(kIndexedTable);
    for (uint64_t k = 0; k < rows; ++k) {
        // Keys arrive in no particular order, as a user's data does.
        const uint64_t key = k * 2654435761u % 1000003;
        writer.insert({jet::Variant::string("row " + std::to_string(key)),
                       jet::Variant::string(bench::bigRow(k)[1].asString().substr(0, 50))});
    }
    tx.commit();
    std::printf("%.6f\n", since(start));
    return 0;
}

double childSeconds(const bench::Run& run) { return run.ok ? std::atof(run.output.c_str()) : 0; }

void requireOk(const bench::Run& run, const std::string& what) {
    if (!run.ok) {
        std::fprintf(stderr, "failed: %s\n", what.c_str());
        std::exit(1);
    }
}

struct Series {
    std::vector<double> seconds, mb;
    void add(double s, double m) {
        seconds.push_back(s);
        mb.push_back(m);
    }
    double s() const { return bench::median(seconds); }
    double m() const { return bench::median(mb); }
};

void makeBigFile(const std::string& emptyFile, const std::string& bigFile, uint64_t rows) {
    bench::createBigTableFile(emptyFile);
    fs::copy_file(emptyFile, bigFile, fs::copy_options::overwrite_existing);
    const auto start = Clock::now();
    // In slices, so that generating a file far larger than memory stays possible.
    const uint64_t slice = 1000000;
    for (uint64_t first = 0; first < rows; first += slice) {
        const auto r = bench::runProcess({bench::selfPath(), "--insert-at", bigFile, std::to_string(first),
                                          std::to_string(std::min(slice, rows - first))});
        requireOk(r, "generating the rows");
    }
    std::printf("generated %llu rows, %.1f MB, in %.1f s\n", static_cast<unsigned long long>(rows),
                double(fs::file_size(bigFile)) / 1e6, since(start));
}

void exportAndScan(const std::string& bigFile, int runs, bool haveMdb, uint64_t rows) {
    Series ours, mdb, scan;
    const std::string rowsText = std::to_string(rows);
    for (int r = 0; r < runs; ++r) {
        auto e = bench::runShell(cli + " export '" + bigFile + "' " + bench::kBigTable + " --format csv >/dev/null");
        requireOk(e, "sheetwright-cli export");
        ours.add(e.seconds, e.peakMb);
        if (haveMdb) {
            auto m = bench::runShell("mdb-export '" + bigFile + "' " + bench::kBigTable + " >/dev/null");
            requireOk(m, "mdb-export");
            mdb.add(m.seconds, m.peakMb);
        }
        auto s = bench::runProcess({bench::selfPath(), "--scan", bigFile});
        requireOk(s, "the scan");
        scan.add(childSeconds(s), s.peakMb);
    }
    bench::printLine("CSV export of " + rowsText + " rows, whole process", ours.s(), mdb.s(), ours.m(), mdb.m());
    bench::printLine("full scan of " + rowsText + " rows, in process", scan.s(), 0, scan.m(), 0);
}

void writes(const std::string& dir, const std::string& emptyFile, const std::string& csv, int runs, uint64_t rows) {
    Series insert, load, indexed;
    const std::string work = dir + "/work.mdb";
    for (int r = 0; r < runs; ++r) {
        fs::copy_file(emptyFile, work, fs::copy_options::overwrite_existing);
        auto i = bench::runProcess({bench::selfPath(), "--insert", work, std::to_string(rows)});
        requireOk(i, "the insert");
        insert.add(childSeconds(i), i.peakMb);

        fs::copy_file(emptyFile, work, fs::copy_options::overwrite_existing);
        auto l = bench::runShell(cli + " load '" + work + "' " + bench::kBigTable + " '" + csv + "' >/dev/null");
        requireOk(l, "sheetwright-cli load");
        load.add(l.seconds, l.peakMb);

        fs::copy_file(fs::path(SHEETWRIGHT_MDB_FIXTURES) / kIndexedFixture, work, fs::copy_options::overwrite_existing);
        auto x = bench::runProcess({bench::selfPath(), "--insert-indexed", work, std::to_string(kIndexedRows)});
        requireOk(x, "the indexed insert");
        indexed.add(childSeconds(x), x.peakMb);
    }
    const std::string rowsText = std::to_string(rows);
    bench::printLine("insert " + rowsText + " rows, one transaction, in process", insert.s(), 0, insert.m(), 0);
    bench::printLine("sheetwright-cli load of " + rowsText + " rows, whole process", load.s(), 0, load.m(), 0);
    bench::printLine("insert 100000 rows, text key + text index, in process", indexed.s(), 0, indexed.m(), 0);
    std::printf("%-52s %9.0f rows/s\n", "  indexed insert rate", double(kIndexedRows) / indexed.s());
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (!args.empty() && args[0] == "--scan" && args.size() == 2) return scanMode(args[1]);
    if (!args.empty() && args[0] == "--insert" && args.size() == 3) return insertMode(args[1], std::stoull(args[2]));
    if (!args.empty() && args[0] == "--insert-indexed" && args.size() == 3)
        return insertIndexedMode(args[1], std::stoull(args[2]));
    if (!args.empty() && args[0] == "--create" && args.size() == 2) {
        bench::createBigTableFile(args[1]);
        return 0;
    }
    if (!args.empty() && args[0] == "--insert-at" && args.size() == 4) {
        bench::insertBigRows(args[1], std::stoull(args[2]), std::stoull(args[3]));
        return 0;
    }
    const bool memoryOnly = !args.empty() && args[0] == "--memory";
    const size_t at = memoryOnly ? 1 : 0;
    const uint64_t rows = args.size() > at ? std::stoull(args[at]) : memoryOnly ? 10000000 : 1000000;
    const int runs = !memoryOnly && args.size() > 1 ? std::max(1, std::stoi(args[1])) : memoryOnly ? 3 : 5;

    const fs::path dir = fs::temp_directory_path() / ("sheetwright-speed-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    const std::string emptyFile = (dir / "empty.mdb").string(), bigFile = (dir / "big.mdb").string();
    const std::string csv = (dir / "big.csv").string();
    const bool haveMdb = bench::haveProgram("mdb-export");
    std::printf("load average at start: ");
    std::fflush(stdout);
    bench::runShell("cut -d' ' -f1-3 /proc/loadavg");
    makeBigFile(emptyFile, bigFile, rows);
    bench::printHeader();
    exportAndScan(bigFile, runs, haveMdb, rows);
    if (!memoryOnly) {
        requireOk(bench::runShell(cli + " export '" + bigFile + "' " + bench::kBigTable + " --format csv >'" + csv + "'"),
                  "writing the CSV");
        writes(dir.string(), emptyFile, csv, runs, rows);
    }
    std::printf("medians of %d runs; ref/us above 1 means we are faster; MB is peak resident memory\n", runs);
    std::printf("load average at end: ");
    std::fflush(stdout);
    bench::runShell("cut -d' ' -f1-3 /proc/loadavg");
    fs::remove_all(dir);
    return 0;
}
