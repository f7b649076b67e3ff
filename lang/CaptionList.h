#pragma once
// Captions by number, each with an optional key: caption n of a numbered section of the
// language table is Item(n). Indexes count from 1; an index outside 1..Count() is run-time
// error 9, and a key already used (compared case-insensitively, as a collection's keys)
// is error 457. The list only grows.

#include <cstdint>
#include <vector>
#include <QSet>
#include <QString>

namespace lang {

class CaptionList {
public:
    void Add(const QString& text, const QString& key = QString());
    QString Item(int32_t index) const;
    QString Key(int32_t index) const;
    int32_t Count() const { return static_cast<int32_t>(entries_.size()); }

private:
    struct Entry {
        QString text;
        QString key;
    };
    const Entry& at(int32_t index) const;

    std::vector<Entry> entries_;
    QSet<QString> keys_;
};

// Item(index), or the form's own text when the list is shorter: a language table that
// failed to load (start-up has reported it) leaves the lists empty, and the form must
// still open.
QString captionOr(const CaptionList& list, int32_t index, const QString& designText);

}  // namespace lang
