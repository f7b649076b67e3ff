#pragma once
// The run-time's string functions the program relies on where Qt's differ.

#include <QString>
#include <QStringList>

namespace rt {

// Split: the text cut at every occurrence of the delimiter, empty pieces kept ("a,,b"
// gives three pieces, "a," two). An empty text gives no piece at all, and an empty
// delimiter the whole text as one piece.
QStringList Split(const QString& text, const QString& delimiter);

// Trim: blanks removed at both ends; tabs and other white space stay.
QString Trim(const QString& text);

}  // namespace rt
