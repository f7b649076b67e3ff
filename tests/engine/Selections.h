#pragma once
// Selections for tests, written as the corners a drag would give.

#include <array>
#include <memory>
#include <vector>

#include "engine/Table_Selection.h"

// Column and row where the drag began, then where it ended.
using Corners = std::array<int32_t, 4>;

inline std::shared_ptr<engine::Rows_Selection> area(const Corners& c)
{
    auto a = std::make_shared<engine::Rows_Selection>();
    a->Start().setColumn(c[0]);
    a->Start().setRow(c[1]);
    a->Finish().setColumn(c[2]);
    a->Finish().setRow(c[3]);
    return a;
}

inline engine::Table_Selection selectionOf(const std::vector<Corners>& areas)
{
    engine::Table_Selection s;
    for (const Corners& c : areas)
        s.AddSelection(area(c));
    return s;
}
