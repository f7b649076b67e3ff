#include "rt/FileSystemObject.h"

#include <sys/file.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "rt/VbError.h"

namespace rt {

namespace {

constexpr int32_t FileAlreadyExists = 58;
constexpr int32_t PermissionDenied = 70;

// Whether some other open of the file holds a lock on it.
bool lockedByAnother(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    if (::flock(file.handle(), LOCK_EX | LOCK_NB) != 0)
        return true;
    ::flock(file.handle(), LOCK_UN);
    return false;
}

}  // namespace

void CheckCopyFile(const QString& source, const QString& target, bool overwrite)
{
    if (!QFileInfo(source).isFile())
        throw vbError(vberr::FileNotFound, QStringLiteral("File not found: '%1'").arg(source));
    if (!overwrite && QFileInfo::exists(target))
        throw vbError(FileAlreadyExists, QStringLiteral("File already exists: '%1'").arg(target));
    if (QFileInfo(target).isFile() && lockedByAnother(target))
        throw vbError(PermissionDenied, QStringLiteral("Permission denied: '%1' is in use").arg(target));
    if (!QFileInfo(target).absoluteDir().exists())
        throw vbError(vberr::PathNotFound, QStringLiteral("Path not found: '%1'").arg(target));
}

void CopyFile(const QString& source, const QString& target, bool overwrite)
{
    CheckCopyFile(source, target, overwrite);
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly))
        throw vbError(vberr::PathFileAccessError, QStringLiteral("Cannot read '%1': %2").arg(source, in.errorString()));

    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly))
        throw vbError(vberr::PathFileAccessError, QStringLiteral("Cannot write '%1': %2").arg(target, out.errorString()));
    QByteArray chunk;
    while (!(chunk = in.read(1 << 16)).isEmpty())
        if (out.write(chunk) != chunk.size())
            break;
    if (in.error() != QFileDevice::NoError || out.error() != QFileDevice::NoError || !out.commit())
        throw vbError(vberr::PathFileAccessError, QStringLiteral("Cannot copy '%1' to '%2': %3")
                                                      .arg(source, target, out.errorString()));
}

}  // namespace rt
