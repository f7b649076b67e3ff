#include "table/TableWriter.h"

#include <random>

#include "base/Bytes.h"
#include "format/DataPageWriter.h"
#include "index/TableIndexPages.h"
#include "table/Database.h"
#include "table/IndexMaintainer.h"
#include "table/LongValue.h"
#include "table/LongValueWriter.h"
#include "table/ValueConverter.h"
#include "table/ValueWriter.h"

namespace jet {

namespace {

IndexRowPointer indexPointer(RowLocation at) { return {at.page, at.slot}; }

bool knownType(const Column& c) {
    return (c.typeCode >= uint8_t(ColumnType::Bool) && c.typeCode <= uint8_t(ColumnType::Memo)) ||
           c.type() == ColumnType::Guid || c.type() == ColumnType::Numeric;
}

RuntimeError cannotChange(const Column& c, const std::string& why) {
    return RuntimeError(err::MultipleStepErrors, "Multiple-step operation generated errors. Check each status value. "
                                                 "The field '" + c.name + "' " + why + ".");
}

std::string randomGuid() {
    static std::mt19937_64 rng{std::random_device{}()};
    uint8_t b[16];
    for (int i = 0; i < 16; i += 8) putLe64(b + i, rng());
    b[7] = uint8_t((b[7] & 0x0F) | 0x40);  // version 4 in the stored (little-endian) third group
    b[8] = uint8_t((b[8] & 0x3F) | 0x80);
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", le32(b), le16(b + 4),
                  le16(b + 6), b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
    return text;
}

}  // namespace

TableWriter::TableWriter(const Database& db, std::shared_ptr<const TableDef> def, std::string name, PageAllocator& allocator)
    : db_(db), def_(std::move(def)), name_(std::move(name)), allocator_(allocator),
      rows_(db.pager(), db.format(), def_->page(), def_->ownedMap(), def_->freeMap(), allocator),
      counters_(db.pager(), db.format(), *def_) {
    indexes_ = std::make_unique<IndexMaintainer>(db, *def_, name_, [this](const PhysicalIndex& x) -> IndexPageStore& {
        auto& pages = indexPages_[x.number];
        if (!pages) pages = std::make_unique<TableIndexPages>(db_.pager(), db_.format(), x.ownedMap, allocator_);
        return *pages;
    });
}

TableWriter::~TableWriter() = default;

Variant TableWriter::convert(size_t column, const Variant& value) const {
    const Column& c = def_->columns().at(column);
    return convertForColumn(c, value, db_.version(), db_.codePageOf(c));
}

LongValueWriter& TableWriter::longValues(const Column& c) {
    auto& writer = longValues_[c.number];
    if (!writer) {
        const LongValueMaps* maps = def_->longValueMapsOf(c.number);
        if (!maps || maps->ownedMap == 0)
            throw cannotChange(c, "has no page map for long values, so only short values can be stored in it");
        writer = std::make_unique<LongValueWriter>(db_.pager(), db_.format(), *maps, allocator_);
    }
    return *writer;
}

// The stored form of one converted value. Long values go inline when short enough and
// `keepInline`; otherwise onto long-value pages (recorded in `written`).
StoredValue TableWriter::store(size_t column, const Variant& v, bool keepInline,
                               std::vector<std::vector<uint8_t>>& written) {
    const Column& c = def_->columns()[column];
    StoredValue out;
    if (c.type() == ColumnType::Bool) {
        out.present = v.asBool();
        return out;
    }
    if (v.isNull()) return out;
    out.present = true;
    std::vector<uint8_t> bytes = encodeValue(c, v, db_.version(), db_.codePageOf(c));
    if (!c.isLongValue()) {
        out.bytes = std::move(bytes);
        return out;
    }
    if (keepInline && bytes.size() <= LongValueWriter::maxInline) {
        out.bytes = LongValueWriter::inlineField(bytes);
    } else {
        out.bytes = longValues(c).store(bytes);
        written.push_back(out.bytes);
    }
    return out;
}

// The row's bytes; when inline long values make it too large, they move out of the row.
std::vector<uint8_t> TableWriter::layOut(std::vector<StoredValue>& values, const std::vector<Variant>& converted,
                                         std::vector<std::vector<uint8_t>>& written) {
    try {
        return encodeRow(db_.format(), *def_, values);
    } catch (const RuntimeError&) {
        bool moved = false;
        for (size_t i = 0; i < values.size(); ++i) {
            const Column& c = def_->columns()[i];
            if (!c.isLongValue() || !values[i].present || values[i].bytes.size() <= LongValueWriter::headerSize) continue;
            if (longValueHeader(values[i].bytes).kind != long_value_kind::Inline || converted[i].isEmpty()) continue;
            values[i] = store(i, converted[i], false, written);
            moved = true;
        }
        if (!moved) throw;
        return encodeRow(db_.format(), *def_, values);
    }
}

RowLocation TableWriter::insert(const std::vector<Variant>& given) {
    const auto& columns = def_->columns();
    if (given.size() != columns.size()) throw std::invalid_argument("TableWriter::insert: one value per column");
    std::vector<Variant> converted(columns.size());
    uint32_t counter = counters_.autoNumber();
    for (size_t i = 0; i < columns.size(); ++i) {
        const Column& c = columns[i];
        const bool absent = given[i].isEmpty() || given[i].isNull();
        if (c.isAutoNumber() && c.type() == ColumnType::Long) {
            if (absent) {
                if (counter == uint32_t(INT32_MAX)) throw cannotChange(c, "has run out of AutoNumber values");
                converted[i] = Variant::longValue(int32_t(++counter));
                continue;
            }
            converted[i] = convert(i, given[i]);
            if (converted[i].asLong() > int32_t(counter)) counter = uint32_t(converted[i].asLong());
            continue;
        }
        if ((c.flags & column_flag::GuidAutoNumber) && c.type() == ColumnType::Guid && absent) {
            converted[i] = Variant::string(randomGuid());
            continue;
        }
        // Access's own opaque column types are left Null.
        if (absent && !knownType(c)) {
            converted[i] = Variant::null();
            continue;
        }
        converted[i] = convert(i, given[i]);
    }
    std::vector<std::vector<uint8_t>> written;
    std::vector<StoredValue> values(columns.size());
    for (size_t i = 0; i < columns.size(); ++i) values[i] = store(i, converted[i], true, written);
    std::vector<uint8_t> row = layOut(values, converted, written);

    const uint32_t page = rows_.pageFor(uint32_t(row.size()));
    const RowLocation at{page, uint8_t(DataPage(db_.format(), db_.pager().read(page)).slotCount())};
    IndexPlan plan = indexes_->planInsert(row, indexPointer(at));

    const uint8_t slot = DataPageWriter(db_.format(), db_.pager().writable(page)).append(row);
    if (slot != at.slot) throw CorruptError("a row did not land in the slot its index entries name");
    indexes_->apply(plan);
    for (const IndexEntryChange& change : plan.changes)
        if (change.newDistinctKey) counters_.addDistinctKey(change.index);
    counters_.setRowCount(counters_.rowCount() + 1);
    if (counter != counters_.autoNumber()) counters_.setAutoNumber(counter);
    return at;
}

void TableWriter::update(RowLocation at, const std::vector<std::pair<size_t, Variant>>& changes) {
    for (const auto& change : changes)
        if (const Column& c = def_->columns().at(change.first); c.isAutoNumber())
            throw cannotChange(c, "is an AutoNumber and cannot be changed");
    rewrite(at, changes);
}

void TableWriter::numberRow(RowLocation at, size_t column, int32_t number) {
    rewrite(at, {{column, Variant::longValue(number)}});
    if (uint32_t(number) > counters_.autoNumber()) counters_.setAutoNumber(uint32_t(number));
}

void TableWriter::rewrite(RowLocation at, const std::vector<std::pair<size_t, Variant>>& changes) {
    if (changes.empty()) return;
    const auto& columns = def_->columns();
    const Format& f = db_.format();
    const std::vector<uint8_t> oldRow = [&] {
        auto bytes = db_.rowBytes(at, def_->page());
        return std::vector<uint8_t>(bytes.begin(), bytes.end());
    }();
    const RowReader before(f, *def_, oldRow);
    std::vector<Variant> converted(columns.size());
    std::vector<StoredValue> values(columns.size());
    std::vector<bool> changed(columns.size(), false);
    for (const auto& [i, value] : changes) {
        converted[i] = convert(i, value);
        changed[i] = true;
    }
    std::vector<std::vector<uint8_t>> written;
    std::vector<std::pair<const Column*, std::span<const uint8_t>>> replaced;
    for (size_t i = 0; i < columns.size(); ++i) {
        const Column& c = columns[i];
        if (changed[i]) {
            values[i] = store(i, converted[i], true, written);
            if (c.isLongValue()) {
                ColumnBytes old = before.column(c);
                if (old.present) replaced.emplace_back(&c, old.bytes);
            }
            continue;
        }
        ColumnBytes old = before.column(c);
        values[i].present = old.present;
        values[i].bytes.assign(old.bytes.begin(), old.bytes.end());
    }
    std::vector<uint8_t> row = layOut(values, converted, written);
    IndexPlan plan = indexes_->planUpdate(oldRow, row, indexPointer(at));
    place(at, row);
    indexes_->apply(plan);
    for (const IndexEntryChange& change : plan.changes)
        if (change.newDistinctKey) counters_.addDistinctKey(change.index);
    // The replaced long values go last: until the new row is in place they are still its data.
    for (auto [column, field] : replaced) removeLongValue(*column, field);
}

// Writes the new bytes of row `at`: where its data is now if they fit there, else on another
// page with the original slot pointing to them.
void TableWriter::place(RowLocation at, std::span<const uint8_t> bytes) {
    const Format& f = db_.format();
    DataPage home(f, db_.pager().read(at.page));
    std::optional<RowLocation> target;
    if (home.isOverflowHeader(at.slot)) target = RowLocation::fromPointer(le32(home.row(at.slot).data()));
    if (target) {
        if (DataPageWriter(f, db_.pager().writable(target->page)).replace(target->slot, bytes, slot_flag::Moved)) return;
    } else if (DataPageWriter(f, db_.pager().writable(at.page)).replace(at.slot, bytes, 0)) {
        return;
    }
    const uint32_t page = rows_.pageFor(uint32_t(bytes.size()), at.page);
    const uint8_t slot = DataPageWriter(f, db_.pager().writable(page)).append(bytes, slot_flag::Moved);
    uint8_t pointer[4];
    putLe32(pointer, RowLocation{page, slot}.pointer());
    if (!DataPageWriter(f, db_.pager().writable(at.page)).replace(at.slot, pointer, slot_flag::Overflow))
        throw CorruptError("row " + std::to_string(at.slot) + " of page " + std::to_string(at.page) +
                           " has no room left for an overflow pointer");
    if (target) deleteSlot(*target);
}

void TableWriter::deleteSlot(RowLocation at) {
    DataPageWriter(db_.format(), db_.pager().writable(at.page)).setFlags(at.slot, slot_flag::Deleted);
    rows_.released(at.page);
}

void TableWriter::removeLongValue(const Column& c, std::span<const uint8_t> field) {
    if (field.size() >= LongValueWriter::headerSize && longValueHeader(field).kind != long_value_kind::Inline)
        longValues(c).remove(field);
}

void TableWriter::removeLongValues(std::span<const uint8_t> row) {
    const RowReader reader(db_.format(), *def_, row);
    for (const Column& c : def_->columns()) {
        if (!c.isLongValue()) continue;
        ColumnBytes field = reader.column(c);
        if (field.present) removeLongValue(c, field.bytes);
    }
}

void TableWriter::relayOut(RowLocation at, uint16_t varColumnsWritten) {
    const auto stored = db_.rowBytes(at, def_->page());
    const std::vector<uint8_t> oldRow(stored.begin(), stored.end());
    const RowReader before(db_.format(), varColumnsWritten, oldRow);
    std::vector<StoredValue> values(def_->columns().size());
    for (size_t i = 0; i < values.size(); ++i) {
        ColumnBytes old = before.column(def_->columns()[i]);
        values[i].present = old.present;
        values[i].bytes.assign(old.bytes.begin(), old.bytes.end());
    }
    place(at, encodeRow(db_.format(), *def_, values));
}

void TableWriter::remove(RowLocation at) {
    const std::vector<uint8_t> oldRow = [&] {
        auto bytes = db_.rowBytes(at, def_->page());
        return std::vector<uint8_t>(bytes.begin(), bytes.end());
    }();
    IndexPlan plan = indexes_->planDelete(oldRow, indexPointer(at));
    indexes_->apply(plan);
    removeLongValues(oldRow);
    DataPage home(db_.format(), db_.pager().read(at.page));
    if (home.isOverflowHeader(at.slot)) deleteSlot(RowLocation::fromPointer(le32(home.row(at.slot).data())));
    deleteSlot(at);
    const uint32_t count = counters_.rowCount();
    counters_.setRowCount(count > 0 ? count - 1 : 0);
}

}  // namespace jet
