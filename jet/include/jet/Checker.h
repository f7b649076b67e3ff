#pragma once
// The integrity checker: walks a whole file and reports every inconsistency it finds,
// without stopping at the first. It reads only; a damaged structure is reported and the
// walk goes on with the next one.
//
// What it verifies, per table reachable from the catalogue: the definition chain and its
// counts; map references and map rows; owned pages against data pages and owners; slot
// tables and free space; every live row's layout and overflow pointers; the row count;
// every long value. Over the whole file: no page claimed by two structures, no page in
// use marked free in the global map, no reference beyond the end of the file, and a
// catalogue with one well-formed row per table and unique names.

#include <string>
#include <vector>

namespace jet {

class Database;
class Table;

struct CheckIssue {
    std::string where;    // "table 'Orders'", "page 17", "catalogue"
    std::string problem;
};

struct CheckReport {
    std::vector<CheckIssue> issues;
    size_t tablesChecked = 0;
    size_t rowsChecked = 0;
    size_t pagesChecked = 0;

    bool clean() const { return issues.empty(); }
    void add(std::string where, std::string problem) { issues.push_back({std::move(where), std::move(problem)}); }
};

CheckReport check(const Database& db);
// Opens the file read-only first; a file that cannot be opened is reported as one issue.
CheckReport check(const std::string& path);

}  // namespace jet
