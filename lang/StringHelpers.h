#pragma once
// The small string helpers the loader and the rest of the program share. They keep the
// run-time's byte-wise behaviour on purpose: GetToken works on the ANSI bytes of the text
// with a 16-bit position, and its quirks (the delimiter kept when it is the very last
// character, GetFileName dropping a first character when there is no folder) are relied
// upon by the callers.

#include <cstdint>
#include <QString>

namespace lang {

// Set by every GetToken call: true when the piece returned reached the end of the text.
extern bool gTokenAtEnd;

// The piece of `text` from the 1-based `position` up to and including the count-th
// occurrence of the one-character `delimiter` (count 0 means 1), or to the end of the
// text. On return `position` is the position after the piece.
//  - dropDelimiter removes the delimiter that ended the piece, except a delimiter that is
//    also the text's last character, which only dropTrailing removes as well;
//  - an empty text or a position outside the text is run-time error 9; a position that
//    would pass 32767 is run-time error 6.
QString GetToken(const QString& text, int16_t& position, const QString& delimiter, bool dropDelimiter = false,
                 int16_t count = 0, bool dropTrailing = false);

// The part of a path after its last "\" (or "/", the separator of this system's paths).
// Without any separator the first character is dropped: "file.txt" gives "ile.txt".
QString GetFileName(const QString& path);

// The text after the last "." of GetFileName(path); a name without "." gives the name.
QString GetFileExtension(const QString& path);

// Red (low byte), green and blue of the colour as "RRGGBB"; with hexadecimal false the
// parts are written in decimal, a one-digit part still padded with "0".
QString ColorToHex(int32_t color, bool hexadecimal = true);

// The number text trimmed of spaces and with every "," made a "."; the result is also
// stored back into `value`. Traces the call and reports its errors to the host library.
QString ToPoint(QString& value);

}  // namespace lang
