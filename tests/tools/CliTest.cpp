// sheetwright-cli as a user runs it: output, exit status, one-line errors; and load, whose
// rows go in all together or, on any bad row, not at all.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <filesystem>

#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
namespace fs = std::filesystem;

struct CliRun {
    int status = -1;
    std::string out, err;
};

class Cli : public ::testing::Test {
protected:
    CliRun cli(const std::string& args) {
        const std::string cmd = "SHEETWRIGHT_REGISTRY='" + dir.file("registry") + "' " + std::string(SHEETWRIGHT_BINARY_DIR) +
                                "/tools/sheetwright-cli " + args + " >" +
                                dir.file("out") + " 2>" + dir.file("err");
        const int rc = std::system(cmd.c_str());
        return {WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, readAll(dir.file("out")), readAll(dir.file("err"))};
    }
    static std::string fixture(const std::string& name) { return "'" + fixturePath(name) + "'"; }
    std::string file(const std::string& name, const std::string& text) {
        writeAll(dir.file(name), text);
        return "'" + dir.file(name) + "'";
    }
    // A one-line error on standard error with status 1, saying `what`.
    void expectError(const CliRun& r, const std::string& what) {
        EXPECT_EQ(1, r.status);
        EXPECT_EQ(1, std::count(r.err.begin(), r.err.end(), '\n')) << r.err;
        EXPECT_NE(std::string::npos, r.err.find(what)) << r.err;
    }
    TempDir dir;
};

TEST_F(Cli, TablesExportAndCheckPrintWhatTheFileHolds) {
    const CliRun tables = cli("tables " + fixture("testIndexCodesV1997.mdb"));
    EXPECT_EQ(0, tables.status);
    EXPECT_EQ(0u, tables.out.find("Table1\nTable1_desc\nTable10\nTable10_desc\nTable11\n")) << "in the schema's order";
    EXPECT_EQ(29, std::count(tables.out.begin(), tables.out.end(), '\n'));
    EXPECT_EQ("", cli("tables " + fixture("empty.mdb")).out);
    // Moved rows keep their original slots: the order of the rows as they were written.
    EXPECT_EQ("data1,data3,data4,data5,data6,data7,data8,data9,data10\n\"row1col1\",,,,,,,,\n"
              "\"row2col1\",\"row2col3\",,,,,,,\n,\"row3col3\",,,,,,\"row3col9\",\n\"row4col1\",\"row4col2\",,,,,,,\n"
              ",\"row5col2\",,,,,,,\n,\"row6col2\",\"row6col3\",,,,,,\n\"row7col1\",,,,,\"row7col7\",,,\n",
              cli("export " + fixture("overflowTestV2000.mdb") + " table1 --format csv").out);
    // The truth where the reference tool is wrong: early dates and whole Replication IDs.
    const std::string dates = cli("export " + fixture("testIndexCodesV1997.mdb") + " Table6 --format csv").out;
    EXPECT_NE(std::string::npos, dates.find("\"row19\",\"1899-12-29 02:24:00\"\n"));
    EXPECT_NE(std::string::npos, dates.find("\"row8\",\"1668-07-20 00:00:00\"\n"));
    EXPECT_NE(std::string::npos, cli("export " + fixture("testIndexCodesV1997.mdb") + " Table13 --format csv")
                                     .out.find("\"row0\",\"{8E39276A-BCA8-4AC4-891E-49911D8438DD}\"\n"));
    const CliRun clean = cli("check " + fixture("testV2000.mdb"));
    EXPECT_EQ(0, clean.status);
    EXPECT_NE(std::string::npos, clean.out.find("no problems"));
    const std::string bytes = readAll(fixturePath("delTestV2003.mdb"));
    const CliRun cut = cli("check " + file("cut.mdb", bytes.substr(0, bytes.size() - 4096 * 10)));
    expectError(cut, "problems");
    EXPECT_NE(std::string::npos, cut.out.find("beyond the end of the file")) << cut.out;
}

TEST_F(Cli, ErrorsAreOneLineOnStandardErrorWithAFailingStatus) {
    const CliRun missing = cli("export " + fixture("testV1997.mdb") + " Missing --format csv");
    expectError(missing, "'Missing'");
    EXPECT_NE(std::string::npos, missing.err.find("-2147217865"));
    expectError(cli("tables /nonexistent/file.mdb"), "Could not find file");
    expectError(cli("tables " + fixture("MANIFEST.md")), "Unrecognized database format");
    for (const char* usage : {"export x Table1 --format pdf", "frobnicate", "", "create x.mdb --version 5", "create x.mdb",
                              "sql x.mdb", "load x.mdb Table1"})
        EXPECT_EQ(2, cli(usage).status) << usage;
    EXPECT_FALSE(fs::exists("x.mdb"));
}

