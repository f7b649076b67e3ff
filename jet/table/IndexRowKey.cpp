#include "table/IndexRowKey.h"

#include "format/TextCodec.h"
#include "table/Database.h"
#include "table/LongValue.h"

namespace jet {

IndexRowKey::IndexRowKey(const Database& db, const TableDef& def, const PhysicalIndex& index)
    : db_(db), index_(index) {
    for (const IndexColumn& ic : index.columns) {
        const Column* c = def.columnByNumber(ic.columnNumber);
        if (!c) {
            layoutProblem_ = "the index names column number " + std::to_string(ic.columnNumber) + ", which the table lacks";
            return;
        }
        IndexKeyColumn k;
        k.type = c->type();
        k.ascending = ic.ascending;
        k.version = db.version();
        // A text column without an order of its own follows the database's.
        k.collation = c->collation != 0 ? c->collation : db.header().sortOrder();
        k.collationVersion = c->collation != 0 ? c->collationVersion : db.header().sortOrderVersion();
        k.codePage = db.codePageOf(*c).number();
        columns_.push_back(c);
        keyColumns_.push_back(k);
    }
    std::vector<IndexKeyValue> nulls(keyColumns_.size());
    IndexKey none = buildIndexKey(keyColumns_, nulls);
    if (none.allNull && none.exact()) allNullKey_ = std::move(none.bytes);
}

IndexKey IndexRowKey::keyOf(const RowReader& row) const {
    std::vector<IndexKeyValue> values(columns_.size());
    std::vector<std::u16string> texts(columns_.size());      // Jet 4 text, decoded
    std::vector<std::vector<uint8_t>> longs(columns_.size());  // memo values read from their pages
    for (size_t i = 0; i < columns_.size(); ++i) {
        const Column& c = *columns_[i];
        const ColumnBytes cb = row.column(c);
        if (c.type() == ColumnType::Bool) {
            values[i] = IndexKeyValue::fromBool(cb.present);
            continue;
        }
        if (!cb.present) continue;  // null
        std::span<const uint8_t> bytes = cb.bytes;
        if (c.type() == ColumnType::Memo) {
            longs[i] = readLongValue(db_, bytes);
            bytes = longs[i];
        }
        if (c.isText() && db_.version() == Version::Jet4) {
            texts[i] = decodeJet4Text(bytes);
            values[i] = IndexKeyValue::fromText(texts[i]);
        } else {
            values[i] = IndexKeyValue::fromStored(bytes);
        }
    }
    return buildIndexKey(keyColumns_, values);
}

bool IndexRowKey::hasNull(const RowReader& row) const {
    for (const Column* c : columns_)
        if (c->type() != ColumnType::Bool && !row.column(*c).present) return true;
    return false;
}

}  // namespace jet
