#pragma once
// The independent JavaScript reader (mdb-reader, through tests/oracles/mdb-reader-dump.mjs)
// as the tests use it: its dump, and our own values written in the dump's notation with the
// reader's documented faults applied, so the two can be compared line by line.

#include <map>
#include <string>
#include <vector>

#include "jet/TableDef.h"
#include "jet/Variant.h"

namespace jet {
class Database;
}

namespace jet::testkit {

// Runs a shell command and returns what it printed on standard output.
std::string runCommand(const std::string& command);

// True when node and the oracle's packages are installed (scripts/test installs them).
bool mdbReaderAvailable();

struct ReaderTable {
    std::vector<std::string> columns;  // names, in the reader's order
    std::vector<std::string> rows;     // one JSON array per row, as the dump prints it
};

// The dump of a file: its user tables (all of them, or only `table`).
std::map<std::string, ReaderTable> mdbReaderDump(const std::string& path, const std::string& table = "");

// A value in the dump's notation: lower-case GUIDs without braces, U+FFFD for code page
// 1252's undefined bytes, and Jet 3 text of another code page as the reader shows it
// (it always decodes Jet 3 text as Windows-1252).
std::string readerNotation(const Variant& v, const Column& c, const Database& db);

// Our rows of a table in the dump's notation and in the order the reader meets them (a
// moved row where its data lies, not at its own slot).
std::vector<std::string> rowsInReaderNotation(const Database& db, const std::string& table);

}  // namespace jet::testkit
