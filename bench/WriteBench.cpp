// The write side timed on an indexed table, with a data generator that uses our own writer:
//  1. insert N rows (default 100,000) into a copy of a fixture's indexed table, one
//     transaction, as sheetwright-cli load does;
//  2. update 10% of them (the indexed key and a text change) and delete another 10%, each
//     batch one transaction;
//  3. fill a table with M rows (default 1,000,000) and time a full scan: our CSV export in
//     process and as sheetwright-cli export, against mdb-export on the same file.
// Prints the times, rows per second and the ratios against mdb-export.
//
//   build/bench/jet_write_bench [N] [M] [FIXTURE]     (FIXTURE: compIndexTestV2003.mdb)

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <algorithm>
#include <random>

#include <unistd.h>
#include <string>

#include "CsvExport.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/Table.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

const char* const table = "Table1";  // CD_AGENTE Long (indexed), RS_AGENTE Text(55), DC_AGENTE Text(55)

double since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

std::vector<jet::Variant> rowValues(uint64_t k, std::mt19937_64& rng) {
    return {jet::Variant::longValue(int32_t(rng() % 2000000000)), jet::Variant::string("agent " + std::to_string(k)),
            jet::Variant::string("generated row " + std::to_string(k * 2654435761u % 100000))};
}

// Fills the table with `rows` generated rows in one transaction; returns seconds.
double generate(jet::Database& db, uint64_t rows, std::mt19937_64& rng) {
    const auto start = Clock::now();
    jet::Transaction tx(db);
    jet::TableWriter& writer = tx.table(table);
    for (uint64_t k = 0; k < rows; ++k) writer.insert(rowValues(k, rng));
    tx.commit();
    return since(start);
}

double timeCommand(const std::string& command) {
    const auto start = Clock::now();
    if (std::system(command.c_str()) != 0) std::fprintf(stderr, "failed: %s\n", command.c_str());
    return since(start);
}

void report(const char* what, uint64_t rows, double s) {
    std::printf("%-44s %9llu rows %9.2f s %11.0f rows/s\n", what, static_cast<unsigned long long>(rows), s, rows / s);
}

std::string copyFixture(const fs::path& dir, const std::string& fixture, const std::string& name) {
    const fs::path to = dir / name;
    fs::copy_file(fs::path(SHEETWRIGHT_MDB_FIXTURES) / fixture, to, fs::copy_options::overwrite_existing);
    return to.string();
}

}  // namespace

int main(int argc, char** argv) {
    const uint64_t n = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100000;
    const uint64_t m = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1000000;
    const std::string fixture = argc > 3 ? argv[3] : "compIndexTestV2003.mdb";
    const fs::path dir = fs::temp_directory_path() / ("sheetwright-bench-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    std::mt19937_64 rng(42);
    std::printf("fixture %s, table %s (indexed on CD_AGENTE)\n", fixture.c_str(), table);

    // 1 and 2: inserts, updates and deletes.
    const std::string small = copyFixture(dir, fixture, "insert.mdb");
    {
        auto db = jet::Database::open(small);
        report("insert, one transaction", n, generate(*db, n, rng));
        auto rows = db->openTable(table)->rowLocations();
        std::shuffle(rows.begin(), rows.end(), rng);
        const size_t tenth = rows.size() / 10;
        auto start = Clock::now();
        {
            jet::Transaction tx(*db);
            jet::TableWriter& writer = tx.table(table);
            for (size_t i = 0; i < tenth; ++i)
                writer.update(rows[i], {{0, jet::Variant::longValue(int32_t(rng() % 2000000000))},
                                        {2, jet::Variant::string("updated with a longer text " + std::to_string(i))}});
            tx.commit();
        }
        report("update 10% (key and text), one transaction", tenth, since(start));
        start = Clock::now();
        {
            jet::Transaction tx(*db);
            jet::TableWriter& writer = tx.table(table);
            for (size_t i = tenth; i < 2 * tenth; ++i) writer.remove(rows[i]);
            tx.commit();
        }
        report("delete 10%, one transaction", tenth, since(start));
        start = Clock::now();
        const auto check = jet::check(*db);
        std::printf("%-44s %s (%.2f s)\n", "integrity check", check.clean() ? "clean" : "PROBLEMS", since(start));
        for (size_t i = 0; i < check.issues.size() && i < 5; ++i)
            std::printf("  %s: %s\n", check.issues[i].where.c_str(), check.issues[i].problem.c_str());
    }

    // 3: the full scan of a large table.
    const std::string big = copyFixture(dir, fixture, "scan.mdb");
    {
        auto db = jet::Database::open(big);
        report("generate for the scan, one transaction", m, generate(*db, m, rng));
        const auto start = Clock::now();
        const auto check = jet::check(*db);
        std::printf("%-44s %s (%.2f s)\n", "integrity check of the large file", check.clean() ? "clean" : "PROBLEMS",
                    since(start));
        for (size_t i = 0; i < check.issues.size() && i < 5; ++i)
            std::printf("  %s: %s\n", check.issues[i].where.c_str(), check.issues[i].problem.c_str());
    }
    std::printf("file of %.1f MB\n", double(fs::file_size(big)) / 1e6);
    auto start = Clock::now();
    uint64_t scanned = 0;
    {
        jet::Connection cn;
        cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + big);
        jet::Recordset rs;
        rs.Open(std::string("SELECT * FROM ") + table, cn);
        std::ofstream devnull("/dev/null");
        scanned = sheetwright::cli::exportCsv(rs, devnull);
    }
    const double ours = since(start);
    report("full scan: our CSV export, in process", scanned, ours);
    const double cli = timeCommand(std::string(SHEETWRIGHT_BINARY_DIR) + "/tools/sheetwright-cli export '" + big + "' " +
                                   table + " --format csv > /dev/null");
    report("full scan: sheetwright-cli export", scanned, cli);
    const double mdb = timeCommand("mdb-export '" + big + "' " + table + " > /dev/null");
    report("full scan: mdb-export", scanned, mdb);
    std::printf("ratio mdb-export / ours: %.2f in process, %.2f as processes\n", mdb / ours, mdb / cli);
    fs::remove_all(dir);
    return 0;
}
