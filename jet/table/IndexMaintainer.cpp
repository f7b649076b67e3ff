#include "table/IndexMaintainer.h"

#include <cstdio>

#include "index/IndexTree.h"
#include "index/IndexTreeWriter.h"
#include "pager/Pager.h"
#include "table/Database.h"
#include "table/RowReader.h"

namespace jet {
namespace {

// Jet's own words for the two constraint violations.
constexpr const char* kDuplicateMessage =
    "The changes you requested to the table were not successful because they would create duplicate values in the "
    "index, primary key, or relationship. Change the data in the field or fields that contain duplicate data, remove "
    "the index, or redefine the index to permit duplicate entries and try again.";
constexpr const char* kNullKeyMessage = "Index or primary key cannot contain a Null value.";

}  // namespace

IndexMaintainer::IndexMaintainer(const Database& db, const TableDef& def, std::string tableName, PagesOf pagesOf)
    : db_(db), def_(def), tableName_(std::move(tableName)), pagesOf_(std::move(pagesOf)) {
    for (const PhysicalIndex& x : def.physicalIndexes()) {
        Index index{&x, "", false, std::make_unique<IndexRowKey>(db, def, x)};
        for (const LogicalIndex& l : def.logicalIndexes()) {
            if (l.physicalIndex != x.number) continue;
            if (index.name.empty() || l.kind == index_kind::PrimaryKey) index.name = l.name;
            index.primaryKey = index.primaryKey || l.kind == index_kind::PrimaryKey;
        }
        if (index.name.empty()) index.name = std::to_string(x.number);
        indexes_.push_back(std::move(index));
    }
}

void IndexMaintainer::refuse(const Index& x, const std::string& why, int32_t number) const {
    throw RuntimeError(number, "The index '" + x.name + "' of table '" + tableName_ + "' cannot be kept: " + why);
}

// Keys of text in another collating order are not known: such a table is read, never changed.
void IndexMaintainer::refuseUnknownCollation() const {
    for (const Index& x : indexes_) {
        if (!x.keys->layoutProblem().empty()) refuse(x, x.keys->layoutProblem(), err::Unspecified);
        for (const IndexKeyColumn& c : x.keys->keyColumns()) {
            if (c.type != ColumnType::Text && c.type != ColumnType::Memo) continue;
            const bool general = c.collation == kGeneralCollation && (c.version == Version::Jet3 || c.collationVersion == 0);
            if (general) continue;
            char buf[96];
            std::snprintf(buf, sizeof buf, "its text is sorted in the collating order 0x%04X, whose keys are not known",
                          unsigned(c.collation));
            refuse(x, buf, err::Unspecified);
        }
    }
}

std::optional<std::vector<uint8_t>> IndexMaintainer::newKey(const Index& x, const RowReader& row) const {
    IndexKey key = x.keys->keyOf(row);
    if ((x.primaryKey || x.keys->required()) && x.keys->hasNull(row))
        throw RuntimeError(err::Unspecified, kNullKeyMessage);
    if (x.keys->ignoresNulls() && key.allNull) return std::nullopt;
    if (!key.exact()) refuse(x, "this value has no exact index key: " + key.problem, err::Unspecified);
    if (key.bytes.size() > maxIndexKeyLength(db_.format()))
        refuse(x, "the value is too long for an index entry", err::Unspecified);
    return std::move(key.bytes);
}

// Refuses a key a unique index already holds for another row; tells whether it is new.
bool IndexMaintainer::checkNewKey(const Index& x, const std::vector<uint8_t>& key, IndexRowPointer at) const {
    IndexTree tree(db_.format(), pagesOf_(*x.physical), x.physical->rootPage);
    const auto other = tree.otherRowWithKey(key, at);
    if (other && x.keys->unique() && key != x.keys->allNullKey())
        throw RuntimeError(err::IntegrityViolation, kDuplicateMessage);
    return !other;
}

std::optional<std::vector<uint8_t>> IndexMaintainer::oldKey(const Index& x, const RowReader& row, bool& byRow) const {
    IndexKey key = x.keys->keyOf(row);
    if (x.keys->ignoresNulls() && key.allNull) return std::nullopt;
    if (!key.exact()) {
        byRow = true;  // written by Jet with codes this engine does not know
        return std::nullopt;
    }
    return std::move(key.bytes);
}

IndexPlan IndexMaintainer::plan(const RowReader* before, const RowReader* after, IndexRowPointer at) {
    refuseUnknownCollation();
    IndexPlan plan{at, {}};
    for (const Index& x : indexes_) {
        IndexEntryChange change;
        change.index = x.physical->number;
        if (before) change.remove = oldKey(x, *before, change.removeByRow);
        if (after) change.insert = newKey(x, *after);
        if (change.remove && change.insert && *change.remove == *change.insert) continue;  // key unchanged
        if (change.insert) change.newDistinctKey = checkNewKey(x, *change.insert, at);
        if (change.remove || change.removeByRow || change.insert) plan.changes.push_back(std::move(change));
    }
    return plan;
}

IndexPlan IndexMaintainer::planInsert(std::span<const uint8_t> row, IndexRowPointer at) {
    const RowReader after(db_.format(), def_, row);
    return plan(nullptr, &after, at);
}

IndexPlan IndexMaintainer::planUpdate(std::span<const uint8_t> oldRow, std::span<const uint8_t> newRow,
                                      IndexRowPointer at) {
    const RowReader before(db_.format(), def_, oldRow);
    const RowReader after(db_.format(), def_, newRow);
    return plan(&before, &after, at);
}

IndexPlan IndexMaintainer::planDelete(std::span<const uint8_t> row, IndexRowPointer at) {
    const RowReader before(db_.format(), def_, row);
    return plan(&before, nullptr, at);
}

void IndexMaintainer::apply(const IndexPlan& plan) {
    for (const IndexEntryChange& change : plan.changes) {
        const Index& x = indexes_.at(change.index);
        IndexTreeWriter writer(db_.format(), pagesOf_(*x.physical), x.physical->rootPage, def_.page());
        const bool removed = change.removeByRow ? writer.removeRow(plan.row)
                             : change.remove    ? writer.remove(*change.remove, plan.row)
                                                : true;
        if (!removed) throw CorruptError("the index '" + x.name + "' of table '" + tableName_ + "' has no entry for the row");
        if (change.insert) writer.insert(*change.insert, plan.row);
    }
}

}  // namespace jet
