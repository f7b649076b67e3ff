#include "rt/VbStrings.h"

namespace rt {

QStringList Split(const QString& text, const QString& delimiter)
{
    if (text.isEmpty())
        return {};
    if (delimiter.isEmpty())
        return {text};
    return text.split(delimiter, Qt::KeepEmptyParts, Qt::CaseSensitive);
}

QString Trim(const QString& text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text[start] == u' ')
        ++start;
    while (end > start && text[end - 1] == u' ')
        --end;
    return text.mid(start, end - start);
}

}  // namespace rt
