// sheetwright-cli as a user runs it: output, exit status, and one-line errors.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

struct CliRun {
    int status = -1;
    std::string out, err;
};

std::string slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

CliRun cli(const std::string& args) {
    fs::path dir = fs::temp_directory_path() / ("sw_cli_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    std::string cmd = std::string(SHEETWRIGHT_BINARY_DIR) + "/tools/sheetwright-cli " + args + " >" +
                      (dir / "out").string() + " 2>" + (dir / "err").string();
    CliRun r;
    int rc = std::system(cmd.c_str());
    r.status = WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
    r.out = slurp(dir / "out");
    r.err = slurp(dir / "err");
    fs::remove_all(dir);
    return r;
}

std::string fixture(const std::string& name) { return "'" + std::string(SHEETWRIGHT_MDB_FIXTURES) + "/" + name + "'"; }

size_t lines(const std::string& s) { return size_t(std::count(s.begin(), s.end(), '\n')); }

TEST(Cli, TablesListsUserTablesInSchemaOrder) {
    CliRun r = cli("tables " + fixture("testIndexCodesV1997.mdb"));
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(29u, lines(r.out));
    EXPECT_EQ(0u, r.out.find("Table1\nTable1_desc\nTable10\nTable10_desc\nTable11\n"));
    EXPECT_TRUE(r.err.empty());
    CliRun empty = cli("tables " + fixture("empty.mdb"));
    EXPECT_EQ(0, empty.status);
    EXPECT_EQ("", empty.out);
}

TEST(Cli, ExportKeepsOverflowRowsInTheirOriginalSlots) {
    CliRun r = cli("export " + fixture("overflowTestV2000.mdb") + " table1 --format csv");
    ASSERT_EQ(0, r.status) << r.err;
    std::istringstream in(r.out);
    std::string line, firstFields;
    std::getline(in, line);
    EXPECT_EQ("data1,data3,data4,data5,data6,data7,data8,data9,data10", line);
    std::vector<std::string> rows;
    while (std::getline(in, line)) rows.push_back(line);
    ASSERT_EQ(7u, rows.size());
    EXPECT_EQ(",\"row3col3\",,,,,,\"row3col9\",", rows[2]);
    EXPECT_EQ(",\"row5col2\",,,,,,,", rows[4]);
    EXPECT_EQ("\"row7col1\",,,,,\"row7col7\",,,", rows[6]);
}

TEST(Cli, ExportPrintsTheTruthWhereTheReferenceToolIsWrong) {
    CliRun dates = cli("export " + fixture("testIndexCodesV1997.mdb") + " Table6 --format csv");
    ASSERT_EQ(0, dates.status);
    EXPECT_NE(std::string::npos, dates.out.find("\"row19\",\"1899-12-29 02:24:00\"\n"));
    EXPECT_NE(std::string::npos, dates.out.find("\"row8\",\"1668-07-20 00:00:00\"\n"));
    CliRun guids = cli("export " + fixture("testV2000.mdb") + " Table4 --format csv");
    EXPECT_EQ("name,data\n", guids.out);
    CliRun g = cli("export " + fixture("testIndexCodesV1997.mdb") + " Table13 --format csv");
    EXPECT_NE(std::string::npos, g.out.find("\"row0\",\"{8E39276A-BCA8-4AC4-891E-49911D8438DD}\"\n"));
}

TEST(Cli, ErrorsAreOneLineOnStandardErrorWithAFailingStatus) {
    CliRun table = cli("export " + fixture("testV1997.mdb") + " Missing --format csv");
    EXPECT_EQ(1, table.status);
    EXPECT_EQ(1u, lines(table.err));
    EXPECT_NE(std::string::npos, table.err.find("'Missing'"));
    EXPECT_NE(std::string::npos, table.err.find("-2147217865"));

    CliRun file = cli("tables /nonexistent/file.mdb");
    EXPECT_EQ(1, file.status);
    EXPECT_EQ(1u, lines(file.err));
    EXPECT_NE(std::string::npos, file.err.find("Could not find file"));

    CliRun notDb = cli("tables " + fixture("MANIFEST.md"));
    EXPECT_EQ(1, notDb.status);
    EXPECT_NE(std::string::npos, notDb.err.find("Unrecognized database format"));

    EXPECT_EQ(2, cli("export " + fixture("testV1997.mdb") + " Table1 --format xml").status);
    EXPECT_EQ(2, cli("frobnicate").status);
    EXPECT_EQ(2, cli("").status);
}

TEST(Cli, CheckExitsZeroOnlyWhenClean) {
    CliRun ok = cli("check " + fixture("testV2000.mdb"));
    EXPECT_EQ(0, ok.status) << ok.out;
    EXPECT_NE(std::string::npos, ok.out.find("no problems"));

    std::ifstream in(std::string(SHEETWRIGHT_MDB_FIXTURES) + "/delTestV2003.mdb", std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
    bytes.resize(bytes.size() - 4096 * 10);  // whole pages gone from the end
    fs::path cut = fs::temp_directory_path() / ("sw_cut_" + std::to_string(::getpid()) + ".mdb");
    std::ofstream(cut, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
    CliRun bad = cli("check '" + cut.string() + "'");
    fs::remove(cut);
    EXPECT_EQ(1, bad.status);
    EXPECT_EQ(1u, lines(bad.err));
    EXPECT_NE(std::string::npos, bad.out.find("beyond the end of the file")) << bad.out;
}

TEST(Cli, CreateAndSqlMakeADatabaseAndChangeItsTables) {
    const fs::path dir = fs::temp_directory_path() / ("sw_cli_ddl_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    for (const char* version : {"3", "4"}) {
        const std::string file = "'" + (dir / (std::string("new") + version + ".mdb")).string() + "'";
        CliRun made = cli("create " + file + " --version " + version);
        ASSERT_EQ(0, made.status) << made.err;
        EXPECT_EQ("", made.out);
        EXPECT_EQ(version[0] == '3' ? 36864u : 65536u, fs::file_size(dir / (std::string("new") + version + ".mdb")));
        EXPECT_EQ(0, cli("sql " + file + " 'CREATE TABLE Sales (__custom INTEGER);'").status);
        EXPECT_EQ(0, cli("sql " + file + " 'alter table Sales add Price DOUBLE'").status);
        EXPECT_EQ("Sales\n", cli("tables " + file).out);
        EXPECT_EQ("__custom,Price\n", cli("export " + file + " Sales --format csv").out);

        // A refused statement: its number and Jet's text on one line, status 1.
        CliRun exists = cli("sql " + file + " 'CREATE TABLE sales (a TEXT)'");
        EXPECT_EQ(1, exists.status);
        EXPECT_EQ(1u, lines(exists.err));
        EXPECT_NE(std::string::npos, exists.err.find("Table 'sales' already exists.")) << exists.err;
        EXPECT_NE(std::string::npos, exists.err.find("-2147217900"));
        CliRun syntax = cli("sql " + file + " 'CREATE TABLE my table (a TEXT)'");
        EXPECT_EQ(1, syntax.status);
        EXPECT_NE(std::string::npos, syntax.err.find("Syntax error in CREATE TABLE statement.")) << syntax.err;
        CliRun missing = cli("sql " + file + " 'DROP TABLE Nowhere'");
        EXPECT_NE(std::string::npos, missing.err.find("-2147217865")) << missing.err;
        EXPECT_EQ(0, cli("sql " + file + " 'DROP TABLE Sales;'").status);
        EXPECT_EQ("", cli("tables " + file).out);
        EXPECT_EQ(0, cli("check " + file).status);
    }
    CliRun nowhere = cli("create '" + (dir / "no/such/folder.mdb").string() + "' --version 3");
    EXPECT_EQ(1, nowhere.status);
    EXPECT_NE(std::string::npos, nowhere.err.find("cannot be created")) << nowhere.err;
    EXPECT_EQ(2, cli("create " + (dir / "x.mdb").string() + " --version 5").status);
    EXPECT_EQ(2, cli("create " + (dir / "x.mdb").string()).status);
    EXPECT_EQ(2, cli("sql " + (dir / "new3.mdb").string()).status);
    EXPECT_FALSE(fs::exists(dir / "x.mdb"));
    fs::remove_all(dir);
}

}  // namespace
