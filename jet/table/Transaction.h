#pragma once
// One write transaction on a database: everything it changes reaches the file together at
// commit(), or not at all. Writers of rows, the loader and the schema writer work inside
// one; what they cache about pages and maps lives here and dies with it.
//
// Invariants:
//  - Destroying a transaction that was not committed rolls it back, so an exception
//    anywhere inside leaves the file and the pager's pages as they were.
//  - After commit or rollback the definitions of the tables written are parsed again, so
//    readers see the counters the file now holds.

#include <map>
#include <set>
#include <memory>
#include <string_view>

#include "format/PageAllocator.h"

namespace jet {

class Database;
class TableWriter;

class Transaction {
public:
    // Begins; throws when the database may not be written (read-only file or folder,
    // another program using it) with nothing changed.
    explicit Transaction(Database& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // The writer of a table (by name, as Database::openTable finds it), one per table.
    TableWriter& table(std::string_view name);
    // The writer of the table whose definition starts on `tdefPage`, for tables the
    // catalogue does not list yet (the system tables of a new file).
    TableWriter& table(uint32_t tdefPage, std::string_view name);
    PageAllocator& allocator() { return allocator_; }
    // The schema writer rewrote or dropped this table's definition: the parsed copy is
    // dropped now, and once more with the catalogue when the transaction ends, committed
    // or rolled back, so nobody keeps seeing a definition the file no longer holds.
    void schemaChanged(uint32_t tdefPage);
    Database& database() { return db_; }

    void commit();
    void rollback();
    bool open() const { return open_; }

private:
    void finish();

    Database& db_;
    bool open_ = false;
    PageAllocator allocator_;
    std::map<uint32_t, std::unique_ptr<TableWriter>> writers_;
    std::set<uint32_t> schemaChanged_;
};

}  // namespace jet
