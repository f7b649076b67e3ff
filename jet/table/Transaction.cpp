#include "table/Transaction.h"

#include "table/Database.h"
#include "table/Table.h"
#include "table/TableWriter.h"

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
    return this->table(table->def().page(), table->name());
}

TableWriter& Transaction::table(uint32_t tdefPage, std::string_view name) {
    auto& writer = writers_[tdefPage];
    if (!writer) writer = std::make_unique<TableWriter>(db_, db_.tableDef(tdefPage), std::string(name), allocator_);
    return *writer;
}

void Transaction::schemaChanged(uint32_t tdefPage) {
    if (writers_.count(tdefPage)) throw std::logic_error("a table's definition changed under its writer");
    db_.forgetTableDef(tdefPage);
    schemaChanged_.insert(tdefPage);
}

void Transaction::finish() {
    open_ = false;
    std::vector<uint32_t> tables;
    for (const auto& [page, writer] : writers_) tables.push_back(page);
    writers_.clear();
    for (uint32_t page : schemaChanged_) db_.forgetTableDef(page);
    for (uint32_t page : tables)
        if (!schemaChanged_.count(page)) db_.reloadTableDef(page);
    if (!schemaChanged_.empty()) db_.reloadCatalog();
    schemaChanged_.clear();
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