TEST_F(Cli, CreateAndSqlMakeADatabaseAndChangeItsTables) {
    for (const char* version : {"3", "4"}) {
        const std::string db = "'" + dir.file(std::string("new") + version + ".mdb") + "'";
        const CliRun made = cli("create " + db + " --version " + version);
        ASSERT_EQ(0, made.status) << made.err;
        EXPECT_EQ(version[0] == '3' ? 36864u : 65536u, fs::file_size(dir.file(std::string("new") + version + ".mdb")));
        EXPECT_EQ(0, cli("sql " + db + " 'CREATE TABLE Sales (__custom INTEGER);'").status);
        EXPECT_EQ(0, cli("sql " + db + " 'alter table Sales add Price DOUBLE'").status);
        EXPECT_EQ("Sales\n", cli("tables " + db).out);
        EXPECT_EQ("__custom,Price\n", cli("export " + db + " Sales --format csv").out);
        const CliRun exists = cli("sql " + db + " 'CREATE TABLE sales (a TEXT)'");
        expectError(exists, "Table 'sales' already exists.");
        EXPECT_NE(std::string::npos, exists.err.find("-2147217900"));
        expectError(cli("sql " + db + " 'CREATE TABLE my table (a TEXT)'"), "Syntax error in CREATE TABLE statement.");
        expectError(cli("sql " + db + " 'DROP TABLE Nowhere'"), "-2147217865");
        EXPECT_EQ(0, cli("sql " + db + " 'DROP TABLE Sales;'").status);
        EXPECT_EQ("", cli("tables " + db).out);
        EXPECT_EQ(0, cli("check " + db).status);
    }
    expectError(cli("create '" + dir.file("no/such/folder.mdb") + "' --version 3"), "cannot be created");
}

TEST_F(Cli, LoadTakesWhatTheExportPrintsInAnyColumnOrder) {
    WritableCopy copy("testV2000.mdb");
    const std::string db = "'" + copy.path() + "'";
    const CliRun r = cli("load " + db + " Table1 " + file("in.csv", "I,H,a,G,C,B\r\n"
                                                                   "1,12.5000,\"x, \"\"quoted\"\"\",\"1974-09-21 10:20:30\",7,\r\n"
                                                                   "0,,\"two\nlines\",,255,\"\"\r\n"));
    ASSERT_EQ(0, r.status) << r.err;
    EXPECT_EQ("2 rows loaded into Table1\n", r.out);
    const std::string exported = cli("export " + db + " Table1 --format csv").out;
    EXPECT_NE(std::string::npos, exported.find("\"x, \"\"quoted\"\"\",,7,,,,\"1974-09-21 10:20:30\",12.5000,1\n")) << exported;
    EXPECT_NE(std::string::npos, exported.find("\"two\nlines\",\"\",255,,,,,,0\n")) << "Null and \"\" stay apart";
    // A table exported, loaded into its empty twin and exported again reads the same; so
    // does a row of memo and hex OLE data loaded again under new keys.
    WritableCopy properties("testIndexPropertiesV2003.mdb");
    const std::string p = "'" + properties.path() + "'";
    const std::string original = cli("export " + p + " TableIgnoreNulls2 --format csv").out;
    ASSERT_EQ(0, cli("load " + p + " TableIgnoreNulls2_temp " + file("twin.csv", original)).status);
    EXPECT_EQ(original, cli("export " + p + " TableIgnoreNulls2_temp --format csv").out);
    for (const char* name : {"test2V1997.mdb", "test2V2003.mdb"}) {
        WritableCopy projects(name);
        const std::string q = "'" + projects.path() + "'";
        const std::string before = cli("export " + q + " MSP_PROJECTS --format csv").out;
        const size_t header = before.find('\n') + 1;
        std::string again = before.substr(header);  // PROJ_ID and PROJ_NAME come first and are unique
        again.replace(0, again.find(",\"", again.find(',') + 1), "4242,\"loaded again\"");
        ASSERT_EQ(0, cli("load " + q + " MSP_PROJECTS " + file("again.csv", before.substr(0, header) + again)).status);
        EXPECT_EQ(before + again, cli("export " + q + " MSP_PROJECTS --format csv").out);
        EXPECT_EQ(0, cli("check " + q).status);
    }
}

TEST_F(Cli, ABadRowAnywhereLeavesTheFileAsItWas) {
    WritableCopy copy("testIndexPropertiesV2003.mdb");
    const std::string original = readAll(copy.path());
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"TableUnique1_temp", "row,data\n\"n1\",\"d1\"\n\"n2\",\"stuff\"\n", "-2147217873"},  // duplicate unique key
        {"TableUnique1_temp", "row,data\n\"n1\",\"d1\"\n\"n1\",\"d2\"\n", "-2147217873"},     // clash inside the file
        {"TableIgnoreNulls2", "row,data2\n\"n1\",5\n\"n2\",\"five\"\n", "line 3"},             // not a number
        {"TableIgnoreNulls2", "row,nothere\n\"n1\",5\n", "3265"},                               // unknown column
        {"TableIgnoreNulls2", "row,data1\n\"n1\",\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\"\n", "line 2"},
        {"TableIgnoreNulls2", "row,data1\n\"n1\",\"open\n", "never closed"},
    };
    for (const auto& [table, csv, error] : cases) {
        expectError(cli("load '" + copy.path() + "' " + table + " " + file("bad.csv", csv)), error);
        EXPECT_EQ(original, readAll(copy.path())) << csv;
    }
}

}  // namespace

