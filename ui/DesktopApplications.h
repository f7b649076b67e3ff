#pragma once
// Whether the desktop has an application for a kind of file, as the freedesktop.org
// rules for MIME associations say: mimeapps.list in the configuration folders and in the
// applications folders, then the mimeinfo.cache files the desktop database keeps. A file
// manager asks the same question before it offers to open a file.

#include <QString>
#include <QStringList>

namespace ui {

// The desktop files associated with any of the MIME types, most preferred first, with
// those removed in a mimeapps.list left out; only files that exist are listed.
QStringList desktopApplicationsFor(const QStringList& mimeTypes);

}  // namespace ui
