#pragma once
// A table as RFC 4180 CSV: a header line of column names, then one record per row in
// physical order, each ending in LF. Values are printed as the reference exports print
// them with ISO dates and hex binary: text, memo, dates, Replication IDs and binary
// quoted (quotes doubled); numbers and Yes/No (1/0) bare; Currency with four decimals,
// Single as %.8g, Double as %.16g, Decimal with its column's scale; Null as an empty
// unquoted field. Dates before 1899-12-30 and Replication IDs are printed correctly
// (braced, four hyphens), not as the reference tool prints them.

#include <ostream>
#include <string>

#include "jet/Recordset.h"
#include "jet/Variant.h"

namespace sheetwright::cli {

// Appends one value in CSV form.
void appendCsvField(std::string& out, const jet::Variant& value);
// Writes the whole record set from its first record; returns the number of records.
size_t exportCsv(jet::Recordset& rs, std::ostream& out);

}  // namespace sheetwright::cli
