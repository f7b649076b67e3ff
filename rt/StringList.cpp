#include "rt/StringList.h"

#include "rt/VbError.h"

namespace rt {

QString StringList::Item(int32_t index) const
{
    return index >= 1 && index <= Count() ? items_.at(index - 1) : QString();
}

void StringList::Remove(int32_t index)
{
    if (index < 1 || index > Count())
        throw vbError(vberr::SubscriptOutOfRange);
    items_.removeAt(index - 1);
}

}  // namespace rt
