#include "TableRecordSource.h"

#include "Database.h"
#include "ValueReader.h"

namespace jet {

TableRecordSource::TableRecordSource(std::shared_ptr<const Database> db, std::shared_ptr<Table> table)
    : db_(std::move(db)), table_(std::move(table)) {
    for (const Column& c : table_->def().columns()) {
        int32_t size = c.length;
        if (c.type() == ColumnType::Text && db_->version() == Version::Jet4) size /= 2;
        if (c.isLongValue()) size = 0x3FFFFFFF;
        fields_.push_back({c.name, adoTypeOf(c), size});
    }
    table_->rowLocations();  // one pass over the data pages, so RecordCount is known at once
}

Variant TableRecordSource::value(size_t row, size_t field) const {
    if (cachedRow_ != row) {
        cachedReader_.reset();
        cachedRow_ = SIZE_MAX;
        cachedReader_.emplace(table_->reader(table_->rowLocations()[row]));
        cachedRow_ = row;
    }
    const Column& c = table_->def().columns()[field];
    return readValue(*db_, c, cachedReader_->column(c));
}

}  // namespace jet
