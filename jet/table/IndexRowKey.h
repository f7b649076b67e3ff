#pragma once
// The key a table row has in one of the table's physical indexes: the index's columns
// resolved against the table definition (type, direction, collating order, code page),
// and their values taken from a stored row. Reading and writing share it, so the entries
// the writer adds are exactly the ones the integrity checker expects.

#include <span>
#include <string>
#include <vector>

#include "format/TableDef.h"
#include "index/IndexKey.h"
#include "table/RowReader.h"

namespace jet {

class Database;

class IndexRowKey {
public:
    IndexRowKey(const Database& db, const TableDef& def, const PhysicalIndex& index);

    // Why the index cannot be keyed at all (a column it names does not exist); empty if it can.
    const std::string& layoutProblem() const { return layoutProblem_; }
    const std::vector<IndexKeyColumn>& keyColumns() const { return keyColumns_; }
    const PhysicalIndex& index() const { return index_; }

    bool unique() const { return index_.flags & index_flag::Unique; }
    bool ignoresNulls() const { return index_.flags & index_flag::IgnoreNulls; }
    bool required() const { return index_.flags & index_flag::Required; }

    // The row's key (memo values are read from their long-value pages). Throws
    // CorruptError when a value cannot be read.
    IndexKey keyOf(const RowReader& row) const;
    // True when a key column other than a Yes/No one is null in the row.
    bool hasNull(const RowReader& row) const;
    // The key every all-null row has; empty when no row can be all null (a Yes/No column).
    const std::vector<uint8_t>& allNullKey() const { return allNullKey_; }

private:
    const Database& db_;
    const PhysicalIndex& index_;
    std::vector<const Column*> columns_;
    std::vector<IndexKeyColumn> keyColumns_;
    std::vector<uint8_t> allNullKey_;
    std::string layoutProblem_;
};

}  // namespace jet
