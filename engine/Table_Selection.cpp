#include "engine/Table_Selection.h"

#include "rt/VbError.h"

namespace engine {

int32_t Table_Selection::Count() const
{
    return areas_.empty() ? 0 : static_cast<int32_t>(areas_.size() - 1);
}

size_t Table_Selection::checkedIndex(int16_t index) const
{
    if (index < 0 || static_cast<size_t>(index) >= areas_.size())
        throw rt::vbError(rt::vberr::SubscriptOutOfRange);
    return static_cast<size_t>(index);
}

std::shared_ptr<Rows_Selection> Table_Selection::Item(int16_t index) const
{
    return areas_[checkedIndex(index)];
}

void Table_Selection::setItem(int16_t index, std::shared_ptr<Rows_Selection> area)
{
    areas_[checkedIndex(index)] = std::move(area);
}

void Table_Selection::AddSelection(std::shared_ptr<Rows_Selection> area)
{
    const size_t n = static_cast<size_t>(Count());
    areas_.resize(n + 2);
    areas_[n + 1] = std::move(area);
}

bool Table_Selection::DeleteSelection(int16_t index)
{
    areas_[checkedIndex(index)] = nullptr;
    std::vector<std::shared_ptr<Rows_Selection>> kept(1);
    for (size_t i = 1; i < areas_.size(); ++i)
        if (areas_[i])
            kept.push_back(areas_[i]);
    areas_ = std::move(kept);
    return false;
}

bool Table_Selection::ClearSelection()
{
    areas_.clear();
    return false;
}

}  // namespace engine
