#pragma once
// The selected areas, in the order they were added. They are kept as a VB array whose
// element 0 is never used: areas live at 1..Count(), and an erased array has Count() 0.
// References are stored, not copies, so an area changed after it was added changes in the
// list too (the main window adds the same area object after every drag).
//
// Count has a setter that keeps its value in a field nothing reads: the list is not
// changed by it. Indexes are 16-bit, as the run time's Integer.

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/Rows_Selection.h"

namespace engine {

class Table_Selection {
public:
    int32_t Count() const;
    void setCount(int32_t count) { countLet_ = count; }

    // Element 0 is nothing; an index outside the array is run-time error 9.
    std::shared_ptr<Rows_Selection> Item(int16_t index) const;
    void setItem(int16_t index, std::shared_ptr<Rows_Selection> area);

    void AddSelection(std::shared_ptr<Rows_Selection> area);
    // Removes the area at that index and closes the gap; returns False.
    bool DeleteSelection(int16_t index);
    // Erases the array; returns False.
    bool ClearSelection();

private:
    size_t checkedIndex(int16_t index) const;

    std::vector<std::shared_ptr<Rows_Selection>> areas_;  // empty: erased
    int32_t countLet_ = 0;
};

}  // namespace engine
