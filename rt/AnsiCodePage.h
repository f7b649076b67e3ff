#pragma once
// The program's single-byte "ANSI" code page: Windows-1251 unless SHEETWRIGHT_CODEPAGE
// names another. Text files the program reads and writes (the language table, text, XML
// and HTML tables) go through it, the run-time's byte-wise string functions (Chr, Asc,
// GetToken's byte scan) too, and new Access 97 databases are created in it: this is the one
// place that reads the setting, and its table is the engine's own (jet/CodePages.h), so a
// text file and a database agree on every byte.
//
// A name is a Windows code page: "windows-1252", "cp1252" or "1252", in any case. A name of
// another form, or a code page the engine cannot convert, gives Windows-1251.
//
// Every character maps to exactly one byte and back, so a string converted to bytes keeps
// its length and a 1-based character position is also a byte position. Characters the
// code page cannot hold become "?", as the Windows conversion does.

#include <array>
#include <cstdint>
#include <QByteArray>
#include <QHash>
#include <QString>

namespace rt {

class AnsiCodePage {
public:
    explicit AnsiCodePage(const QString& name);

    // The code page the environment chooses, built once per process.
    static const AnsiCodePage& current();

    // The Windows code page number, as a database's header keeps it.
    uint16_t number() const { return number_; }

    QString decode(QByteArrayView bytes) const;
    QByteArray encode(QStringView text) const;

    QChar toChar(uint8_t byte) const { return toChar_[byte]; }
    // The byte of a character, or -1 when the code page has no such character.
    int toByte(QChar c) const;

private:
    bool build(uint16_t number);

    uint16_t number_ = 0;
    std::array<QChar, 256> toChar_{};
    QHash<char16_t, uint8_t> nonAscii_;
};

}  // namespace rt
