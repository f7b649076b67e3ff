#include "sql/SystemTables.h"

#include "index/IndexKey.h"
#include "sql/ColumnLayout.h"

namespace jet {

namespace {

// Column flags of system tables: 0x10 on every column, fixed ones 0x01, the SID columns 0x20.
constexpr uint8_t kVar = column_flag::System | column_flag::Updatable;
constexpr uint8_t kFixed = kVar | column_flag::Fixed;
constexpr uint8_t kSid = kVar | 0x20;

struct ColumnShape {
    const char* name;
    ColumnType type;
    uint8_t flags;
    bool jet4Only = false;
};

struct IndexShape {
    std::vector<const char*> columns;  // all ascending
    uint8_t flags;                     // Jet 3; Jet 4 adds 0x80
    const char* name;
    uint8_t kind;
};

struct TableShape {
    const char* name;
    std::vector<ColumnShape> columns;
    std::vector<IndexShape> indexes;
};

const TableShape& shapeOf(SystemTable t) {
    using T = ColumnType;
    static const TableShape shapes[] = {
        {"MSysObjects",
         {{"Id", T::Long, kFixed},           {"ParentId", T::Long, kFixed},   {"Name", T::Text, kVar},
          {"Type", T::Int, kFixed},          {"DateCreate", T::DateTime, kFixed}, {"DateUpdate", T::DateTime, kFixed},
          {"Owner", T::Binary, kSid},        {"Flags", T::Long, kFixed},      {"Database", T::Memo, kVar},
          {"Connect", T::Memo, kVar},        {"ForeignName", T::Text, kVar},  {"RmtInfoShort", T::Binary, kVar},
          {"RmtInfoLong", T::Ole, kVar},     {"Lv", T::Ole, kVar},            {"LvProp", T::Ole, kVar},
          {"LvModule", T::Ole, kVar},        {"LvExtra", T::Ole, kVar}},
         {{{"ParentId", "Name"}, index_flag::Unique, "ParentIdName", index_kind::Ordinary},
          {{"Id"}, index_flag::Unique, "Id", index_kind::PrimaryKey}}},
        {"MSysACEs",
         {{"ObjectId", T::Long, kFixed}, {"SID", T::Binary, kSid}, {"ACM", T::Long, kFixed},
          {"FInheritable", T::Bool, kFixed}},
         {{{"ObjectId"}, index_flag::Required, "ObjectId", index_kind::Ordinary}}},
        {"MSysQueries",
         {{"ObjectId", T::Long, kFixed}, {"Attribute", T::Byte, kFixed}, {"Order", T::Binary, kVar},
          {"Name1", T::Text, kVar},      {"Name2", T::Text, kVar},       {"Expression", T::Memo, kVar},
          {"Flag", T::Int, kFixed},      {"LvExtra", T::Long, kFixed, true}},
         {{{"ObjectId", "Attribute", "Order"}, index_flag::Unique, "ObjectIdAttribute", index_kind::PrimaryKey}}},
        {"MSysRelationships",
         {{"szRelationship", T::Text, kVar}, {"grbit", T::Long, kFixed}, {"ccolumn", T::Long, kFixed},
          {"icolumn", T::Long, kFixed},      {"szObject", T::Text, kVar}, {"szColumn", T::Text, kVar},
          {"szReferencedObject", T::Text, kVar}, {"szReferencedColumn", T::Text, kVar}},
         {{{"szRelationship"}, index_flag::IgnoreNulls, "szRelationship", index_kind::Ordinary},
          {{"szObject"}, index_flag::IgnoreNulls, "szObject", index_kind::Ordinary},
          {{"szReferencedObject"}, index_flag::IgnoreNulls, "szReferencedObject", index_kind::Ordinary}}},
    };
    return shapes[uint32_t(t)];
}

bool isLongValue(ColumnType t) { return t == ColumnType::Memo || t == ColumnType::Ole; }

// Maps of a table: owned, free space, two per long-value column, one per index.
uint32_t mapsOf(const TableShape& s) {
    uint32_t n = 2 + uint32_t(s.indexes.size());
    for (const auto& c : s.columns) n += isLongValue(c.type) ? 2 : 0;
    return n;
}

struct Bases {
    uint32_t map = 0;
    uint32_t index = 0;
};

Bases basesOf(SystemTable t) {
    Bases b;
    for (SystemTable before : kSystemTables) {
        if (before == t) break;
        b.map += mapsOf(shapeOf(before));
        b.index += uint32_t(shapeOf(before).indexes.size());
    }
    return b;
}

}  // namespace

const char* systemTableName(SystemTable t) { return shapeOf(t).name; }

TableDef systemTableDef(SystemTable table, Version version, uint16_t codePage, const NewFileLayout& layout) {
    const TableShape& s = shapeOf(table);
    const Bases bases = basesOf(table);
    uint32_t map = bases.map;
    // System text and binary columns take 255 characters or bytes, as wide as a name can be.
    const uint16_t wide = version == Version::Jet3 ? 255 : 510;

    TableDef def = TableDef::blank(version, 0x53);
    def.setMaps(layout.mapPointer(map), layout.mapPointer(map + 1));
    map += 2;
    for (const ColumnShape& cs : s.columns) {
        if (cs.jet4Only && version == Version::Jet3) continue;
        Column c;
        c.name = cs.name;
        c.typeCode = uint8_t(cs.type);
        c.flags = cs.flags;
        c.collation = kGeneralCollation;
        if (version == Version::Jet3) c.codePage = codePage;
        if (cs.type == ColumnType::Text || cs.type == ColumnType::Binary) c.length = wide;
        else if (!isLongValue(cs.type)) c.length = uint16_t(cs.type == ColumnType::Bool ? 1 : fixedSizeOf(c.typeCode));
        const uint16_t number = appendColumn(def, std::move(c));
        if (isLongValue(cs.type)) {
            def.addLongValueMaps({number, layout.mapPointer(map), layout.mapPointer(map + 1)});
            map += 2;
        }
    }
    for (size_t i = 0; i < s.indexes.size(); ++i) {
        const IndexShape& is = s.indexes[i];
        PhysicalIndex px;
        for (const char* name : is.columns) px.columns.push_back({def.findColumn(name)->number, true});
        px.ownedMap = layout.mapPointer(map++);
        px.rootPage = layout.indexRoot(bases.index + uint32_t(i));
        px.flags = uint8_t(is.flags | (version == Version::Jet4 ? 0x80 : 0));
        def.addPhysicalIndex(std::move(px));
        LogicalIndex lx;
        lx.name = is.name;
        lx.number = int32_t(i);
        lx.physicalIndex = uint32_t(i);
        lx.kind = is.kind;
        // Access writes 4 in both cascade bytes of an index that is not a relationship.
        lx.cascadeUpdate = lx.cascadeDelete = 4;
        def.addLogicalIndex(std::move(lx));
    }
    return def;
}

std::vector<MapMember> systemMapMembers(const NewFileLayout& layout) {
    std::vector<MapMember> members;
    for (SystemTable t : kSystemTables) {
        const Bases b = basesOf(t);
        const uint32_t indexMaps = b.map + mapsOf(shapeOf(t)) - uint32_t(shapeOf(t).indexes.size());
        if (t == SystemTable::Objects || t == SystemTable::Aces) {
            const uint32_t data = t == SystemTable::Objects ? layout.objectsDataPage() : layout.acesDataPage();
            members.push_back({b.map, data});
            members.push_back({b.map + 1, data});
        }
        for (uint32_t i = 0; i < shapeOf(t).indexes.size(); ++i)
            members.push_back({indexMaps + i, layout.indexRoot(b.index + i)});
    }
    return members;
}

}  // namespace jet
