#pragma once
// What tests of the layers above the engine need again and again: readable texts in
// failure messages, the run-time error a piece of code raises, whole files in and out,
// and text input from memory.

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <QBuffer>
#include <QFile>
#include <QString>

#include "jet/RuntimeError.h"
#include "rt/TextLineReader.h"

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

// The number of the run-time error the code raises, or 0 when it raises none.
inline int32_t runTimeErrorOf(const std::function<void()>& code)
{
    try {
        code();
    } catch (const jet::RuntimeError& e) {
        return e.number();
    }
    return 0;
}

inline void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

// The file's bytes, or "<missing>" when it cannot be read.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// Sequential input over bytes held in memory, read as the program reads a file.
inline std::unique_ptr<rt::TextLineReader> readerOf(const QByteArray& bytes)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(bytes);
    buffer->open(QIODevice::ReadOnly);
    return std::make_unique<rt::TextLineReader>(std::move(buffer));
}
