#pragma once
// A table of an open database: its definition and the locations of its live rows in
// physical order (pages of the table's owned map in increasing order, slots in slot
// order). Rows are decoded only when a value is asked for.
//
// Invariants:
//  - rowLocations() is built by one pass that reads each data page of the table once
//    and decodes no row; deleted slots and overflow targets are left out, an overflow
//    header keeps its own place (the row's identity) and is followed when read.
//  - A page in the owned map that is not a data page of this table is skipped (freed
//    pages keep their old contents); a page number beyond the end of the file is a
//    CorruptError, because the rows it should hold are missing.

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "format/DataPage.h"
#include "format/TableDef.h"
#include "table/RowReader.h"

namespace jet {

class Database;

class Table {
public:
    Table(const Database& db, std::shared_ptr<const TableDef> def, std::string name);

    const std::string& name() const { return name_; }
    const TableDef& def() const { return *def_; }
    const Database& database() const { return db_; }

    const std::vector<RowLocation>& rowLocations() const;
    // The stored bytes of a live row and a reader over them.
    std::span<const uint8_t> rowBytes(RowLocation location) const;
    RowReader reader(RowLocation location) const;

private:
    const Database& db_;
    std::shared_ptr<const TableDef> def_;
    std::string name_;
    mutable bool scanned_ = false;
    mutable std::vector<RowLocation> rows_;
};

}  // namespace jet
