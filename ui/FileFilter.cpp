#include "ui/FileFilter.h"

namespace ui {

QStringList qtNameFilters(const QString& hostFilter)
{
    QStringList filters;
    if (hostFilter.isEmpty())
        return filters;
    const QStringList parts = hostFilter.split(u'|');
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        QString patterns = i + 1 < parts.size() ? parts[i + 1].trimmed() : QString();
        patterns.replace(u';', u' ');
        if (patterns.trimmed().isEmpty())
            patterns = QStringLiteral("*");
        // The pattern part in parentheses is what Qt filters by; the dialog is told to
        // hide it, so the description shows as the host wrote it.
        filters << QStringLiteral("%1 (%2)").arg(parts[i], patterns.simplified());
    }
    return filters;
}

}  // namespace ui
