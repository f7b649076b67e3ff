#include "rt/TextLineReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "rt/AnsiCodePage.h"
#include "rt/VbError.h"

namespace rt {

namespace {
constexpr qsizetype kChunk = 64 * 1024;
}

std::unique_ptr<TextLineReader> TextLineReader::openFile(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        const bool folderExists = info.absoluteDir().exists();
        throw vbError(folderExists ? vberr::FileNotFound : vberr::PathNotFound);
    }
    auto file = std::make_unique<QFile>(path);
    if (info.isDir() || !file->open(QIODevice::ReadOnly))
        throw vbError(vberr::PathFileAccessError);
    return std::make_unique<TextLineReader>(std::move(file));
}

TextLineReader::TextLineReader(std::unique_ptr<QIODevice> device) : device_(std::move(device)) {}

bool TextLineReader::fill()
{
    if (pos_ > 0) {
        buffer_.remove(0, pos_);
        pos_ = 0;
    }
    const QByteArray more = device_->read(kChunk);
    if (more.isEmpty())
        return false;
    buffer_ += more;
    return true;
}

bool TextLineReader::atEnd()
{
    return pos_ >= buffer_.size() && !fill();
}

QString TextLineReader::take(qsizetype length, qsizetype lineBreak)
{
    const QString line = AnsiCodePage::current().decode(QByteArrayView(buffer_).sliced(pos_, length));
    pos_ += length + lineBreak;
    return line;
}

QString TextLineReader::readLine()
{
    if (atEnd())
        throw vbError(vberr::InputPastEndOfFile);
    // Offsets are kept relative to the line's start, which fill() moves to 0.
    qsizetype searched = 0;
    for (;;) {
        const qsizetype cr = buffer_.indexOf('\r', pos_ + searched);
        if (cr < 0) {
            if (buffer_.size() - pos_ > kMaxLineLength)
                throw vbError(vberr::OutOfMemory);
            searched = buffer_.size() - pos_;
            if (!fill())
                return take(buffer_.size() - pos_, 0);  // a last line without a line break
            continue;
        }
        const qsizetype length = cr - pos_;
        if (length > kMaxLineLength)
            throw vbError(vberr::OutOfMemory);
        if (cr + 1 == buffer_.size())
            fill();  // the LF of a CR LF may be in the next chunk
        const qsizetype after = pos_ + length + 1;
        const bool crlf = after < buffer_.size() && buffer_[after] == '\n';
        return take(length, crlf ? 2 : 1);
    }
}

}  // namespace rt
