#include "rt/AnsiCodePage.h"

#include <optional>

#include "jet/CodePages.h"
#include "jet/RuntimeError.h"

namespace rt {

namespace {

constexpr uint16_t kDefaultNumber = 1251;

// "windows-1252", "cp1252" or "1252" as the number 1252.
std::optional<uint16_t> numberOf(const QString& name)
{
    QString digits = name.toLower();
    for (const QLatin1String prefix : {QLatin1String("windows-"), QLatin1String("cp")})
        if (digits.startsWith(prefix))
            digits.remove(0, prefix.size());
    if (digits.isEmpty() || digits.size() > 5)
        return std::nullopt;
    for (const QChar c : digits)
        if (c < u'0' || c > u'9')
            return std::nullopt;
    const uint32_t number = digits.toUInt();
    if (number == 0 || number > UINT16_MAX)
        return std::nullopt;
    return static_cast<uint16_t>(number);
}

}  // namespace

AnsiCodePage::AnsiCodePage(const QString& name)
{
    const std::optional<uint16_t> number = numberOf(name);
    if (!number || !build(*number))
        build(kDefaultNumber);
}

bool AnsiCodePage::build(uint16_t number)
{
    std::array<char32_t, 256> characters;
    try {
        characters = jet::codePageCharacters(number);
    } catch (const jet::RuntimeError&) {
        return false;
    }
    number_ = number;
    nonAscii_.clear();
    for (int b = 0; b < 256; ++b) {
        const QChar c(static_cast<char16_t>(characters[b]));
        toChar_[b] = c;
        // The first byte wins when two share a character, as in the engine.
        if (b >= 0x80 && !nonAscii_.contains(c.unicode()))
            nonAscii_.insert(c.unicode(), static_cast<uint8_t>(b));
    }
    return true;
}

const AnsiCodePage& AnsiCodePage::current()
{
    static const AnsiCodePage page(qEnvironmentVariable("SHEETWRIGHT_CODEPAGE"));
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
