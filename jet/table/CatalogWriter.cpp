#include "table/CatalogWriter.h"

#include "base/Bytes.h"
#include "base/Utf.h"
#include "table/Database.h"
#include "table/LongValue.h"
#include "table/Table.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"

namespace jet {

namespace {

constexpr int32_t kDatabaseObjectId = 0x10000000;  // the row "MSysDb"
// Rights Access gives a new table, and those of the Tables container's inheritable entry
// for the limited group, which a table does not get.
constexpr int32_t kNewTableRights = 0xFFEFF;
constexpr int32_t kInheritedLimitedRights = 0xF00FE;

size_t columnIndex(const TableDef& def, const char* name) {
    for (size_t i = 0; i < def.columns().size(); ++i)
        if (equalsIgnoreCase(def.columns()[i].name, name)) return i;
    throw CorruptError(std::string("a system table has no column ") + name);
}

std::optional<int32_t> longColumn(const RowReader& row, const Column& c) {
    ColumnBytes v = row.column(c);
    if (!v.present || v.bytes.size() != 4) return std::nullopt;
    return lei32(v.bytes.data());
}

}  // namespace

std::vector<Variant> rowByName(const TableDef& def, const std::vector<std::pair<const char*, Variant>>& values) {
    std::vector<Variant> row(def.columns().size());
    for (const auto& [name, value] : values) row[columnIndex(def, name)] = value;
    return row;
}

void CatalogWriter::addTable(int32_t id, const std::string& name, double now) {
    Database& db = t_.database();
    auto objects = db.openTable("MSysObjects");
    Variant owner = Variant::null();
    const Column& ownerColumn = objects->def().columns()[columnIndex(objects->def(), "Owner")];
    for (const CatalogEntry& e : db.catalog().entries()) {
        if (e.id != kDatabaseObjectId) continue;
        ColumnBytes sid = objects->reader(e.row).column(ownerColumn);
        if (sid.present) owner = Variant::bytes({sid.bytes.begin(), sid.bytes.end()});
    }
    TableWriter& objectsWriter = t_.table("MSysObjects");
    objectsWriter.insert(rowByName(objectsWriter.def(), {{"Id", Variant::longValue(id)},
                                                         {"ParentId", Variant::longValue(TablesContainerId)},
                                                         {"Name", Variant::string(name)},
                                                         {"Type", Variant::integer(object_type::Table)},
                                                         {"DateCreate", Variant::date(now)},
                                                         {"DateUpdate", Variant::date(now)},
                                                         {"Owner", owner},
                                                         {"Flags", Variant::longValue(0)}}));

    auto aces = db.openTable("MSysACEs");
    const TableDef& def = aces->def();
    const Column& objectId = def.columns()[columnIndex(def, "ObjectId")];
    const Column& sid = def.columns()[columnIndex(def, "SID")];
    const Column& rights = def.columns()[columnIndex(def, "ACM")];
    std::vector<std::vector<uint8_t>> sids;
    for (RowLocation at : aces->rowLocations()) {
        RowReader row = aces->reader(at);
        if (longColumn(row, objectId) != TablesContainerId || longColumn(row, rights) == kInheritedLimitedRights)
            continue;
        ColumnBytes s = row.column(sid);
        sids.emplace_back(s.bytes.begin(), s.bytes.end());
    }
    TableWriter& acesWriter = t_.table("MSysACEs");
    for (auto& s : sids)
        acesWriter.insert(rowByName(acesWriter.def(), {{"ObjectId", Variant::longValue(id)},
                                                       {"SID", Variant::bytes(std::move(s))},
                                                       {"ACM", Variant::longValue(kNewTableRights)},
                                                       {"FInheritable", Variant::boolean(false)}}));
}

void CatalogWriter::removeTable(const CatalogEntry& table) {
    Database& db = t_.database();
    t_.table("MSysObjects").remove(table.row);
    auto aces = db.openTable("MSysACEs");
    const Column& objectId = aces->def().columns()[columnIndex(aces->def(), "ObjectId")];
    std::vector<RowLocation> rows;
    for (RowLocation at : aces->rowLocations())
        if (longColumn(aces->reader(at), objectId) == table.id) rows.push_back(at);
    TableWriter& writer = t_.table("MSysACEs");
    for (RowLocation at : rows) writer.remove(at);
}

void CatalogWriter::touch(const CatalogEntry& table, double now) {
    TableWriter& writer = t_.table("MSysObjects");
    writer.update(table.row, {{columnIndex(writer.def(), "DateUpdate"), Variant::date(now)}});
}

std::optional<std::vector<uint8_t>> CatalogWriter::properties(const CatalogEntry& table) {
    Database& db = t_.database();
    auto objects = db.openTable("MSysObjects");
    const Column& c = objects->def().columns()[columnIndex(objects->def(), "LvProp")];
    ColumnBytes field = objects->reader(table.row).column(c);
    if (!field.present) return std::nullopt;
    return readLongValue(db, field.bytes);
}

void CatalogWriter::setProperties(const CatalogEntry& table, std::vector<uint8_t> blob) {
    TableWriter& writer = t_.table("MSysObjects");
    writer.update(table.row, {{columnIndex(writer.def(), "LvProp"), Variant::bytes(std::move(blob))}});
}

}  // namespace jet
