#pragma once
// The ADO numbers the engine's surface takes or gives: object states, cursor locations,
// the schema rowset and command options, and the DataTypeEnum values a Field reports.

#include <cstdint>

namespace jet {

namespace ado {
inline constexpr int32_t StateClosed = 0, StateOpen = 1;
inline constexpr int32_t UseServer = 2, UseClient = 3;
inline constexpr int32_t SchemaTables = 20;
inline constexpr int32_t CmdTable = 2, CmdTableDirect = 512;
}  // namespace ado

// ADO DataTypeEnum values of the column types.
namespace ado_type {
inline constexpr int32_t SmallInt = 2, Integer = 3, Single = 4, Double = 5, Currency = 6, Date = 7, Boolean = 11,
                         UnsignedTinyInt = 17, Guid = 72, Numeric = 131, VarWChar = 202, LongVarWChar = 203,
                         VarBinary = 204, LongVarBinary = 205;
}  // namespace ado_type

}  // namespace jet
