#pragma once
// The two halves of XDataBase::Calculate: gathering the selected cells' texts from the
// record set, and handing them to the function library's operation for the calculation
// index.

#include <cstdint>
#include <QString>

#include "rt/StringList.h"

namespace jet {
class Recordset;
}
namespace host {
class FunctionLibrary;
}

namespace engine {

class Table_Selection;

// Area by area in the order they were added, within an area column by column, within a
// column top to bottom, each column read again from the first record. Column c is field
// c - 1, row r the r-th record. The corners and counters are the run time's 16-bit
// Integers: an area reaching beyond 32767 is Overflow (6). A Null cell is error 94; a row
// past the last record or a column past the last field fails in the record set.
void gatherSelectedCells(jet::Recordset& records, const Table_Selection& selection, rt::StringList& values);

// The result of the statistic of that index (1 to 14) in the variant the mode picks;
// Min and Max give their Long as decimal text; any other index gives "" and calls nothing.
QString calculateWithLibrary(host::FunctionLibrary& library, int32_t index, int32_t mode, rt::StringList& values);

}  // namespace engine
