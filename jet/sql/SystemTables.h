#pragma once
// The four tables every database starts with: MSysObjects (the catalogue), MSysACEs
// (permissions), MSysQueries and MSysRelationships, defined as the engine writes them
// into a new file. Their columns, flags, indexes and long-value maps are fixed by the
// format; their usage maps and index roots sit where NewFileLayout puts them.

#include <cstdint>
#include <vector>

#include "format/TableDef.h"
#include "sql/NewFileLayout.h"

namespace jet {

enum class SystemTable { Objects, Aces, Queries, Relationships };

inline constexpr SystemTable kSystemTables[] = {SystemTable::Objects, SystemTable::Aces, SystemTable::Queries,
                                                SystemTable::Relationships};

// The TDEF page of each system table in a new file (MSysObjects is always on page 2).
inline constexpr uint32_t systemTablePage(SystemTable t) { return 2 + uint32_t(t); }
const char* systemTableName(SystemTable t);

// The definition of a system table with no rows yet. Jet 3 columns carry `codePage`, the
// database's.
TableDef systemTableDef(SystemTable table, Version version, uint16_t codePage, const NewFileLayout& layout);

// What the usage maps of a new file hold: the first data page of MSysObjects and MSysACEs
// in their owned and free-space maps, each index root in its index's map.
struct MapMember {
    uint32_t map;
    uint32_t page;
};
std::vector<MapMember> systemMapMembers(const NewFileLayout& layout);

}  // namespace jet
