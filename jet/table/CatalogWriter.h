#pragma once
// The rows of the system tables that describe a table: its catalogue row in MSysObjects
// and its permission rows in MSysACEs. They change like any rows, through the table
// writer, so their index entries and the tables' counters stay right.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jet/Variant.h"
#include "table/Catalog.h"

namespace jet {

class TableDef;
class Transaction;

// A row of values for `def`'s columns (in their order) from (column name, value) pairs;
// columns not named stay Empty (Null, or the next number of a counter).
std::vector<Variant> rowByName(const TableDef& def, const std::vector<std::pair<const char*, Variant>>& values);

class CatalogWriter {
public:
    explicit CatalogWriter(Transaction& transaction) : t_(transaction) {}

    // The catalogue row of a new table (owned like the database object MSysDb) and the
    // permission rows Access gives it: one per entry of the Tables container that is not
    // the inheritable "limited" one, each with the rights 0xFFEFF.
    void addTable(int32_t id, const std::string& name, double now);
    // The catalogue row (with its long values and index entries) and the permission rows.
    void removeTable(const CatalogEntry& table);
    // The table's definition changed at `now`.
    void touch(const CatalogEntry& table, double now);
    // The table's design properties (the catalogue row's LvProp), if it has any.
    std::optional<std::vector<uint8_t>> properties(const CatalogEntry& table);
    void setProperties(const CatalogEntry& table, std::vector<uint8_t> blob);

private:
    Transaction& t_;
};

}  // namespace jet
