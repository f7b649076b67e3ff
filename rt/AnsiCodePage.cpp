#include "rt/AnsiCodePage.h"

#include <QStringDecoder>

namespace rt {

namespace {
constexpr char16_t kReplacement = 0xFFFD;
}

AnsiCodePage::AnsiCodePage(const QString& name)
{
    if (!build(name))
        build(QStringLiteral("windows-1251"));
}

bool AnsiCodePage::build(const QString& name)
{
    QStringDecoder decoder(name.toLatin1().constData());
    if (!decoder.isValid())
        return false;
    nonAscii_.clear();
    // Decoding byte by byte is exact for a single-byte code page; a byte the code page
    // leaves undefined decodes to the replacement character and maps to nothing.
    for (int b = 0; b < 256; ++b) {
        const char byte = static_cast<char>(b);
        decoder.resetState();
        const QString one = decoder.decode(QByteArrayView(&byte, 1));
        const QChar c = one.size() == 1 ? one[0] : QChar(kReplacement);
        toChar_[b] = c;
        if (b >= 0x80 && c.unicode() != kReplacement && !nonAscii_.contains(c.unicode()))
            nonAscii_.insert(c.unicode(), static_cast<uint8_t>(b));
    }
    // A multi-byte encoding (UTF-8 and the like) is not a single-byte code page.
    for (int b = 0; b < 0x80; ++b)
        if (toChar_[b].unicode() != b)
            return false;
    return true;
}

const AnsiCodePage& AnsiCodePage::current()
{
    static const AnsiCodePage page(qEnvironmentVariableIsEmpty("SHEETWRIGHT_CODEPAGE")
                                       ? QStringLiteral("windows-1251")
                                       : qEnvironmentVariable("SHEETWRIGHT_CODEPAGE"));
    return page;
}

int AnsiCodePage::toByte(QChar c) const
{
    if (c.unicode() < 0x80)
        return c.unicode();
    const auto it = nonAscii_.constFind(c.unicode());
    return it == nonAscii_.constEnd() ? -1 : *it;
}

QString AnsiCodePage::decode(QByteArrayView bytes) const
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (const char b : bytes)
        *out++ = toChar_[static_cast<uint8_t>(b)];
    return text;
}

QByteArray AnsiCodePage::encode(QStringView text) const
{
    QByteArray bytes(text.size(), Qt::Uninitialized);
    char* out = bytes.data();
    for (const QChar c : text) {
        const int b = toByte(c);
        *out++ = b < 0 ? '?' : static_cast<char>(b);
    }
    return bytes;
}

}  // namespace rt
