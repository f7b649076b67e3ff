#pragma once
// What tests of the layers above the engine need again and again: readable texts in
// failure messages, the run-time error a piece of code raises, whole files in and out,
// text input from memory, and environment variables put back as they were.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <QBuffer>
#include <QFile>
#include <QString>

#include "host/TextLineReader.h"
#include "jet/RuntimeError.h"

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
inline std::unique_ptr<host::TextLineReader> readerOf(const QByteArray& bytes)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(bytes);
    buffer->open(QIODevice::ReadOnly);
    return std::make_unique<host::TextLineReader>(std::move(buffer));
}

// Environment variables changed for a test and put back when it ends.
class EnvironmentScope {
public:
    EnvironmentScope() = default;
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;
    ~EnvironmentScope()
    {
        for (const auto& [name, value] : saved_)
            value ? qputenv(name.c_str(), *value) : qunsetenv(name.c_str());
    }
    // An empty value removes the variable.
    void set(const char* name, const QString& value)
    {
        if (!saved_.count(name))
            saved_[name] = qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt;
        value.isEmpty() ? qunsetenv(name) : qputenv(name, QFile::encodeName(value));
    }

private:
    std::map<std::string, std::optional<QByteArray>> saved_;
};
