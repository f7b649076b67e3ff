#pragma once
// A whole file read into memory at once, as the table readers take an XML or HTML file.
// A file larger than kMaxWholeFileSize is refused with run-time error 7 (Out of memory)
// before anything is read, so an enormous file can neither exhaust memory nor hold the
// program up.

#include <QByteArray>
#include <QString>

namespace rt {

inline constexpr qint64 kMaxWholeFileSize = qint64(256) * 1024 * 1024;

// The file's bytes. A missing file is error 53 (76 when its folder is missing), a file
// that cannot be read (a folder, no permission, a read error) error 75.
QByteArray readWholeFile(const QString& path);

}  // namespace rt
