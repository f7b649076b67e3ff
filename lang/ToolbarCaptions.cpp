#include "lang/ToolbarCaptions.h"

#include "rt/VbError.h"

namespace lang {

void ToolbarCaptions::SetSize(int32_t count)
{
    if (count < 0)
        throw rt::vbError(rt::vberr::SubscriptOutOfRange);
    entries_.resize(static_cast<size_t>(count) + 1);
}

size_t ToolbarCaptions::slot(int32_t index) const
{
    if (index < 0 || index > Count())
        throw rt::vbError(rt::vberr::SubscriptOutOfRange);
    return static_cast<size_t>(index);
}

void ToolbarCaptions::SetItem(const QString& key, int32_t index, const QString& text)
{
    const size_t at = slot(index);
    if (!key.isEmpty()) {
        for (size_t i = 0; i < entries_.size(); ++i)
            if (i != at && entries_[i].key.compare(key, Qt::CaseInsensitive) == 0)
                throw rt::vbError(rt::vberr::DuplicateKey);
    }
    entries_[at] = Entry{key, text};
}

QString ToolbarCaptions::Key(int32_t index) const
{
    return entries_[slot(index)].key;
}

QString ToolbarCaptions::Item(int32_t index) const
{
    return entries_[slot(index)].text;
}

}  // namespace lang
