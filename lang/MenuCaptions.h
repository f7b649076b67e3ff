#pragma once
// Menu texts keyed by the menu item they belong to, in the order the language table
// lists them. Indexes count from 1 (error 9 outside); a key may appear once (error 457),
// compared case-insensitively.

#include <cstdint>
#include <vector>
#include <QSet>
#include <QString>

namespace lang {

class MenuCaptions {
public:
    void Add(const QString& text, const QString& key);
    int32_t Count() const { return static_cast<int32_t>(entries_.size()); }
    QString Key(int32_t index) const;
    QString Item(int32_t index) const;

private:
    struct Entry {
        QString text;
        QString key;
    };
    const Entry& at(int32_t index) const;

    std::vector<Entry> entries_;
    QSet<QString> keys_;
};

}  // namespace lang