TEST_F(Cli, TableFilesGoOutAsTheProgramWritesThemAndComeBackAsNewTables) {
    WritableCopy copy("indexTestV1997.mdb");
    const std::string db = "'" + copy.path() + "'";
    EXPECT_EQ("id;data\r\n0;foo0\r\n1;foo1\r\n2;foo2\r\n", cli("export " + db + " Table2 --format text").out);
    const std::string xml = "<?xml version=\"1.0\"?>\r\n<table type=\"list\" sep=\"\t\" >\r\n"
                            "<columns sep=\"\t\" text=\"id\tdata\" />\r\n<data>\r\n<line sep=\"\t\" text=\"0\tfoo0\"/>\r\n"
                            "<line sep=\"\t\" text=\"1\tfoo1\"/>\r\n<line sep=\"\t\" text=\"2\tfoo2\"/>\r\n</data>\r\n</table>\r\n";
    EXPECT_EQ(xml, cli("export " + db + " Table2 --format xml").out);
    const std::string out = dir.file("Table2_page.htm");
    ASSERT_EQ(0, cli("export " + db + " Table2 --format html -o '" + out + "'").status);
    EXPECT_EQ("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Final//EN\"><HTML><HEAD>\r\n"
              "<META HTTP-EQUIV=\"Content-Type\" Content=\"text-html; charset=Windows-1251\">\r\n"
              "<title>Saved Table " + out + "</title></HEAD><BODY BGCOLOR=#FFFFFF TEXT=#000000>\r\n"
              "<center><table width=\"100%\" border=1 cellspacing=0>\r\n"
              "<tr><td><b>id</b></td><td><b>data</b></td></tr>\r\n\r\n<tr><td>0</td><td>foo0</td></tr>\r\n\r\n"
              "<tr><td>1</td><td>foo1</td></tr>\r\n\r\n<tr><td>2</td><td>foo2</td></tr>\r\n\r\n"
              "</table>\r\n</center>\r\n</BODY>\r\n</HTML>\r\n",
              readAll(out));
    EXPECT_EQ("id<>data\r\n0<>foo0\r\n1<>foo1\r\n2<>foo2\r\n",
              cli("export " + db + " Table2 --format text --separator '<>'").out);

    // Imported under the file's name; text other than ".txt" with the separator given.
    const CliRun html = cli("import " + db + " '" + out + "'");
    EXPECT_EQ(0, html.status) << html.err;
    EXPECT_EQ("Table2_page\n", html.out);
    EXPECT_EQ("id,data\n\"0\",\"foo0\"\n\"1\",\"foo1\"\n\"2\",\"foo2\"\n,\n", cli("export " + db + " Table2_page --format csv").out)
        << "one empty record after the last row";
    expectError(cli("import " + db + " " + file("two words.csv", "a\r\n")), "Syntax error in CREATE TABLE statement.");
    EXPECT_EQ("Table2_copy\n", cli("import " + db + " " + file("Table2_copy.xml", xml)).out);
    EXPECT_EQ("Prices\n", cli("import " + db + " " + file("Prices.csv", "Name|Price\r\nTea|3\r\n") + " --separator '|'").out);
    EXPECT_EQ("Name,Price\n\"Tea\",\"3\"\n", cli("export " + db + " Prices --format csv").out);
    EXPECT_EQ("id,data\n\"0\",\"foo0\"\n\"1\",\"foo1\"\n\"2\",\"foo2\"\n",
              cli("export " + db + " Table2_copy --format csv").out);

    // A taken name, in any case, is refused before anything is written.
    const std::string before = readAll(copy.path());
    expectError(cli("import " + db + " " + file("table2.xml", xml)), "already has a table 'table2'");
    EXPECT_EQ(before, readAll(copy.path()));
    expectError(cli("import " + db + " " + file("bad.xml", "<t type=\"list\"><columns sep=\",\" text=\"a\"/><data>"
                                                         "<line sep=\",\" text=\"1,2\"/></data></t>")),
                "Error of opening table XML!");
    expectError(cli("import " + db + " " + file("none.xml", "<t/>")), "holds no table of its format");
    expectError(cli("import " + db + " " + file("three.htm", "<table><tr><td>x<br></td></tr></table><table></table>")),
                "Invalid procedure call");
    expectError(cli("export " + db + " Nowhere --format xml"), "has no table 'Nowhere'");
    expectError(cli("import " + db + " '" + dir.file("missing.csv") + "'"), "cannot read");
    for (const char* usage : {"export x T --format text -o", "export x T --format pdf", "import x", "import x y -o z"})
        EXPECT_EQ(2, cli(usage).status) << usage;
    EXPECT_EQ(0, cli("check " + db).status);
}
