#pragma once
// Paths that the program builds the host's way, with "\" between folder and file (the
// language table's path, the template database's), name files on this system through
// localPath, which turns every "\" into "/". A "\" inside a Linux file name is the price:
// no file the program itself looks for has one.

#include <QString>

namespace rt {

QString localPath(const QString& hostPath);

}  // namespace rt
