#include "table/Catalog.h"

#include <algorithm>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/TextCodec.h"
#include "table/Database.h"
#include "table/Table.h"

namespace jet {

namespace {

constexpr uint32_t catalogPage = 2;

const Column& requireColumn(const TableDef& def, const char* name) {
    const Column* c = def.findColumn(name);
    if (!c) throw CorruptError(std::string("the catalogue has no column ") + name);
    return *c;
}

// The catalogue's own columns are read straight from the row bytes: the value layer
// sits above the catalogue, and these few fixed types need nothing of it.
int64_t intValue(const RowReader& row, const Column& c) {
    ColumnBytes v = row.column(c);
    if (!v.present) return 0;
    switch (v.bytes.size()) {
    case 2: return lei16(v.bytes.data());
    case 4: return lei32(v.bytes.data());
    default: throw CorruptError("catalogue column " + c.name + " has " + std::to_string(v.bytes.size()) + " bytes");
    }
}

double dateValue(const RowReader& row, const Column& c) {
    ColumnBytes v = row.column(c);
    return v.present && v.bytes.size() == 8 ? lef64(v.bytes.data()) : 0.0;
}

}  // namespace

Catalog Catalog::read(const Database& db) {
    auto def = db.tableDef(catalogPage);
    const Column& id = requireColumn(*def, "Id");
    const Column& parentId = requireColumn(*def, "ParentId");
    const Column& name = requireColumn(*def, "Name");
    const Column& type = requireColumn(*def, "Type");
    const Column& flags = requireColumn(*def, "Flags");
    const Column* created = def->findColumn("DateCreate");
    const Column* updated = def->findColumn("DateUpdate");

    Table objects(db, def, "MSysObjects");
    Catalog cat;
    for (RowLocation loc : objects.rowLocations()) {
        RowReader row = objects.reader(loc);
        CatalogEntry e;
        e.row = loc;
        e.id = int32_t(intValue(row, id));
        e.parentId = int32_t(intValue(row, parentId));
        e.type = int16_t(intValue(row, type));
        e.flags = uint32_t(intValue(row, flags));
        ColumnBytes n = row.column(name);
        if (n.present) e.name = decodeText(db.version(), db.codePageOf(name), n.bytes);
        if (created) e.dateCreate = dateValue(row, *created);
        if (updated) e.dateUpdate = dateValue(row, *updated);
        cat.entries_.push_back(std::move(e));
    }
    return cat;
}

const CatalogEntry* Catalog::findTable(std::string_view name) const {
    for (const auto& e : entries_)
        if (e.isTable() && equalsIgnoreCase(e.name, name)) return &e;
    return nullptr;
}

std::vector<const CatalogEntry*> Catalog::userTables() const {
    std::vector<const CatalogEntry*> out;
    for (const auto& e : entries_)
        if (e.isUserTable()) out.push_back(&e);
    std::stable_sort(out.begin(), out.end(), [](const CatalogEntry* a, const CatalogEntry* b) {
        return collateNames(a->name, b->name) < 0;
    });
    return out;
}

}  // namespace jet
