#pragma once
// Sequential text input, line by line, as the run-time's Line Input does it: a line ends
// at CR LF or at a lone CR; a lone LF is an ordinary character of the line. Bytes are
// decoded in the program's ANSI code page. Reading past the last line is run-time error
// 62; a line longer than kMaxLineLength is run-time error 7, so that an enormous or
// binary file can neither exhaust memory nor hold the program up.

#include <memory>
#include <QByteArray>
#include <QIODevice>
#include <QString>

namespace rt {

class TextLineReader {
public:
    static constexpr qsizetype kMaxLineLength = 1024 * 1024;

    // Opens a file for input: a missing file is error 53 (76 when its folder is missing),
    // anything else that keeps it from being read (a folder, no permission) is error 75.
    static std::unique_ptr<TextLineReader> openFile(const QString& path);

    // Reads from any open device, which the reader then owns.
    explicit TextLineReader(std::unique_ptr<QIODevice> device);

    // The run-time's EOF: true when no further line can be read.
    bool atEnd();
    QString readLine();

private:
    bool fill();
    QString take(qsizetype length, qsizetype lineBreak);

    std::unique_ptr<QIODevice> device_;
    QByteArray buffer_;
    qsizetype pos_ = 0;
};

}  // namespace rt
