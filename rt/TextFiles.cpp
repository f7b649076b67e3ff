#include "rt/TextFiles.h"

#include <optional>
#include <QDir>
#include <QFileInfo>

#include "rt/AnsiCodePage.h"
#include "rt/VbError.h"

namespace rt {

namespace {

constexpr int16_t kLastNumber = 511;
constexpr int16_t kLastFreeFile = 255;

void requireValid(int16_t number)
{
    if (number < 1 || number > kLastNumber)
        throw vbError(vberr::BadFileNameOrNumber);
}

jet::RuntimeError writeError(const QFile& file)
{
    return file.error() == QFileDevice::ResourceError
               ? vbError(vberr::DiskFull)
               : vbError(vberr::PathFileAccessError,
                         QStringLiteral("Cannot write '%1': %2").arg(file.fileName(), file.errorString()));
}

std::unique_ptr<QFile> openForWriting(const QString& path, TextFiles::Mode mode)
{
    if (!QFileInfo(path).absoluteDir().exists())
        throw vbError(vberr::PathNotFound);
    auto file = std::make_unique<QFile>(path);
    const QIODevice::OpenMode how =
        mode == TextFiles::Mode::Append ? QIODevice::WriteOnly | QIODevice::Append : QIODevice::WriteOnly | QIODevice::Truncate;
    if (QFileInfo(path).isDir() || !file->open(how))
        throw vbError(vberr::PathFileAccessError,
                      QStringLiteral("Cannot open '%1' for writing: %2").arg(path, file->errorString()));
    return file;
}

}  // namespace

TextFiles& TextFiles::program()
{
    static TextFiles files;
    return files;
}

TextFiles::~TextFiles()
{
    for (auto& [number, file] : files_)
        if (file.output)
            file.output->close();
}

int16_t TextFiles::FreeFile() const
{
    for (int16_t number = 1; number <= kLastFreeFile; ++number)
        if (!isOpen(number))
            return number;
    throw vbError(vberr::TooManyFiles);
}

void TextFiles::Open(const QString& path, Mode mode, int16_t number)
{
    requireValid(number);
    if (isOpen(number))
        throw vbError(vberr::FileAlreadyOpen);
    OpenFile file;
    file.mode = mode;
    if (mode == Mode::Input)
        file.input = TextLineReader::openFile(path);
    else
        file.output = openForWriting(path, mode);
    files_.emplace(number, std::move(file));
}

TextFiles::OpenFile& TextFiles::opened(int16_t number, bool forInput)
{
    requireValid(number);
    const auto found = files_.find(number);
    if (found == files_.end())
        throw vbError(vberr::BadFileNameOrNumber);
    if ((found->second.mode == Mode::Input) != forInput)
        throw vbError(vberr::BadFileMode);
    return found->second;
}

QString TextFiles::LineInput(int16_t number)
{
    return opened(number, true).input->readLine();
}

bool TextFiles::Eof(int16_t number)
{
    return opened(number, true).input->atEnd();
}

void TextFiles::PrintLine(int16_t number, const QString& text)
{
    QFile& out = *opened(number, false).output;
    const QByteArray line = AnsiCodePage::current().encode(text) + "\r\n";
    if (out.write(line) != line.size())
        throw writeError(out);
}

void TextFiles::Close(int16_t number)
{
    const auto found = files_.find(number);
    if (found == files_.end())
        return;
    const std::unique_ptr<QFile> output = std::move(found->second.output);
    files_.erase(found);
    if (output && !output->flush())
        throw writeError(*output);
}

void TextFiles::CloseAll()
{
    std::optional<jet::RuntimeError> first;
    while (!files_.empty()) {
        try {
            Close(files_.begin()->first);
        } catch (const jet::RuntimeError& e) {
            if (!first)
                first = e;
        }
    }
    if (first)
        throw *first;
}

}  // namespace rt
