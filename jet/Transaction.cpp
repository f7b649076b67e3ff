#include "Transaction.h"

#include "Database.h"
#include "Table.h"
#include "TableWriter.h"

namespace jet {

Transaction::Transaction(Database& db) : db_(db), allocator_(db.pager(), db.format()) {
    db_.beginWrite();
    open_ = true;
}

Transaction::~Transaction() {
    if (!open_) return;
    try {
        rollback();
    } catch (...) {
        // A rollback only copies pages back in memory; nothing here can be reported.
    }
}

TableWriter& Transaction::table(std::string_view name) {
    auto table = db_.openTable(name);
    auto& writer = writers_[table->def().page()];
    if (!writer)
        writer = std::make_unique<TableWriter>(db_, db_.tableDef(table->def().page()), table->name(), allocator_);
    return *writer;
}

void Transaction::finish() {
    open_ = false;
    std::vector<uint32_t> tables;
    for (const auto& [page, writer] : writers_) tables.push_back(page);
    writers_.clear();
    for (uint32_t page : tables) db_.reloadTableDef(page);
}

void Transaction::commit() {
    try {
        db_.pager().commit();
    } catch (...) {
        finish();
        throw;
    }
    finish();
}

void Transaction::rollback() {
    db_.pager().rollback();
    finish();
}

}  // namespace jet
