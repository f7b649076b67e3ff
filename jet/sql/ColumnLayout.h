#pragma once
// Where a new column goes in a table definition, for CREATE TABLE, ALTER TABLE ... ADD and
// the system tables of a new file alike.
//
// Rules kept (rows written before stay readable, so nothing is ever reused):
//  - A new column's number is the table's "highest column count", which then grows by one;
//    numbers of dropped columns are never given out again.
//  - A variable-length column takes the next variable slot ("variable slots" grows); a
//    fixed one goes after the end of the live fixed columns' values. Yes/No columns live in
//    the null mask only and take no fixed bytes.
//  - Descriptor fields are those Access writes: flags 0x02 (0x03 fixed, 0x07 counter), the
//    General collating order on every type but Decimal, Jet 3 the database's code page.

#include <cstdint>

#include "format/TableDef.h"
#include "sql/SqlStatement.h"

namespace jet {

// The descriptor of a column declared in SQL (number and place still open). Text lengths
// are given in characters and stored in bytes (Jet 4: two per character).
Column columnFromDeclaration(const sql::ColumnDeclaration& declared, Version version, uint16_t codePage);

// Gives the column its number and its place in the row and adds it to the definition.
// Returns the number.
uint16_t appendColumn(TableDef& def, Column column);

// Bytes the fixed area of a row takes for the live columns (the end of the last value).
uint32_t fixedAreaSize(const TableDef& def);

}  // namespace jet
