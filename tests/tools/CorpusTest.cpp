// Every table of every fixture, read and written. Read: the export of each user table
// against the reference export kept in expected/ (compared by the same script that
// compares with mdb-export, which forgives only that tool's documented faults). Written:
// on a copy, inserts, updates and deletes in every user table through the record set as the
// table engine uses it, with values of every column type; afterwards the independent
// readers read exactly what we read, and the checker finds nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <set>
#include <sstream>

#include "CsvExport.h"
#include "Oracles.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/Table.h"
#include "testkit/Session.h"
#include "testkit/ValueSamples.h"

namespace {

namespace fs = std::filesystem;
using namespace jet::testkit;

// The length of the first n records of a CSV text (all of it when it has fewer), and how
// many records that is.
std::pair<size_t, size_t> csvRecords(const std::string& text, size_t n = SIZE_MAX) {
    size_t count = 0, i = 0;
    for (bool quoted = false; i < text.size() && count < n; ++i) {
        if (text[i] == '"') quoted = !quoted;
        else if (text[i] == '\n' && !quoted) ++count;
    }
    return {i, count};
}

class Corpus : public ::testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Fixtures, Corpus, ::testing::ValuesIn(fixtureNames()),
                         [](const auto& info) { return fs::path(info.param).stem().string(); });

TEST_P(Corpus, EveryTableReadsAsTheReferenceExportsIt) {
    const fs::path expected = fs::path(SHEETWRIGHT_MDB_FIXTURES) / "expected" / fs::path(GetParam()).stem();
    std::set<std::string> referenceTables;
    if (fs::exists(expected))
        for (const auto& e : fs::directory_iterator(expected))
            referenceTables.insert(e.path().stem().replace_extension().string());  // Table6.iso.csv: Table6
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + fixturePath(GetParam()));
    std::set<std::string> ours;
    for (const auto* e : cn.database()->catalog().userTables()) ours.insert(e->name);
    EXPECT_EQ(referenceTables, ours);
    TempDir dir;
    for (const std::string& name : ours) {
        fs::path reference = expected / (name + ".iso.csv");
        if (!fs::exists(reference)) reference = expected / (name + ".csv");
        std::string binary;
        for (const jet::Column& c : cn.database()->openTable(name)->def().columns())
            if (c.type() == jet::ColumnType::Binary || c.type() == jet::ColumnType::Ole) binary += c.name + ",";
        jet::Recordset rs;
        rs.Open("SELECT * FROM [" + name + "]", cn);
        std::ostringstream csv;
        sheetwright::cli::exportCsv(rs, csv);
        // The reference files of the largest tables hold only their first 200 records.
        std::string cut = csv.str();
        if (const size_t records = csvRecords(readAll(reference.string())).second; records == 201)
            cut.resize(csvRecords(cut, records).first);
        writeAll(dir.file("ours.csv"), cut);
        EXPECT_EQ("", runCommand("BINARY_COLUMNS='" + binary + "' python3 '" SHEETWRIGHT_SOURCE_DIR
                                 "/tests/oracles/csv-compare.py' '" + dir.file("ours.csv") + "' '" + reference.string() +
                                 "' 2>&1 || echo failed"))
            << name;
    }
}

// One pass over a table: three new rows, the first row rewritten, the last old row deleted.
// Tries other values when a sample happens to repeat a unique key.
void changeTable(jet::Connection& cn, const jet::Table& table, std::mt19937_64& rng, uint64_t& unique) {
    const jet::Version version = cn.database()->version();
    auto assignAll = [&](jet::Recordset& rs) {
        for (const auto& c : table.def().columns())
            if (!c.isAutoNumber() && !(c.flags & jet::column_flag::GuidAutoNumber))
                rs.Fields()[c.name].setValue(sampleValue(c, version, rng, ++unique));
    };
    for (int attempt = 0;; ++attempt) {
        jet::Recordset rs;
        rs.Open("SELECT * FROM [" + table.name() + "]", cn, 2, 4);
        const int before = rs.RecordCount();
        try {
            for (int k = 0; k < 3; ++k) {
                rs.AddNew();
                assignAll(rs);
            }
            if (before > 0) {
                rs.MoveFirst();
                assignAll(rs);
            }
            rs.UpdateBatch(3);
            if (before > 1) {
                rs.MoveFirst();
                rs.Move(before - 1);
                rs.Delete(1);
            }
            return;
        } catch (const jet::RuntimeError& e) {
            if (e.number() != jet::err::IntegrityViolation || attempt == 5) FAIL() << table.name() << ": " << e.description();
        }
    }
}

TEST_P(Corpus, ChangesInEveryTableCheckCleanAndReadTheSameEverywhere) {
    WritableCopy copy(GetParam(), TempDir::Place::InMemory);
    {
        jet::Connection cn;
        cn.Open(copy.connectionString());
        std::mt19937_64 rng(std::hash<std::string>{}(GetParam()));
        uint64_t unique = 1000;
        for (const auto* e : cn.database()->catalog().userTables()) changeTable(cn, *cn.database()->openTable(e->name), rng, unique);
    }
    if (!sheetwright::testing::oraclesAvailable()) {
        EXPECT_EQ("", issuesOf(jet::check(copy.path())));
        GTEST_SKIP() << "mdbtools, python3 or mdb-reader missing (scripts/test installs them): only checked";
    }
    for (const std::string& d : sheetwright::testing::disagreements(copy.path())) ADD_FAILURE() << d;
}

}  // namespace
