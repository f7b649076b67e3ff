#pragma once
// What the independent readers make of a database, against our own reader. Each check
// returns the differences found, one line each; an empty list means agreement.
//  - our integrity checker finds nothing;
//  - mdb-tables lists the same user tables, mdb-schema the same columns with the same
//    types, and mdb-export the same rows (compared by tests/oracles/csv-compare.py, which
//    forgives only that tool's documented faults);
//  - mdb-reader (tests/oracles/mdb-reader-dump.mjs) lists the same tables and columns and
//    the same values.
// A Jet 3 file in code page 1251 is read by mdbtools with MDB_JET3_CHARSET=CP1251;
// mdb-reader decodes Jet 3 text as Windows-1252 whatever the file says, which the
// expected notation takes into account.

#include <string>
#include <vector>

namespace sheetwright::testing {

// True when mdbtools, python3, node and the oracle's packages are all there.
bool oraclesAvailable();

std::vector<std::string> disagreements(const std::string& path);

}  // namespace sheetwright::testing
