#pragma once
// A table's rows as a record source, and the record set's buffer of changes not yet sent.
// It holds the table's row locations (physical order) and decodes only the field that is
// asked for; the layout of the last row read is kept, so reading all fields of one row
// parses its trailer once.
//
// Invariants:
//  - A row is either in the file (its location) or new (appended by AddNew, not sent yet);
//    values assigned and not sent are kept per row and override what the file holds, so
//    reads through the record set see them. Nothing reaches the file except through
//    send() and remove(), each one transaction: all of it or none, and on failure the
//    buffer stays as it was.
//  - Values in the buffer are already converted to their column's type, so a value that
//    cannot be stored is refused when it is assigned.

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "ado/RecordSource.h"
#include "table/RowReader.h"
#include "table/Table.h"

namespace jet {

class Database;

class TableRecordSource final : public RecordSource {
public:
    // Keeps the database alive as long as the record set needs it.
    TableRecordSource(std::shared_ptr<Database> db, std::shared_ptr<Table> table);

    const std::vector<FieldInfo>& fields() const override { return fields_; }
    size_t rowCount() const override { return rows_.size(); }
    Variant value(size_t row, size_t field) const override;

    const Table& table() const { return *table_; }

    // The change buffer.
    bool isNew(size_t row) const { return rows_[row] >= firstNewId; }
    bool hasPending(size_t row) const { return pending_.count(rows_[row]) != 0; }
    // Converts and keeps a value for the row (throws, keeping nothing, when it does not fit).
    void assign(size_t row, size_t field, const Variant& value);
    // A new row at the end; returns its position.
    size_t addNew();
    // Forgets what was assigned to the row; a new row disappears.
    void cancel(size_t row);
    void cancelAll();
    // Positions of the rows that have something to send, in order.
    std::vector<size_t> pendingRows() const;
    // Writes the rows' pending values (inserting the new ones) in one transaction.
    void send(const std::vector<size_t>& rows);
    // Deletes the row from the file in one transaction (a new row is just forgotten).
    void remove(size_t row);

private:
    // Row ids: a stored row's pointer (below 2^32), or an id from firstNewId on.
    static constexpr uint64_t firstNewId = uint64_t(1) << 40;
    using Pending = std::vector<std::optional<Variant>>;

    RowLocation location(size_t row) const { return RowLocation::fromPointer(uint32_t(rows_[row])); }
    void forgetCachedRow() const;

    std::shared_ptr<Database> db_;
    std::shared_ptr<Table> table_;
    std::vector<FieldInfo> fields_;
    std::vector<uint64_t> rows_;
    std::unordered_map<uint64_t, Pending> pending_;
    uint64_t nextNewId_ = firstNewId;
    mutable size_t cachedRow_ = SIZE_MAX;
    mutable std::optional<RowReader> cachedReader_;
};

}  // namespace jet
