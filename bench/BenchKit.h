#pragma once
// What the benchmarks share: running a piece of work in a process of its own (so that its
// peak resident memory is its own), medians over several runs, and the generator of the
// large test table.
//
// The large table is what a user with real data has: Long, Text(100), Double, Date,
// Boolean and Currency columns, one row per customer-like record, about 97 bytes a row on
// disk. The rows are a pure function of their number, so every run and every generator
// (in-process inserts, the CSV for load) produce the same data.

#include <cstdint>
#include <string>
#include <vector>

#include "jet/Variant.h"

namespace bench {

// Wall time and peak resident memory of one process.
struct Run {
    double seconds = 0;
    double peakMb = 0;
    std::string output;  // its standard output
    bool ok = false;
};

// Runs argv (argv[0] a path) with standard output captured, standard error passed through.
Run runProcess(const std::vector<std::string>& argv);
// Runs a shell command line; its output goes wherever the command line sends it.
Run runShell(const std::string& commandLine);

double median(std::vector<double> values);

// The bench executable itself, for running one of its own modes as a child process.
std::string selfPath();
bool haveProgram(const std::string& name);

// The large table's name, its CREATE TABLE statement and row `k` of it.
extern const char* const kBigTable;
extern const char* const kBigTableSql;
std::vector<jet::Variant> bigRow(uint64_t k);

// A new Jet 4 database with the empty large table.
void createBigTableFile(const std::string& path);
// Appends rows [first, first + count) to the large table in one transaction.
void insertBigRows(const std::string& path, uint64_t first, uint64_t count);

// One line of figures: what, our time, the reference's (0 when none), ratio, peak memory.
void printHeader();
void printLine(const std::string& what, double ours, double reference, double oursMb, double referenceMb);

}  // namespace bench
