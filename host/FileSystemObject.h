#pragma once
// The file operations the program does the host's way, on local paths.

#include <QString>

namespace host {

// Copies the file. With overwrite an existing target is replaced, and atomically: the copy
// is written beside it and renamed over it, so a failure leaves the old file whole.
// Errors: 53 when the source does not exist, 58 when the target exists and overwrite is
// off, 76 when the target's folder does not exist, 75 when either cannot be read or
// written.
void CopyFile(const QString& source, const QString& target, bool overwrite);

}  // namespace host
