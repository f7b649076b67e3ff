#pragma once
// One settings file: sections named by key paths, "name=value" lines below them, UTF-8.
//
// Invariants:
//  - section and value names compare case-insensitively; the first spelling written is
//    the one kept in the file;
//  - any text round-trips: "%", control characters (line breaks included), "=" and "]"
//    where they would end a name, and blanks at either end are written as %XX of their
//    UTF-8 bytes, and nothing else is escaped, so a "\" or a Cyrillic letter is written
//    as it stands;
//  - lines this class did not change are written back byte for byte, so comments, lines
//    it does not understand and hand-made spacing survive a write;
//  - the value with the empty name (the key's default value) is written as "@".

#include <optional>
#include <vector>
#include <QByteArray>
#include <QString>

namespace host {

class IniDocument {
public:
    // Larger files are refused: a settings file never grows this big unless it is not one.
    static constexpr qsizetype kMaxFileSize = 16 * 1024 * 1024;

    static IniDocument parse(QByteArrayView bytes);
    QByteArray serialize() const;

    std::optional<QString> value(const QString& section, const QString& name) const;
    // Returns false when the value was already exactly that (nothing to write).
    bool setValue(const QString& section, const QString& name, const QString& value);

private:
    struct Entry {
        QString name;
        QString folded;
        QString value;
        QByteArray rawLine;  // empty when the line must be written anew
        bool isValue = false;
    };
    struct Section {
        QString name;
        QString folded;
        QByteArray rawHeader;  // empty when the header must be written anew
        bool hasHeader = true;
        std::vector<Entry> entries;
    };

    Section* findSection(const QString& folded);
    const Section* findSection(const QString& folded) const;

    std::vector<Section> sections_;
};

}  // namespace host
