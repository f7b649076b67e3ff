#pragma once
// The host's file-dialog filter, "description|pattern;pattern|description|pattern", as
// the name filters of a Qt file dialog: "description (pattern pattern)". A description
// without its pattern part matches every file.

#include <QString>
#include <QStringList>

namespace ui {

QStringList qtNameFilters(const QString& hostFilter);

}  // namespace ui
