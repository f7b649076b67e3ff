#include "sql/SchemaWriter.h"

#include <set>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/PropertyBlob.h"
#include "format/TextCodec.h"
#include "jet/DateSerial.h"
#include "sql/ColumnLayout.h"
#include "sql/ObjectNames.h"
#include "table/CatalogWriter.h"
#include "table/Database.h"
#include "table/LongValue.h"
#include "table/MapRows.h"
#include "table/RowWriter.h"
#include "table/Table.h"
#include "table/TableDefStore.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"

namespace jet {

namespace {

constexpr uint8_t kUserTable = 0x4E;
// Jet's own limit on columns, and the most a Jet 3 row can count.
constexpr size_t kMaxColumns = 255;

RuntimeError noSuchTable(const std::string& table) {
    return RuntimeError(err::NoSuchTable, "Table '" + table + "' does not exist.");
}
RuntimeError tableExists(const std::string& table) {
    return RuntimeError(err::ObjectExists, "Table '" + table + "' already exists.");
}
RuntimeError noSuchColumn(const std::string& column, const std::string& table) {
    return RuntimeError(err::NoSuchColumn, "Field '" + column + "' does not exist in table '" + table + "'.");
}
RuntimeError columnExists(const std::string& column, const std::string& table) {
    return RuntimeError(err::ObjectExists, "Field '" + column + "' already exists in table '" + table + "'.");
}
RuntimeError tooManyColumns() { return RuntimeError(err::Unspecified, "Too many fields defined."); }
RuntimeError recordTooLarge() { return RuntimeError(err::Unspecified, "Record is too large."); }
RuntimeError badFieldDefinition() { return RuntimeError(err::SyntaxError, "Syntax error in field definition."); }

const CodePage* jet3Names(const Database& db) { return db.version() == Version::Jet3 ? &db.codePage() : nullptr; }

// A user table, found by name; system and Access's own tables may not be changed.
const CatalogEntry& userTable(const Database& db, const std::string& name) {
    const CatalogEntry* e = db.catalog().findTable(name);
    if (!e) throw noSuchTable(name);
    if (!e->isUserTable() && (e->flags & (object_flag::System | object_flag::AccessSystem)))
        throw RuntimeError(err::ReadOnly,
                           "You do not have the necessary permissions to use the '" + e->name + "' object.");
    return *e;
}

bool nameTaken(const Database& db, const std::string& name) {
    for (const CatalogEntry& e : db.catalog().entries())
        if (e.parentId == TablesContainerId && equalsIgnoreCase(e.name, name)) return true;
    return false;
}

// A column as SQL declares it, checked against what the file can hold.
Column declaredColumn(const Database& db, const sql::ColumnDeclaration& declared) {
    checkObjectName(declared.name, jet3Names(db));
    if (declared.type == ColumnType::Numeric && db.version() == Version::Jet3) throw badFieldDefinition();
    return columnFromDeclaration(declared, db.version(), db.codePage().number());
}

// Refuses a layout whose empty row would already be too large to store.
void checkRowSize(const Database& db, const TableDef& def) {
    try {
        encodeRow(db.format(), def, std::vector<StoredValue>(def.columns().size()));
    } catch (const RuntimeError&) {
        throw recordTooLarge();
    }
}

// Usage maps for a memo or OLE column just added.
void addLongValueMaps(MapRows& maps, TableDef& def, uint16_t number) {
    const Column* c = def.columnByNumber(number);
    if (!c->isLongValue()) return;
    const uint32_t owned = maps.create();
    def.addLongValueMaps({number, owned, maps.create()});
}

// Pages of `map` that are what the map says they are: `keep` decides, so a damaged map
// never gets another structure's page freed.
template <typename Keep>
void collectPages(MapRows& maps, uint32_t map, std::set<uint32_t>& pages, Keep keep) {
    if (map == 0) return;
    MapRows::Contents c = maps.contents(map);
    for (uint32_t p : c.pages)
        if (keep(p)) pages.insert(p);
    pages.insert(c.mapPages.begin(), c.mapPages.end());
}

}  // namespace

void SchemaWriter::run(const sql::Statement& statement) {
    std::visit(
        [this](const auto& st) {
            using T = std::decay_t<decltype(st)>;
            if constexpr (std::is_same_v<T, sql::CreateTable>) createTable(st);
            else if constexpr (std::is_same_v<T, sql::AddColumn>) addColumn(st);
            else if constexpr (std::is_same_v<T, sql::DropColumn>) dropColumn(st);
            else if constexpr (std::is_same_v<T, sql::RenameColumn>) renameColumn(st);
            else dropTable(st);
        },
        statement);
}

void SchemaWriter::createTable(const sql::CreateTable& st) {
    checkObjectName(st.table, jet3Names(db_));
    if (nameTaken(db_, st.table)) throw tableExists(st.table);
    if (st.columns.size() > kMaxColumns) throw tooManyColumns();
    TableDef def = TableDef::blank(db_.version(), kUserTable);
    std::vector<uint16_t> numbers;
    for (const sql::ColumnDeclaration& declared : st.columns) {
        Column c = declaredColumn(db_, declared);
        if (def.findColumn(c.name)) throw columnExists(c.name, st.table);
        numbers.push_back(appendColumn(def, std::move(c)));
    }
    checkRowSize(db_, def);

    Transaction t(db_);
    const uint32_t page = t.allocator().allocate();
    MapRows maps(t);
    const uint32_t owned = maps.create();
    def.setMaps(owned, maps.create());
    for (uint16_t number : numbers) addLongValueMaps(maps, def, number);
    storeTableDef(t, def, page);
    CatalogWriter(t).addTable(int32_t(page), st.table, nowSerial());
    t.commit();
}

void SchemaWriter::addColumn(const sql::AddColumn& st) {
    const CatalogEntry& table = userTable(db_, st.table);
    const std::shared_ptr<const TableDef> before = db_.tableDef(table.tdefPage());
    TableDef def = *before;
    Column c = declaredColumn(db_, st.column);
    if (def.findColumn(c.name)) throw columnExists(c.name, table.name);
    if (def.columns().size() >= kMaxColumns || def.maxColumns() >= kMaxColumns) throw tooManyColumns();
    // Rows written without any variable section must get one once a column needs it, and
    // a new COUNTER numbers the rows already there, as Jet does: 1, 2, 3... in physical order.
    const bool firstVariable = before->varColumns() == 0 && !c.isFixed();
    const bool counter = c.isAutoNumber() && c.type() == ColumnType::Long;
    const uint16_t number = appendColumn(def, std::move(c));
    checkRowSize(db_, def);

    Transaction t(db_);
    MapRows maps(t);
    addLongValueMaps(maps, def, number);
    storeTableDef(t, def);
    if (firstVariable || counter) {
        const std::vector<RowLocation> locations = db_.openTable(table.name)->rowLocations();
        TableWriter& writer = t.table(table.name);
        const size_t position = size_t(writer.def().columnByNumber(number) - writer.def().columns().data());
        int32_t next = 0;
        for (RowLocation at : locations) {
            if (firstVariable) writer.relayOut(at, 0);
            if (counter) writer.numberRow(at, position, ++next);
        }
    }
    CatalogWriter(t).touch(table, nowSerial());
    t.commit();
}

void SchemaWriter::dropColumn(const sql::DropColumn& st) {
    const CatalogEntry& table = userTable(db_, st.table);
    TableDef def = *db_.tableDef(table.tdefPage());
    const Column* c = def.findColumn(st.column);
    if (!c) throw noSuchColumn(st.column, table.name);
    if (def.columns().size() == 1)
        throw RuntimeError(err::Unspecified, "Cannot delete the last field of table '" + table.name +
                                                 "'. A table must have at least one field.");
    if (def.columnIsIndexed(c->number))
        throw RuntimeError(err::Unspecified,
                           "Cannot delete a field that is part of an index or is needed by the system.");
    const Column dropped = *c;

    Transaction t(db_);
    MapRows maps(t);
    // Old rows keep the column's bytes, but nothing reads its long values any more.
    if (const LongValueMaps* lv = def.longValueMapsOf(dropped.number)) {
        std::set<uint32_t> pages;
        collectPages(maps, lv->ownedMap, pages, [&](uint32_t p) {
            DataPage page(db_.format(), db_.pager().read(p));
            return page.isDataPage() && page.owner() == LvalOwner;
        });
        collectPages(maps, lv->freeMap, pages, [](uint32_t) { return false; });
        for (uint32_t map : {lv->ownedMap, lv->freeMap})
            if (map) maps.remove(map);
        for (uint32_t p : pages) t.allocator().release(p);
        def.removeLongValueMaps(dropped.number);
    }
    def.removeColumn(dropped.number);
    storeTableDef(t, def);
    CatalogWriter catalog(t);
    if (auto blob = catalog.properties(table))
        if (auto changed = removeColumnProperties(*blob, db_.version(), db_.codePage(), dropped.name))
            catalog.setProperties(table, std::move(*changed));
    catalog.touch(table, nowSerial());
    t.commit();
}

void SchemaWriter::renameColumn(const sql::RenameColumn& st) {
    const CatalogEntry& table = userTable(db_, st.table);
    TableDef def = *db_.tableDef(table.tdefPage());
    const Column* c = def.findColumn(st.from);
    if (!c) throw noSuchColumn(st.from, table.name);
    checkObjectName(st.to, jet3Names(db_));
    const Column* other = def.findColumn(st.to);
    if (other && other->number != c->number) throw columnExists(st.to, table.name);
    const std::string oldName = c->name;
    def.renameColumn(c->number, st.to);

    Transaction t(db_);
    storeTableDef(t, def);
    CatalogWriter catalog(t);
    if (auto blob = catalog.properties(table))
        if (auto changed = renameColumnProperties(*blob, db_.version(), db_.codePage(), oldName, st.to))
            catalog.setProperties(table, std::move(*changed));
    catalog.touch(table, nowSerial());
    t.commit();
}

void SchemaWriter::dropTable(const sql::DropTable& st) {
    const CatalogEntry table = userTable(db_, st.table);
    if (auto relationships = db_.catalog().findTable("MSysRelationships")) {
        auto rel = db_.openTable(relationships->name);
        std::vector<const Column*> named;
        for (const char* name : {"szObject", "szReferencedObject"})
            if (const Column* c = rel->def().findColumn(name)) named.push_back(c);
        for (RowLocation at : rel->rowLocations()) {
            RowReader row = rel->reader(at);
            for (const Column* c : named) {
                ColumnBytes v = row.column(*c);
                if (v.present && equalsIgnoreCase(decodeText(db_.version(), db_.codePageOf(*c), v.bytes), table.name))
                    throw RuntimeError(err::Unspecified, "Cannot delete this index or table. It is either the "
                                                         "current index or it is used in a relationship.");
            }
        }
    }
    const std::shared_ptr<const TableDef> def = db_.tableDef(table.tdefPage());
    const uint32_t id = def->page();
    const Format& f = db_.format();

    Transaction t(db_);
    CatalogWriter(t).removeTable(table);

    MapRows maps(t);
    std::set<uint32_t> pages(def->pages().begin(), def->pages().end());
    const auto dataOf = [&](uint32_t owner) {
        return [&, owner](uint32_t p) {
            DataPage page(f, db_.pager().read(p));
            return page.isDataPage() && page.owner() == owner;
        };
    };
    const auto indexPageOf = [&](uint32_t p) {
        const uint8_t* b = db_.pager().read(p);
        return (b[0] == page_type::IndexNode || b[0] == page_type::IndexLeaf) && le32(b + 4) == id;
    };
    std::vector<uint32_t> mapRows = {def->ownedMap(), def->freeMap()};
    collectPages(maps, def->ownedMap(), pages, dataOf(id));
    collectPages(maps, def->freeMap(), pages, [](uint32_t) { return false; });
    for (const PhysicalIndex& x : def->physicalIndexes()) {
        collectPages(maps, x.ownedMap, pages, indexPageOf);
        if (x.rootPage < db_.pager().pageCount() && indexPageOf(x.rootPage)) pages.insert(x.rootPage);
        mapRows.push_back(x.ownedMap);
    }
    for (const LongValueMaps& lv : def->longValueMaps()) {
        collectPages(maps, lv.ownedMap, pages, dataOf(LvalOwner));
        collectPages(maps, lv.freeMap, pages, [](uint32_t) { return false; });
        mapRows.push_back(lv.ownedMap);
        mapRows.push_back(lv.freeMap);
    }
    for (uint32_t map : mapRows)
        if (map) maps.remove(map);
    for (uint32_t p : pages) t.allocator().release(p);
    t.schemaChanged(id);
    t.commit();
}

}  // namespace jet
