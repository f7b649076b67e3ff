#include "host/NumberedFiles.h"

#include <cerrno>
#include <optional>

#include <QDir>
#include <QFileInfo>

#include "host/AnsiCodePage.h"
#include "host/VbError.h"

namespace host {

namespace {

jet::RuntimeError writeError(const QFile& file, int savedErrno)
{
    const int32_t number = savedErrno == ENOSPC ? vberr::DiskFull : vberr::DeviceIoError;
    return vbError(number, QStringLiteral("%1: cannot write '%2' (%3)")
                               .arg(standardDescription(number), file.fileName(), file.errorString()));
}

// Closes the file, sending what it still buffers; the error of a failed last write.
std::optional<jet::RuntimeError> closeFile(QFile& file)
{
    errno = 0;
    const bool flushed = file.flush();
    const int savedErrno = errno;
    file.close();
    if (!flushed || file.error() == QFileDevice::WriteError)
        return writeError(file, savedErrno);
    return std::nullopt;
}

}  // namespace

NumberedFiles& NumberedFiles::program()
{
    static NumberedFiles table;
    return table;
}

int16_t NumberedFiles::FreeFile() const
{
    for (int16_t n = 1; n <= kMaxNumber; ++n)
        if (!files_[size_t(n)])
            return n;
    throw vbError(vberr::TooManyFiles);
}

QFile* NumberedFiles::fileOf(int16_t number) const
{
    if (number < 1 || number > kMaxNumber)
        throw vbError(vberr::BadFileNameOrNumber);
    return files_[size_t(number)].get();
}

void NumberedFiles::OpenForOutput(int16_t number, const QString& path)
{
    if (fileOf(number))
        throw vbError(vberr::FileAlreadyOpen);
    const QFileInfo info(path);
    if (!info.absoluteDir().exists())
        throw vbError(vberr::PathNotFound, QStringLiteral("Path not found: '%1'").arg(path));
    auto file = std::make_unique<QFile>(path);
    if (info.isDir() || !file->open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw vbError(vberr::PathFileAccessError,
                      QStringLiteral("Path/File access error: cannot write '%1' (%2)").arg(path, file->errorString()));
    files_[size_t(number)] = std::move(file);
}

void NumberedFiles::PrintLine(int16_t number, const QString& text)
{
    QFile* file = fileOf(number);
    if (!file)
        throw vbError(vberr::BadFileNameOrNumber);
    QByteArray bytes = AnsiCodePage::current().encode(text);
    bytes += "\r\n";
    errno = 0;
    if (file->write(bytes) != bytes.size())
        throw writeError(*file, errno);
}

void NumberedFiles::Close(int16_t number)
{
    if (!fileOf(number))
        return;
    const std::unique_ptr<QFile> file = std::move(files_[size_t(number)]);
    if (const auto error = closeFile(*file))
        throw *error;
}

void NumberedFiles::CloseAll()
{
    std::optional<jet::RuntimeError> first;
    for (std::unique_ptr<QFile>& slot : files_) {
        if (!slot)
            continue;
        const std::unique_ptr<QFile> file = std::move(slot);
        if (auto error = closeFile(*file); error && !first)
            first = std::move(error);
    }
    if (first)
        throw *first;
}

int32_t NumberedFiles::openCount() const
{
    int32_t count = 0;
    for (const std::unique_ptr<QFile>& slot : files_)
        count += slot ? 1 : 0;
    return count;
}

}  // namespace host
