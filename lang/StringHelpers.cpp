#include "lang/StringHelpers.h"

#include <algorithm>

#include "host/HostDiagnostics.h"
#include "rt/AnsiCodePage.h"
#include "rt/VbError.h"
#include "rt/VbStrings.h"

namespace lang {

bool gTokenAtEnd = false;

namespace {

int16_t toPosition(qsizetype value)
{
    if (value > INT16_MAX)
        throw rt::vbError(rt::vberr::Overflow);
    return static_cast<int16_t>(value);
}

QString reversed(const QString& text)
{
    QString out = text;
    std::reverse(out.begin(), out.end());
    return out;
}

}  // namespace

QString GetToken(const QString& text, int16_t& position, const QString& delimiter, bool dropDelimiter,
                 int16_t count, bool dropTrailing)
{
    if (count == 0)
        count = 1;
    gTokenAtEnd = false;
    const rt::AnsiCodePage& codePage = rt::AnsiCodePage::current();
    const QByteArray bytes = codePage.encode(text);
    const qsizetype length = bytes.size();
    qsizetype index = static_cast<qsizetype>(position) - 1;
    if (index < 0 || index >= length)
        throw rt::vbError(rt::vberr::SubscriptOutOfRange);
    // A delimiter the code page cannot hold matches no byte, as comparing strings would.
    const int delimiterByte = delimiter.size() == 1 ? codePage.toByte(delimiter[0]) : -1;

    QByteArray piece;
    int16_t occurrences = 0;
    bool found = false;
    bool reachedEnd = false;
    for (;;) {
        const auto byte = static_cast<uint8_t>(bytes[index]);
        piece += static_cast<char>(byte);
        if (delimiterByte >= 0 && byte == delimiterByte)
            ++occurrences;
        position = toPosition(index + 1);
        reachedEnd = index + 1 >= length;
        found = occurrences == count;
        if (reachedEnd || found)
            break;
        ++index;
    }

    QString result = codePage.decode(piece);
    if (dropDelimiter) {
        if (found && !reachedEnd)
            result.chop(1);
        else if (reachedEnd && dropTrailing && delimiter.size() == 1 && result.endsWith(delimiter[0]))
            result.chop(1);
    }
    position = toPosition(index + 2);
    gTokenAtEnd = position >= length;
    return result;
}

QString GetFileName(const QString& path)
{
    qsizetype start = path.size();
    while (start > 0) {
        --start;
        if (path[start] == u'\\' || path[start] == u'/')
            break;
    }
    return path.mid(start + 1);
}

QString GetFileExtension(const QString& path)
{
    const QString name = reversed(GetFileName(path));
    int16_t position = 1;
    return reversed(GetToken(name, position, QStringLiteral("."), true));
}

QString ColorToHex(int32_t color, bool hexadecimal)
{
    QString result;
    int32_t rest = color;
    for (int part = 0; part < 3; ++part) {
        // The run-time's Mod and integer division: a negative colour gives negative
        // parts, written as the 32-bit two's complement Hex shows.
        const int32_t value = rest % 256;
        rest /= 256;
        QString digits = hexadecimal ? QString::number(static_cast<uint32_t>(value), 16).toUpper()
                                     : QString::number(value);
        if (digits.size() == 1)
            digits.prepend(u'0');
        result += digits;
    }
    return result;
}

QString ToPoint(QString& value)
{
    try {
        host::HostDiagnostics::current().trace(QStringLiteral("Function: ToPoint(") + value + u')');
        QString result = rt::Trim(value);
        result.replace(u',', u'.');
        value = result;
        return result;
    } catch (const jet::RuntimeError& error) {
        host::HostDiagnostics::current().reportError(error.number(), rt::descriptionOf(error),
                                                     QStringLiteral("ToPoint"), QStringLiteral("global"),
                                                     QStringLiteral("Functions"));
        return QString();
    }
}

}  // namespace lang
