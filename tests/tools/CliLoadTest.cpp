// sheetwright-cli load: CSV rows appended through the record set in one transaction, in the
// forms the export prints; any bad row leaves the file exactly as it was.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "CsvImport.h"
#include "testkit/WritableCopy.h"

namespace {

using jet::testkit::readAll;
using jet::testkit::WritableCopy;

struct CliRun {
    int status = -1;
    std::string out, err;
};

CliRun cli(const WritableCopy& copy, const std::string& args) {
    const std::string out = copy.dir().file("out"), err = copy.dir().file("err");
    const std::string cmd = std::string(SHEETWRIGHT_BINARY_DIR) + "/tools/sheetwright-cli " + args + " >" + out + " 2>" + err;
    const int rc = std::system(cmd.c_str());
    return {WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, readAll(out), readAll(err)};
}

std::string csvFile(const WritableCopy& copy, const std::string& text) {
    const std::string path = copy.dir().file("in.csv");
    jet::testkit::writeAll(path, text);
    return path;
}

TEST(CliLoad, AppendsRowsWithColumnsInAnyOrderNullsQuotesAndLineBreaks) {
    WritableCopy copy("testV2000.mdb");
    const std::string csv = csvFile(copy,
                                    "I,H,a,G,C,B\r\n"
                                    "1,12.5000,\"x, \"\"quoted\"\"\",\"1974-09-21 10:20:30\",7,\r\n"
                                    "0,,\"two\nlines\",,255,\"\"\r\n");
    CliRun r = cli(copy, "load '" + copy.path() + "' Table1 '" + csv + "'");
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("2 rows loaded into Table1\n", r.out);
    CliRun exported = cli(copy, "export '" + copy.path() + "' Table1 --format csv");
    ASSERT_EQ(0, exported.status) << exported.err;
    EXPECT_NE(std::string::npos,
              exported.out.find("\"x, \"\"quoted\"\"\",,7,,,,\"1974-09-21 10:20:30\",12.5000,1\n"))
        << exported.out;
    // Null (empty unquoted) and the empty text ("") stay different.
    EXPECT_NE(std::string::npos, exported.out.find("\"two\nlines\",\"\",255,,,,,,0\n")) << exported.out;
    EXPECT_EQ(0, cli(copy, "check '" + copy.path() + "'").status);
}

std::string csvText(const std::vector<sheetwright::cli::CsvRecord>& records) {
    std::string out;
    for (const auto& r : records) {
        for (size_t i = 0; i < r.size(); ++i) {
            if (i) out += ',';
            if (!r[i].quoted) {
                out += r[i].text;
                continue;
            }
            out += '"';
            for (char c : r[i].text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
            out += '"';
        }
        out += '\n';
    }
    return out;
}

std::vector<sheetwright::cli::CsvRecord> parse(const std::string& text) {
    std::istringstream in(text);
    std::vector<sheetwright::cli::CsvRecord> out;
    sheetwright::cli::CsvRecord r;
    while (sheetwright::cli::readCsvRecord(in, r)) out.push_back(r);
    return out;
}

// An exported table loaded into an empty twin reads back the same; a row of memo and hex
// OLE data loaded again under new keys reads back the same values.
TEST(CliLoad, WhatTheExportPrintsLoadsBackUnchanged) {
    WritableCopy copy("testIndexPropertiesV2003.mdb");
    CliRun original = cli(copy, "export '" + copy.path() + "' TableIgnoreNulls2 --format csv");
    ASSERT_EQ(0, original.status);
    CliRun r = cli(copy, "load '" + copy.path() + "' TableIgnoreNulls2_temp '" + csvFile(copy, original.out) + "'");
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ(original.out, cli(copy, "export '" + copy.path() + "' TableIgnoreNulls2_temp --format csv").out);
    EXPECT_EQ(0, cli(copy, "check '" + copy.path() + "'").status);

    for (const char* file : {"test2V1997.mdb", "test2V2003.mdb"}) {
        WritableCopy projects(file);
        CliRun before = cli(projects, "export '" + projects.path() + "' MSP_PROJECTS --format csv");
        auto records = parse(before.out);
        ASSERT_EQ(2u, records.size());
        auto row = records[1];
        for (size_t i = 0; i < records[0].size(); ++i) {
            if (records[0][i].text == "PROJ_ID") row[i].text = "4242";
            if (records[0][i].text == "PROJ_NAME") row[i].text = "loaded again";
        }
        r = cli(projects, "load '" + projects.path() + "' MSP_PROJECTS '" + csvFile(projects, csvText({records[0], row})) + "'");
        ASSERT_EQ(0, r.status) << r.err;
        auto after = parse(cli(projects, "export '" + projects.path() + "' MSP_PROJECTS --format csv").out);
        ASSERT_EQ(3u, after.size());
        for (size_t i = 0; i < row.size(); ++i) EXPECT_EQ(row[i].text, after[2][i].text) << records[0][i].text;
        EXPECT_EQ(0, cli(projects, "check '" + projects.path() + "'").status);
    }
}

TEST(CliLoad, ABadRowAnywhereLeavesTheFileAsItWas) {
    WritableCopy copy("testIndexPropertiesV2003.mdb");
    const std::string original = readAll(copy.path());
    struct Case {
        const char* table;
        const char* csv;
        const char* error;
    } cases[] = {
        {"TableUnique1_temp", "row,data\n\"n1\",\"d1\"\n\"n2\",\"stuff\"\n", "-2147217873"},  // duplicate unique key
        {"TableUnique1_temp", "row,data\n\"n1\",\"d1\"\n\"n1\",\"d2\"\n", "-2147217873"},     // clash inside the file
        {"TableIgnoreNulls2", "row,data2\n\"n1\",5\n\"n2\",\"five\"\n", "line 3"},             // not a number
        {"TableIgnoreNulls2", "row,nothere\n\"n1\",5\n", "3265"},                               // unknown column
        {"TableIgnoreNulls2", "row,data1\n\"n1\",\"" "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx" "\"\n", "line 2"},
        {"TableIgnoreNulls2", "row,data1\n\"n1\",\"open\n", "never closed"},
    };
    for (const auto& c : cases) {
        CliRun r = cli(copy, std::string("load '") + copy.path() + "' " + c.table + " '" + csvFile(copy, c.csv) + "'");
        EXPECT_EQ(1, r.status) << c.csv;
        EXPECT_NE(std::string::npos, r.err.find(c.error)) << c.csv << " gave: " << r.err;
        EXPECT_EQ(original, readAll(copy.path())) << c.csv;
    }
    EXPECT_EQ(2, cli(copy, "load '" + copy.path() + "' TableUnique1_temp").status) << "usage error";
}

}  // namespace
