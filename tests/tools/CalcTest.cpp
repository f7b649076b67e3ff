// sheetwright-cli calc: ranges in spreadsheet notation and a statistic through the table
// engine, in the number type of the registry or of --type.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <filesystem>

#include "CellRanges.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using sheetwright::cli::CellRange;
using sheetwright::cli::parseCellRanges;

struct CalcRun {
    int status = -1;
    std::string out, err;
};

// indexTestV1997 Table1 (id, otherfk1, otherfk2, data, otherfk3):
//   0,0,10,baz0,0 / 1,1,11,baz11,0 / 2,1,11,baz11-2,0 / 3,2,13,baz13,0
class Calc : public ::testing::Test {
protected:
    // Runs calc on the copy with a registry folder of the test's own.
    CalcRun calc(const std::string& args)
    {
        const std::string cmd = "SHEETWRIGHT_REGISTRY='" + registry.path() + "' " + SHEETWRIGHT_BINARY_DIR +
                                "/tools/sheetwright-cli calc '" + copy.path() + "' " + args + " >" + out.file("out") +
                                " 2>" + out.file("err");
        const int rc = std::system(cmd.c_str());
        return {WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, readAll(out.file("out")), readAll(out.file("err"))};
    }
    std::string result(const std::string& args)
    {
        const CalcRun run = calc(args);
        EXPECT_EQ(run.status, 0) << args << ": " << run.err;
        return run.out;
    }
    void expectError(const std::string& args, const std::string& what)
    {
        const CalcRun run = calc(args);
        EXPECT_EQ(run.status, 1) << args;
        EXPECT_NE(run.err.find(what), std::string::npos) << args << ": " << run.err;
    }

    WritableCopy copy{"indexTestV1997.mdb"};
    TempDir registry;
    TempDir out;
};

}  // namespace

TEST(CellRanges, SpreadsheetNotationWithCornersPutInOrder)
{
    EXPECT_EQ(parseCellRanges("B2:C10"), std::vector<CellRange>({{2, 2, 3, 10}}));
    EXPECT_EQ(parseCellRanges("c10:b2, AA1 ,e5:E5"), std::vector<CellRange>({{2, 2, 3, 10}, {27, 1, 27, 1}, {5, 5, 5, 5}}));
    EXPECT_EQ(parseCellRanges("ZZ3:A1"), std::vector<CellRange>({{1, 1, 702, 3}}));
    for (const char* bad : {"", "B", "2", "B0", "1B", "B2:", "B2:C", "B2;C3", "B2,,C3", "B-2", "ABCDE1", "A1234567890"})
        EXPECT_THROW(parseCellRanges(bad), std::invalid_argument) << bad;
}

TEST_F(Calc, PrintsTheStatisticOverTheRangesInTheNumberTypeAsked)
{
    EXPECT_EQ(result("Table1 B1:C4 Summ"), "49\n");
    EXPECT_EQ(result("table1 C4:B1 summ"), "49\n");
    EXPECT_EQ(result("Table1 B1:B4,C1 9"), "14\n");
    EXPECT_EQ(result("Table1 C1:C4 Max"), "13\n");
    EXPECT_EQ(result("Table1 B1:C4 Multunomial"), "8447342188747228169348532787200\n");
    EXPECT_EQ(result("Table1 C1:C4 MidHarmonic"), "11.1500974658869\n");
    EXPECT_EQ(result("Table1 C1:C4 MidHarmonic --type 1"), "11.150097465886939571150097465886939571150097465887\n");
    // 77 digits, the last of them a 0 that is dropped.
    EXPECT_EQ(result("Table1 C1:C4 12 --type 2"),
              "11.15009746588693957115009746588693957115009746588693957115009746588693957115\n");
    // Without --type the user's setting counts; --type leaves it as it is.
    writeAll(registry.file("HKEY_LOCAL_MACHINE.ini"), "[Software\\Vorbex\\Pro]\nTypeNum=1\n");
    EXPECT_EQ(result("Table1 C1:C4 MidHarmonic"), "11.150097465886939571150097465886939571150097465887\n");
    EXPECT_EQ(result("Table1 C1:C4 MidHarmonic --type 0"), "11.1500974658869\n");
    EXPECT_EQ(readAll(registry.file("HKEY_LOCAL_MACHINE.ini")), "[Software\\Vorbex\\Pro]\nTypeNum=1\n");
}

TEST_F(Calc, WhatCannotBeComputedIsOneLineOnStandardError)
{
    expectError("Table1 D1:D4 Summ", "Summ: The list holds no numbers");
    expectError("Table1 A1:A9 Summ", "error 3021");  // past the last record
    expectError("Nope A1 Summ", "no table 'Nope'");
    for (const char* usage : {"Table1 A1 Bogus", "Table1 A1 15", "Table1 A1 0", "Table1 1A Summ", "Table1 A1 Summ --type 3",
                              "Table1 A1", "Table1 A1 Summ --kind 1"})
        EXPECT_EQ(calc(usage).status, 2) << usage;
}
