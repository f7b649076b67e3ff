#pragma once
// Memo and OLE values: a 12-byte header in the row, the data inline after it, in one row
// of a long-value ("LVAL") page, or in a chain of such rows.
//
// Invariants: a chain is followed without loops and only through live rows of pages
// whose owner field reads "LVAL"; a length no file of this size could hold is refused
// before anything is allocated for it.

#include <cstdint>
#include <span>
#include <vector>

#include "format/DataPage.h"

namespace jet {

class Database;

namespace long_value_kind {
inline constexpr uint32_t Inline = 0x80000000u;
inline constexpr uint32_t SingleRow = 0x40000000u;
inline constexpr uint32_t Chain = 0;
}  // namespace long_value_kind

// The owner field of long-value pages: the ASCII bytes "LVAL".
inline constexpr uint32_t LvalOwner = 0x4C41564Cu;

struct LongValueHeader {
    uint32_t length = 0;
    uint32_t kind = 0;
    RowLocation first;   // the first LVAL row (not inline)
};

// The header of a stored long value; throws CorruptError for a field too short for one.
LongValueHeader longValueHeader(std::span<const uint8_t> field);
// The whole value; an empty field is an empty value. The LVAL rows visited are added
// to `rowsSeen` when given (the integrity checker uses them).
std::vector<uint8_t> readLongValue(const Database& db, std::span<const uint8_t> field,
                                   std::vector<RowLocation>* rowsSeen = nullptr);

}  // namespace jet
