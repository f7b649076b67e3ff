#pragma once
// Menu texts keyed by the menu item they belong to, in the order the language table
// lists them: a CaptionList whose entries always carry their key. Indexes count from 1
// (error 9 outside); a key may appear once (error 457), compared case-insensitively.

#include <cstdint>
#include <QString>

#include "lang/CaptionList.h"

namespace lang {

class MenuCaptions {
public:
    void Add(const QString& text, const QString& key) { entries_.Add(text, key); }
    int32_t Count() const { return entries_.Count(); }
    QString Key(int32_t index) const { return entries_.Key(index); }
    QString Item(int32_t index) const { return entries_.Item(index); }

private:
    CaptionList entries_;
};

}  // namespace lang
