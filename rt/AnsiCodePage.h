#pragma once
// The program's single-byte "ANSI" code page: Windows-1251 unless SHEETWRIGHT_CODEPAGE
// names another. Text files the program reads and writes (the language table, text, XML
// and HTML tables) go through it, and so do the run-time's byte-wise string functions
// (Chr, Asc, GetToken's byte scan).
//
// Every character maps to exactly one byte and back, so a string converted to bytes keeps
// its length and a 1-based character position is also a byte position. Characters the
// code page cannot hold become "?", as the Windows conversion does.

#include <array>
#include <QByteArray>
#include <QHash>
#include <QString>

namespace rt {

class AnsiCodePage {
public:
    // Builds the tables for a code page by name ("windows-1251", "ISO-8859-5"...).
    // A name that is unknown or no single-byte code page falls back to Windows-1251.
    explicit AnsiCodePage(const QString& name);

    // The code page the environment chooses, built once per process.
    static const AnsiCodePage& current();

    QString decode(QByteArrayView bytes) const;
    QByteArray encode(QStringView text) const;

    QChar toChar(uint8_t byte) const { return toChar_[byte]; }
    // The byte of a character, or -1 when the code page has no such character.
    int toByte(QChar c) const;

private:
    bool build(const QString& name);

    std::array<QChar, 256> toChar_{};
    QHash<char16_t, uint8_t> nonAscii_;
};

}  // namespace rt
