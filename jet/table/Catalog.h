#pragma once
// The catalogue: the rows of MSysObjects (whose definition is always on page 2), one per
// object of the database. Tables are found here by name; their Id is their TDEF page.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "format/DataPage.h"

namespace jet {

class Database;

namespace object_type {
inline constexpr int16_t Table = 1;
inline constexpr int16_t Database = 2;
inline constexpr int16_t Container = 3;
inline constexpr int16_t LinkedOdbc = 4;
inline constexpr int16_t Query = 5;
inline constexpr int16_t LinkedJet = 6;
}  // namespace object_type

namespace object_flag {
inline constexpr uint32_t System = 0x80000000u;
inline constexpr uint32_t AccessSystem = 0x00000002u;
inline constexpr uint32_t Hidden = 0x00000008u;
}  // namespace object_flag

inline constexpr int32_t TablesContainerId = 0x0F000001;

struct CatalogEntry {
    int32_t id = 0;
    int32_t parentId = 0;
    std::string name;
    int16_t type = 0;
    uint32_t flags = 0;
    double dateCreate = 0;
    double dateUpdate = 0;
    RowLocation row;  // where the entry is stored in MSysObjects

    bool isTable() const { return type == object_type::Table && parentId == TablesContainerId; }
    // A table the user made: not the engine's or Access's own, not hidden.
    bool isUserTable() const {
        return isTable() && !(flags & (object_flag::System | object_flag::AccessSystem | object_flag::Hidden));
    }
    uint32_t tdefPage() const { return uint32_t(id) & 0x00FFFFFF; }
};

class Catalog {
public:
    static Catalog read(const Database& db);

    const std::vector<CatalogEntry>& entries() const { return entries_; }
    // A local table (user or system) by name, case-insensitive; nullptr when none.
    const CatalogEntry* findTable(std::string_view name) const;
    // User tables in name order (case-insensitive, collateNames), as Jet's schema rowset lists them.
    std::vector<const CatalogEntry*> userTables() const;

private:
    std::vector<CatalogEntry> entries_;
};

}  // namespace jet
