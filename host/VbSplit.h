#pragma once
// The run-time's Split: the text cut at every occurrence of the delimiter, empty pieces
// kept ("a,,b" gives three pieces, "a," two). An empty text gives no piece at all, and an
// empty delimiter the whole text as one piece.

#include <QString>
#include <QStringList>

namespace host {

QStringList Split(const QString& text, const QString& delimiter);

}  // namespace host
