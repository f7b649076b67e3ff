#include "lang/CaptionList.h"

#include "rt/VbError.h"

namespace lang {

void CaptionList::Add(const QString& text, const QString& key)
{
    if (!key.isEmpty()) {
        const QString folded = key.toCaseFolded();
        if (keys_.contains(folded))
            throw rt::vbError(rt::vberr::DuplicateKey);
        keys_.insert(folded);
    }
    entries_.push_back(Entry{text, key});
}

const CaptionList::Entry& CaptionList::at(int32_t index) const
{
    if (index < 1 || index > Count())
        throw rt::vbError(rt::vberr::SubscriptOutOfRange);
    return entries_[static_cast<size_t>(index - 1)];
}

QString CaptionList::Item(int32_t index) const
{
    return at(index).text;
}

QString CaptionList::Key(int32_t index) const
{
    return at(index).key;
}

QString captionOr(const CaptionList& list, int32_t index, const QString& designText)
{
    return index >= 1 && index <= list.Count() ? list.Item(index) : designText;
}

}  // namespace lang
