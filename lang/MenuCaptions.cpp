#include "lang/MenuCaptions.h"

#include "host/VbError.h"

namespace lang {

void MenuCaptions::Add(const QString& text, const QString& key)
{
    const QString folded = key.toCaseFolded();
    if (keys_.contains(folded))
        throw host::vbError(host::vberr::DuplicateKey);
    keys_.insert(folded);
    entries_.push_back(Entry{text, key});
}

const MenuCaptions::Entry& MenuCaptions::at(int32_t index) const
{
    if (index < 1 || index > Count())
        throw host::vbError(host::vberr::SubscriptOutOfRange);
    return entries_[static_cast<size_t>(index - 1)];
}

QString MenuCaptions::Key(int32_t index) const
{
    return at(index).key;
}

QString MenuCaptions::Item(int32_t index) const
{
    return at(index).text;
}

}  // namespace lang
