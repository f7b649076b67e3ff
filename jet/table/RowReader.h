#pragma once
// The layout of one stored row: column count, fixed area, variable data with its offset
// table (Jet 3 with one-byte offsets and a jump table), and the null mask at the end.
// It hands out a column's raw bytes; turning them into values is ValueReader's job.
//
// Invariants:
//  - The constructor checks the trailer (mask, variable count, offset table) against the
//    row's length; column() checks each value's extent before handing it out. A row that
//    fails either is a CorruptError: no byte outside the row is ever read.
//  - A column the row was written without (number >= the row's column count, or a
//    variable index >= its variable count) reads as null: rows are not rewritten when
//    columns are added, and deleted columns' bytes are simply never asked for.

#include <cstdint>
#include <span>
#include <vector>

#include "format/Format.h"
#include "format/TableDef.h"

namespace jet {

struct ColumnBytes {
    bool present = false;              // false: null (or false for a Yes/No column)
    std::span<const uint8_t> bytes;    // the stored value (empty for Yes/No)
};

class RowReader {
public:
    // `varColumns` is the table's variable-slot count: 0 means rows have no variable section.
    RowReader(const Format& format, uint16_t varColumns, std::span<const uint8_t> row);
    RowReader(const Format& format, const TableDef& def, std::span<const uint8_t> row)
        : RowReader(format, def.varColumns(), row) {}

    uint16_t columnCount() const { return columnCount_; }
    uint16_t varCount() const { return varCount_; }
    // Presence bit of a column number (the value itself for Yes/No columns).
    bool maskBit(uint16_t number) const;
    ColumnBytes column(const Column& c) const;
    std::span<const uint8_t> row() const { return row_; }
    // Offset of the first byte after the variable data, and of variable slot k's value.
    uint32_t endOfData() const;
    uint32_t varOffset(uint16_t k) const;
    // Start of the trailer (end-of-data field, offsets, jump table, count, mask).
    uint32_t trailerStart() const { return trailerStart_; }

private:
    const Format& f_;
    std::span<const uint8_t> row_;
    uint16_t columnCount_ = 0;
    uint32_t maskSize_ = 0;
    uint16_t varCount_ = 0;
    bool hasVarSection_ = false;
    uint32_t trailerStart_ = 0;
    std::vector<uint16_t> jet3Offsets_;  // Jet 3: slot offsets with the jump table applied, eod last
};

}  // namespace jet
