// Updates and deletes timed on an indexed table, with a data generator that uses our own
// writer (the large-table figures are jet_speed_bench's):
//  1. insert N rows (default 100,000) into a copy of a fixture's indexed table, one
//     transaction;
//  2. update 10% of them (the indexed key and a text change) and delete another 10%, each
//     batch one transaction, then check the file.
// Prints the times and rows per second.
//
//   build/bench/jet_write_bench [N] [FIXTURE]     (FIXTURE: compIndexTestV2003.mdb)

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include <unistd.h>

#include "jet/Checker.h"
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
    const std::string fixture = argc > 2 ? argv[2] : "compIndexTestV2003.mdb";
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

    fs::remove_all(dir);
    return 0;
}
