#pragma once
// Selections for tests, written as the corners a drag would give.

#include <initializer_list>
#include <memory>

#include "engine/Table_Selection.h"

inline std::shared_ptr<engine::Rows_Selection> area(int32_t column1, int32_t row1, int32_t column2, int32_t row2)
{
    auto a = std::make_shared<engine::Rows_Selection>();
    a->Start().setColumn(column1);
    a->Start().setRow(row1);
    a->Finish().setColumn(column2);
    a->Finish().setRow(row2);
    return a;
}

inline engine::Table_Selection selectionOf(std::initializer_list<std::shared_ptr<engine::Rows_Selection>> areas)
{
    engine::Table_Selection s;
    for (const auto& a : areas)
        s.AddSelection(a);
    return s;
}
