#pragma once
// Lays out one stored row from its column values: the inverse of RowReader.
//
// Rules kept (each one is what a reader relies on):
//  - The row is written with the table's current "highest column count" and "variable
//    slots", so every live column has its mask bit and slot; slots of deleted columns are
//    empty, mask bits of deleted columns clear.
//  - Yes/No values live only in the null mask; a null fixed value still takes its bytes
//    (zeros); a fixed text or binary is padded to its width (spaces, zeros).
//  - Jet 3 offsets are single bytes; the jump table records where the variable data
//    crosses each 256-byte boundary, with at most one 0xFF filler.
//  - A row is never shorter than 4 bytes, so it can always become an overflow pointer, and
//    never longer than the format's row limit (Jet's "Record is too large" otherwise).

#include <cstdint>
#include <vector>

#include "format/Format.h"
#include "format/TableDef.h"

namespace jet {

struct StoredValue {
    bool present = false;            // false: null (No for a Yes/No column)
    std::vector<uint8_t> bytes;      // the value's bytes (long values: header and inline data)
};

// `values` is indexed like def.columns().
std::vector<uint8_t> encodeRow(const Format& format, const TableDef& def, const std::vector<StoredValue>& values);

// The largest length a row may take; rows beyond it are refused.
inline uint32_t rowLimit(const Format& format) { return format.maxRowSize; }

}  // namespace jet
