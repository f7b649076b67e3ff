#pragma once
// One cell of a selection: its column and row in the read-only grid's numbering, where
// data start at 1 (row and column 0 are the grid's fixed headers).

#include <cstdint>

namespace engine {

class Simple_Row {
public:
    int32_t Column() const { return column_; }
    void setColumn(int32_t column) { column_ = column; }
    int32_t Row() const { return row_; }
    void setRow(int32_t row) { row_ = row; }

private:
    int32_t column_ = 0;
    int32_t row_ = 0;
};

}  // namespace engine
