#pragma once
// The file operations the program does the host's way, on local paths.

#include <QString>

namespace rt {

// Copies the file. With overwrite an existing target is replaced, and atomically: the copy
// is written beside it and renamed over it, so a failure leaves the old file whole.
// Errors: 53 when the source does not exist, 58 when the target exists and overwrite is
// off, 70 when another program holds the target open (an advisory lock on it, as the
// database engine keeps on an open database: its changes would go to a file nobody can
// find again), 76 when the target's folder does not exist, 75 when either cannot be read
// or written.
void CopyFile(const QString& source, const QString& target, bool overwrite);

// Raises the error CopyFile would raise before copying anything (53, 58, 70 or 76), for
// callers that copy by other means but answer as the file-system object does.
void CheckCopyFile(const QString& source, const QString& target, bool overwrite);

}  // namespace rt
