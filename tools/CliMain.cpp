// sheetwright-cli: the headless companion of the editor.
//
//   sheetwright-cli tables FILE                     user tables, one per line
//   sheetwright-cli export FILE TABLE --format csv  a table as CSV on standard output
//   sheetwright-cli export FILE TABLE --format text|xml|html [--separator S] [-o OUT]
//                                                   a table file as the program writes it
//   sheetwright-cli import FILE TABLEFILE [--separator S]
//                                                   a table file as a new table, as the program reads it
//   sheetwright-cli check FILE                      integrity check; exit 0 when clean
//   sheetwright-cli load FILE TABLE CSVFILE         appends the CSV's rows: all of them or none
//   sheetwright-cli create FILE --version 3|4       a new, empty database (Access 97 or 2000)
//   sheetwright-cli sql FILE STATEMENT              runs CREATE TABLE, ALTER TABLE or DROP TABLE
//   sheetwright-cli calc FILE TABLE RANGE STATISTIC [--type 0|1|2]
//                                                   a statistic over ranges such as B2:C10,E2
//
// Any error ends the program with status 1 and one line on standard error; a wrong
// command line gives status 2 and the usage.

#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include <fstream>

#include "CalcCommand.h"
#include "CsvExport.h"
#include "CsvImport.h"
#include "TableFileCommands.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"
#include "jet/RuntimeError.h"
#include "rt/AnsiCodePage.h"

namespace {

using Args = std::vector<std::string>;

const char* usage =
    "usage: sheetwright-cli tables FILE\n"
    "       sheetwright-cli export FILE TABLE --format csv\n"
    "       sheetwright-cli export FILE TABLE --format text|xml|html [--separator S] [-o OUT]\n"
    "       sheetwright-cli import FILE TABLEFILE [--separator S]\n"
    "       sheetwright-cli check FILE\n"
    "       sheetwright-cli load FILE TABLE CSVFILE\n"
    "       sheetwright-cli create FILE --version 3|4\n"
    "       sheetwright-cli sql FILE STATEMENT\n"
    "       sheetwright-cli calc FILE TABLE RANGE STATISTIC [--type 0|1|2]\n"
    ;

// The newer provider opens both formats.
void openFile(jet::Connection& cn, const std::string& file) {
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + file);
}

int tables(const Args& a) {
    if (a.size() != 1) throw std::invalid_argument("tables takes one file");
    jet::Connection cn;
    openFile(cn, a[0]);
    auto rs = cn.OpenSchema(jet::ado::SchemaTables, {{}, {}, {}, jet::Variant::string("TABLE")});
    std::string out;
    if (rs->RecordCount() > 0)
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext()) out += rs->Fields().Item("TABLE_NAME").Value().asString() + "\n";
    std::cout << out;
    return 0;
}

int exportTable(const Args& a) {
    if (a.size() >= 4 && a[2] == "--format" && a[3] != "csv") return sheetwright::cli::exportTableFile(a);
    if (a.size() != 4 || a[2] != "--format") throw std::invalid_argument("export takes FILE TABLE --format csv|text|xml|html");
    jet::Connection cn;
    openFile(cn, a[0]);
    jet::Recordset rs;
    rs.Open("SELECT * FROM [" + a[1] + "]", cn);
    sheetwright::cli::exportCsv(rs, std::cout);
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("cannot write the output");
    return 0;
}

int check(const Args& a) {
    if (a.size() != 1) throw std::invalid_argument("check takes one file");
    jet::CheckReport report = jet::check(a[0]);
    for (const auto& issue : report.issues) std::cout << issue.where << ": " << issue.problem << "\n";
    std::cout << report.tablesChecked << " tables, " << report.rowsChecked << " rows, " << report.pagesChecked
              << " data pages checked: " << (report.clean() ? "no problems" : std::to_string(report.issues.size()) + " problems")
              << "\n";
    std::cout.flush();
    if (!report.clean()) {
        std::cerr << "sheetwright-cli: " << a[0] << " has " << report.issues.size() << " problems\n";
        return 1;
    }
    return 0;
}

int load(const Args& a) {
    if (a.size() != 3) throw std::invalid_argument("load takes FILE TABLE CSVFILE");
    std::ifstream csv(a[2], std::ios::binary);
    if (!csv) throw std::runtime_error("cannot open '" + a[2] + "'");
    jet::Connection cn;
    openFile(cn, a[0]);
    const size_t rows = sheetwright::cli::importCsv(csv, cn, a[1]);
    std::cout << rows << " rows loaded into " << a[1] << "\n";
    return 0;
}

int create(const Args& a) {
    if (a.size() != 3 || a[1] != "--version") throw std::invalid_argument("create takes FILE --version 3|4");
    if (a[2] != "3" && a[2] != "4") throw std::invalid_argument("unknown version '" + a[2] + "' (3 or 4)");
    jet::createDatabase(a[0], a[2] == "3" ? jet::Version::Jet3 : jet::Version::Jet4, rt::AnsiCodePage::current().number());
    return 0;
}

int sql(const Args& a) {
    if (a.size() != 2) throw std::invalid_argument("sql takes FILE STATEMENT");
    jet::Connection cn;
    openFile(cn, a[0]);
    cn.Execute(a[1], nullptr, -1);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    if (argc < 2) {
        std::cerr << usage;
        return 2;
    }
    const std::string command = argv[1];
    Args args(argv + 2, argv + argc);
    try {
        if (command == "tables") return tables(args);
        if (command == "export") return exportTable(args);
        if (command == "check") return check(args);
        if (command == "load") return load(args);
        if (command == "import") return sheetwright::cli::importTableFile(args);
        if (command == "create") return create(args);
        if (command == "sql") return sql(args);
        if (command == "calc") return sheetwright::cli::calc(args);
        std::cerr << "sheetwright-cli: unknown command '" << command << "'\n" << usage;
        return 2;
    } catch (const std::invalid_argument& e) {
        std::cerr << "sheetwright-cli: " << e.what() << "\n" << usage;
        return 2;
    } catch (const jet::RuntimeError& e) {
        std::cerr << "sheetwright-cli: " << e.description() << " (error " << e.number() << ")\n";
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "sheetwright-cli: " << e.what() << "\n";
        return 1;
    }
}
