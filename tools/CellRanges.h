#pragma once
// Ranges of a table in spreadsheet notation, as sheetwright-cli takes them: "B2:C10"
// (columns by letter, A being the first field; rows from 1 for the first record), a
// single cell "B2", several separated by commas ("A1:A5,C1:C5"), letters in either case.
// Each range comes back with its corners in order, top left first, whichever way it was
// written.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace sheetwright::cli {

// Column, row of the top left corner, then column, row of the bottom right one.
using CellRange = std::array<int32_t, 4>;

// Throws std::invalid_argument naming the part that is not a range.
std::vector<CellRange> parseCellRanges(const std::string& text);

}  // namespace sheetwright::cli
