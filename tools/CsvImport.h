#pragma once
// Appends the rows of an RFC 4180 CSV file to an existing table, the inverse of the CSV
// export: the header names the columns (any order, any subset; names without case),
// values come in the forms the export prints (ISO dates, hex for binary and OLE data,
// 1/0 or True/False for Yes/No), an empty unquoted field is Null and "" an empty text.
// All rows go in one transaction: every row or, on any error, none.

#include <istream>
#include <string>
#include <vector>

#include "jet/Recordset.h"

namespace sheetwright::cli {

struct CsvField {
    std::string text;
    bool quoted = false;
};
using CsvRecord = std::vector<CsvField>;

// Reads the next record; false at the end of the input. Throws std::runtime_error for a
// quote that is never closed or text after a closing quote.
bool readCsvRecord(std::istream& in, CsvRecord& record);

// Appends every record to the table the record set is open on (batch-optimistic locking).
// Throws jet::RuntimeError for a value that does not fit or a duplicate key (nothing is
// written then) and std::runtime_error for malformed CSV, naming the line.
size_t importCsv(std::istream& in, jet::Recordset& rs);

}  // namespace sheetwright::cli
