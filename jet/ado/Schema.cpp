#include "ado/Schema.h"

#include <algorithm>

#include "base/Utf.h"
#include "table/Database.h"
#include "table/ValueReader.h"

namespace jet {

namespace {

// Jet's table types for a catalogue entry; nullptr for objects the schema leaves out.
const char* tableType(const CatalogEntry& e) {
    if (e.parentId != TablesContainerId) return nullptr;
    if (e.type == object_type::LinkedJet) return "LINK";
    if (e.type == object_type::LinkedOdbc) return "PASS-THROUGH";
    if (e.type != object_type::Table) return nullptr;
    if (e.flags & object_flag::System) return "SYSTEM TABLE";
    if (e.flags & object_flag::AccessSystem) return "ACCESS TABLE";
    if (e.flags & object_flag::Hidden) return nullptr;
    return "TABLE";
}

bool restricts(const std::vector<Variant>& r, size_t i, const std::string& value) {
    if (i >= r.size() || r[i].isEmpty() || r[i].isNull()) return false;
    return r[i].type() != Variant::Type::String || !equalsIgnoreCase(r[i].asString(), value);
}

}  // namespace

std::shared_ptr<RecordSource> tablesSchema(const Database& db, const std::vector<Variant>& restrictions) {
    std::vector<FieldInfo> fields = {
        {"TABLE_CATALOG", ado_type::VarWChar, 128}, {"TABLE_SCHEMA", ado_type::VarWChar, 128},
        {"TABLE_NAME", ado_type::VarWChar, 128},    {"TABLE_TYPE", ado_type::VarWChar, 128},
        {"TABLE_GUID", ado_type::Guid, 16},         {"DESCRIPTION", ado_type::VarWChar, 255},
        {"TABLE_PROPID", ado_type::Integer, 4},     {"DATE_CREATED", ado_type::Date, 8},
        {"DATE_MODIFIED", ado_type::Date, 8},
    };
    // Restrictions on catalog or schema can never match: Jet files have neither.
    bool none = (restrictions.size() > 0 && !restrictions[0].isEmpty() && !restrictions[0].isNull()) ||
                (restrictions.size() > 1 && !restrictions[1].isEmpty() && !restrictions[1].isNull());
    std::vector<std::pair<const CatalogEntry*, const char*>> found;
    for (const auto& e : db.catalog().entries()) {
        const char* type = tableType(e);
        if (!type || none || restricts(restrictions, 2, e.name) || restricts(restrictions, 3, type)) continue;
        found.emplace_back(&e, type);
    }
    std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        if (int c = std::string_view(a.second).compare(b.second)) return c < 0;
        return collateNames(a.first->name, b.first->name) < 0;
    });
    std::vector<std::vector<Variant>> rows;
    for (const auto& [e, type] : found) {
        rows.push_back({Variant::null(), Variant::null(), Variant::string(e->name), Variant::string(type),
                        Variant::null(), Variant::null(), Variant::null(), Variant::date(e->dateCreate),
                        Variant::date(e->dateUpdate)});
    }
    return std::make_shared<MemoryRecordSource>(std::move(fields), std::move(rows));
}

}  // namespace jet
