#pragma once
// Turns a column's stored bytes into the Variant ADO would hand out for it, and names
// the ADO type of a column.

#include <cstdint>
#include <span>
#include <string>

#include "format/TableDef.h"
#include "jet/AdoConstants.h"
#include "jet/Variant.h"
#include "table/RowReader.h"

namespace jet {

class Database;

int32_t adoTypeOf(const Column& column);

// The value of a column in a row: Null for a null value (false for Yes/No), the decoded
// value otherwise. Throws CorruptError for bytes that cannot be the column's type.
Variant readValue(const Database& db, const Column& column, const ColumnBytes& stored);

// "{8E39276A-BCA8-4AC4-891E-49911D8438DD}" from the 16 stored bytes.
std::string guidText(std::span<const uint8_t> bytes);
// A Jet 4 NUMERIC value from its 17 stored bytes.
Decimal decimalFromBytes(std::span<const uint8_t> bytes, uint8_t scale);

}  // namespace jet
