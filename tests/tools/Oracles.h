#pragma once
// What the independent readers make of a database, against our own reader. The one way the
// tests compare with them; disagreements() returns one line per difference found:
//  - our integrity checker finds nothing;
//  - mdb-tables lists the same user tables, mdb-schema the same columns with the same
//    types, and mdb-export the same rows (compared by tests/oracles/csv-compare.py, which
//    forgives only that tool's documented faults);
//  - mdb-reader (tests/oracles/mdb-reader-dump.mjs) lists the same tables and columns and
//    every value as we read it, written in its notation with its documented faults
//    applied: lower-case GUIDs without braces, U+FFFD for code page 1252's undefined bytes,
//    Jet 3 text always decoded as Windows-1252, and dates before 1899-12-30 taken as a
//    straight count of days (so -1.1 is 1899-12-28 21:36).
// A Jet 3 file in code page 1251 is read by mdbtools with MDB_JET3_CHARSET=CP1251.

#include <string>
#include <vector>

namespace sheetwright::testing {

// True when mdbtools, python3, node and the oracle's packages are all there.
bool oraclesAvailable();

std::vector<std::string> disagreements(const std::string& path);

}  // namespace sheetwright::testing
