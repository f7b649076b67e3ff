#pragma once
// Puts a table definition into the file: serialized, then laid over the table's chain of
// TDEF pages. The first page stays (its number is the table's identity); continuation
// pages are added from the allocator when the definition grows and given back when it
// shrinks.

#include <cstdint>

namespace jet {

class TableDef;
class Transaction;

// Writes `def` over the pages it names (none yet for a new table: `firstPage` is then
// taken as its first page) and tells the transaction that the table's definition changed.
// Returns the first page.
uint32_t storeTableDef(Transaction& transaction, const TableDef& def, uint32_t firstPage = 0);

}  // namespace jet
