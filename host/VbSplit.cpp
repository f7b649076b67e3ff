#include "host/VbSplit.h"

namespace host {

QStringList Split(const QString& text, const QString& delimiter)
{
    if (text.isEmpty())
        return {};
    if (delimiter.isEmpty())
        return {text};
    return text.split(delimiter, Qt::KeepEmptyParts, Qt::CaseSensitive);
}

}  // namespace host
