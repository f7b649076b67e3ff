#pragma once
// The run-time's number conversions that settings and language files rely on. Settings
// are decimal text read back leniently (Val); whole numbers are rounded halves-to-even and
// a value out of range is run-time error 6 (Overflow), as CLng and CInt do.

#include <cstdint>
#include <QString>

namespace rt {

// The leading number of a text: blanks, tabs and line feeds anywhere are ignored; an
// optional sign, digits, "." as the decimal point and an exponent (E or D); "&H" and "&O"
// prefixes read hexadecimal and octal. A text without a leading number gives 0. A number
// too large for a Double is Overflow (6).
double Val(const QString& text);

// Whether the whole text is one number of the forms Val reads: blanks around it, an
// optional sign, digits with at most one "." and at least one digit, an optional exponent
// (E or D, optional sign, digits); or "&H" with hexadecimal or "&O" with octal digits.
// Blanks inside the number or anything after it make it no number ("1 2", "12a", "&H").
bool IsNumeric(const QString& text);

// Rounds halves to even (2.5 -> 2, 3.5 -> 4); Overflow (6) outside the type's range.
int32_t CLng(double value);
int16_t CInt(double value);
// Overflow (6) beyond the range of a Single.
float CSng(double value);

// The character of an ANSI code (0 to 255) in the program's code page; any other code is
// run-time error 5 (Invalid procedure call or argument).
QString Chr(int32_t code);
// The ANSI code of the first character ("?" for a character the code page lacks);
// an empty text is run-time error 5.
int32_t Asc(const QString& text);

}  // namespace rt
