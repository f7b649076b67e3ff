#include "ado/TableRecordSource.h"

#include <algorithm>

#include "table/Database.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"
#include "table/ValueConverter.h"
#include "table/ValueReader.h"

namespace jet {

TableRecordSource::TableRecordSource(std::shared_ptr<Database> db, std::shared_ptr<Table> table)
    : db_(std::move(db)), table_(std::move(table)) {
    for (const Column& c : table_->def().columns()) {
        int32_t size = c.length;
        if (c.type() == ColumnType::Text && db_->version() == Version::Jet4) size /= 2;
        if (c.isLongValue()) size = 0x3FFFFFFF;
        fields_.push_back({c.name, adoTypeOf(c), size});
    }
    // One pass over the data pages, so RecordCount is known at once.
    const auto& locations = table_->rowLocations();
    rows_.reserve(locations.size());
    for (RowLocation at : locations) rows_.push_back(at.pointer());
}

Variant TableRecordSource::value(size_t row, size_t field) const {
    const uint64_t id = rows_[row];
    if (auto it = pending_.find(id); it != pending_.end() && it->second[field]) return *it->second[field];
    const Column& c = table_->def().columns()[field];
    if (id >= firstNewId) return c.type() == ColumnType::Bool ? Variant::boolean(false) : Variant::null();
    if (cachedRow_ != row) {
        cachedReader_.reset();
        cachedRow_ = SIZE_MAX;
        cachedReader_.emplace(table_->reader(location(row)));
        cachedRow_ = row;
    }
    return readValue(*db_, c, cachedReader_->column(c));
}

void TableRecordSource::forgetCachedRow() const {
    cachedReader_.reset();
    cachedRow_ = SIZE_MAX;
}

void TableRecordSource::assign(size_t row, size_t field, const Variant& value) {
    const Column& c = table_->def().columns().at(field);
    if (c.isAutoNumber() && !isNew(row))
        throw RuntimeError(err::MultipleStepErrors, "Multiple-step operation generated errors. Check each status value. "
                                                    "The field '" + c.name + "' is an AutoNumber and cannot be changed.");
    Variant converted = convertForColumn(c, value, db_->version(), db_->codePageOf(c));
    Pending& p = pending_[rows_[row]];
    p.resize(fields_.size());
    p[field] = std::move(converted);
}

size_t TableRecordSource::addNew() {
    rows_.push_back(nextNewId_);
    pending_[nextNewId_].resize(fields_.size());
    ++nextNewId_;
    return rows_.size() - 1;
}

void TableRecordSource::cancel(size_t row) {
    pending_.erase(rows_[row]);
    if (isNew(row)) rows_.erase(rows_.begin() + std::ptrdiff_t(row));
    forgetCachedRow();
}

void TableRecordSource::cancelAll() {
    pending_.clear();
    std::erase_if(rows_, [](uint64_t id) { return id >= firstNewId; });
    forgetCachedRow();
}

std::vector<size_t> TableRecordSource::pendingRows() const {
    std::vector<size_t> out;
    for (size_t r = 0; r < rows_.size(); ++r)
        if (pending_.count(rows_[r])) out.push_back(r);
    return out;
}

void TableRecordSource::send(const std::vector<size_t>& rows) {
    // Nothing to send touches nothing: not even write access is asked for.
    if (std::none_of(rows.begin(), rows.end(), [&](size_t r) { return pending_.count(rows_[r]) != 0; })) return;
    std::vector<std::pair<size_t, RowLocation>> inserted;
    {
        Transaction tx(*db_);
        TableWriter& writer = tx.table(table_->name());
        for (size_t r : rows) {
            auto it = pending_.find(rows_[r]);
            if (it == pending_.end()) continue;
            const Pending& values = it->second;
            if (isNew(r)) {
                std::vector<Variant> all(fields_.size());
                for (size_t f = 0; f < values.size(); ++f)
                    if (values[f]) all[f] = *values[f];
                inserted.emplace_back(r, writer.insert(all));
            } else {
                std::vector<std::pair<size_t, Variant>> changes;
                for (size_t f = 0; f < values.size(); ++f)
                    if (values[f]) changes.emplace_back(f, *values[f]);
                writer.update(location(r), changes);
            }
        }
        tx.commit();
    }
    forgetCachedRow();
    for (size_t r : rows) pending_.erase(rows_[r]);
    for (auto [r, at] : inserted) rows_[r] = at.pointer();
}

void TableRecordSource::remove(size_t row) {
    if (!isNew(row)) {
        Transaction tx(*db_);
        tx.table(table_->name()).remove(location(row));
        tx.commit();
    }
    pending_.erase(rows_[row]);
    rows_.erase(rows_.begin() + std::ptrdiff_t(row));
    forgetCachedRow();
}

}  // namespace jet
