#pragma once
// A table's rows as a record source. It holds the table's row locations (physical order)
// and decodes only the field that is asked for; the layout of the last row read is kept,
// so reading all fields of one row parses its trailer once.

#include <memory>
#include <optional>

#include "RecordSource.h"
#include "RowReader.h"
#include "Table.h"

namespace jet {

class Database;

class TableRecordSource final : public RecordSource {
public:
    // Keeps the database alive as long as the record set needs it.
    TableRecordSource(std::shared_ptr<const Database> db, std::shared_ptr<Table> table);

    const std::vector<FieldInfo>& fields() const override { return fields_; }
    size_t rowCount() const override { return table_->rowLocations().size(); }
    Variant value(size_t row, size_t field) const override;

    const Table& table() const { return *table_; }

private:
    std::shared_ptr<const Database> db_;
    std::shared_ptr<Table> table_;
    std::vector<FieldInfo> fields_;
    mutable size_t cachedRow_ = SIZE_MAX;
    mutable std::optional<RowReader> cachedReader_;
};

}  // namespace jet
