#include "sql/ColumnLayout.h"

#include <algorithm>

#include "index/IndexKey.h"

namespace jet {

Column columnFromDeclaration(const sql::ColumnDeclaration& declared, Version version, uint16_t codePage) {
    Column c;
    c.name = declared.name;
    c.typeCode = uint8_t(declared.type);
    c.flags = column_flag::Updatable;
    c.collation = kGeneralCollation;
    if (version == Version::Jet3) c.codePage = codePage;
    switch (declared.type) {
    case ColumnType::Text:
        c.length = uint16_t(version == Version::Jet3 ? declared.length : 2 * declared.length);
        break;
    case ColumnType::Binary:
        c.length = declared.length;
        break;
    case ColumnType::Memo:
    case ColumnType::Ole:
        break;
    case ColumnType::Numeric:
        c.collation = 0;
        c.precision = declared.precision;
        c.scale = declared.scale;
        [[fallthrough]];
    default:
        c.flags |= column_flag::Fixed;
        c.length = uint16_t(declared.type == ColumnType::Bool ? 1 : fixedSizeOf(c.typeCode));
        if (declared.autoNumber) c.flags |= column_flag::AutoNumber;
        break;
    }
    return c;
}

uint32_t fixedAreaSize(const TableDef& def) {
    uint32_t end = 0;
    for (const Column& c : def.columns()) {
        if (!c.isFixed() || c.type() == ColumnType::Bool) continue;
        const uint32_t width = fixedSizeOf(c.typeCode) ? fixedSizeOf(c.typeCode) : c.length;
        end = std::max<uint32_t>(end, c.fixedOffset + width);
    }
    return end;
}

uint16_t appendColumn(TableDef& def, Column column) {
    column.number = def.maxColumns();
    // A fixed column's slot means nothing to readers; Access puts the slots given out before it.
    column.varIndex = def.varColumns();
    if (column.isFixed()) {
        column.fixedOffset = column.type() == ColumnType::Bool ? 0 : uint16_t(fixedAreaSize(def));
    } else {
        column.fixedOffset = 0;
        def.setVarColumns(uint16_t(def.varColumns() + 1));
    }
    def.setMaxColumns(uint16_t(def.maxColumns() + 1));
    const uint16_t number = column.number;
    def.addColumn(std::move(column));
    return number;
}

}  // namespace jet
