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
#include <memory>
#include <string_view>

#include "PageAllocator.h"

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
    PageAllocator& allocator() { return allocator_; }
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
};

}  // namespace jet
