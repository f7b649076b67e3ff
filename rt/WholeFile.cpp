#include "rt/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "rt/VbError.h"

namespace rt {

QByteArray readWholeFile(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        throw vbError(info.absoluteDir().exists() ? vberr::FileNotFound : vberr::PathNotFound,
                      QStringLiteral("File not found: '%1'").arg(path));
    QFile file(path);
    if (info.isDir() || !file.open(QIODevice::ReadOnly))
        throw vbError(vberr::PathFileAccessError, QStringLiteral("Cannot read '%1'").arg(path));
    const auto tooLarge = [&] {
        return vbError(vberr::OutOfMemory, QStringLiteral("The file '%1' is too large to be read at once (%2 MB at most)")
                                               .arg(path).arg(kMaxWholeFileSize >> 20));
    };
    if (file.size() > kMaxWholeFileSize)
        throw tooLarge();
    // A pipe or device reports no size: it is read in chunks, up to the limit.
    QByteArray bytes;
    bytes.reserve(file.size());
    for (QByteArray chunk; !(chunk = file.read(1 << 20)).isEmpty();) {
        if (bytes.size() + chunk.size() > kMaxWholeFileSize)
            throw tooLarge();
        bytes += chunk;
    }
    if (file.error() != QFileDevice::NoError)
        throw vbError(vberr::PathFileAccessError, QStringLiteral("Cannot read '%1': %2").arg(path, file.errorString()));
    return bytes;
}

}  // namespace rt
