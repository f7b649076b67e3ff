#pragma once
// Schema rowsets the connection hands out.

#include <memory>
#include <vector>

#include "ado/RecordSource.h"

namespace jet {

class Database;

// The tables schema: one row per local or linked table with the columns TABLE_CATALOG,
// TABLE_SCHEMA, TABLE_NAME, TABLE_TYPE, TABLE_GUID, DESCRIPTION, TABLE_PROPID,
// DATE_CREATED and DATE_MODIFIED, ordered by type and then by name (collateNames).
// Queries and hidden objects are not listed.
std::shared_ptr<RecordSource> tablesSchema(const Database& db, const std::vector<Variant>& restrictions);

}  // namespace jet
