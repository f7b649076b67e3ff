#pragma once
// Tool tips of a toolbar: a table of (key, text) entries sized once with SetSize and
// addressed by position. Like the array it stands for (bounds 0 to Count), position 0
// exists and stays empty unless set, so a form may walk 0..Count; any other position is
// run-time error 9. A button key may stand at one position only (error 457).

#include <cstdint>
#include <vector>
#include <QString>

namespace lang {

class ToolbarCaptions {
public:
    // Keeps the entries that still fit.
    void SetSize(int32_t count);
    void SetItem(const QString& key, int32_t index, const QString& text);
    int32_t Count() const { return static_cast<int32_t>(entries_.size()) - 1; }
    QString Key(int32_t index) const;
    QString Item(int32_t index) const;

private:
    struct Entry {
        QString key;
        QString text;
    };
    size_t slot(int32_t index) const;

    std::vector<Entry> entries_{1};
};

}  // namespace lang
