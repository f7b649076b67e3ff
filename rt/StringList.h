#pragma once
// The host's ordered list of strings, as the table engine keeps its table and column
// names and the statistics gather cell texts. Items count from 1. Reading an item that is
// not there gives the empty string, as the host's list does (the engine relies on it: a
// database without tables opens with "" as its first table); removing one is run-time
// error 9 and changes nothing.

#include <cstdint>
#include <QString>
#include <QStringList>

namespace rt {

class StringList {
public:
    void Clear() { items_.clear(); }
    void Add(const QString& text) { items_.append(text); }
    QString Item(int32_t index) const;
    int32_t Count() const { return static_cast<int32_t>(items_.size()); }
    void Remove(int32_t index);

    // The whole list, for code that hands it on (a tree, a test).
    const QStringList& items() const { return items_; }

private:
    QStringList items_;
};

}  // namespace rt
