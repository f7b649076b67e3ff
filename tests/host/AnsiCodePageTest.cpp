#include <gtest/gtest.h>

#include "host/AnsiCodePage.h"

using host::AnsiCodePage;

TEST(AnsiCodePage, Windows1251RoundTripsEveryDefinedByte)
{
    const AnsiCodePage page(QStringLiteral("windows-1251"));
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        if (b != 0x98)  // the one byte Windows-1251 leaves undefined
            all += static_cast<char>(b);
    EXPECT_EQ(page.encode(page.decode(all)), all);
    EXPECT_EQ(page.decode("\xcf\xf0\xe8\xe2\xe5\xf2"), QString::fromUtf8("Привет"));
}

TEST(AnsiCodePage, CharactersOutsideTheCodePageBecomeQuestionMarks)
{
    const AnsiCodePage page(QStringLiteral("windows-1251"));
    const QByteArray bytes = page.encode(QString::fromUtf8("a中ü"));
    EXPECT_EQ(bytes, "a??");
    EXPECT_EQ(bytes.size(), 3);  // one byte per character, always
}

TEST(AnsiCodePage, OtherCodePagesMapDifferently)
{
    const AnsiCodePage latin(QStringLiteral("windows-1252"));
    EXPECT_EQ(latin.decode("\xfc"), QString::fromUtf8("ü"));
    EXPECT_EQ(latin.toByte(QChar(0x0439)), -1);  // no Cyrillic
}

TEST(AnsiCodePage, UnknownOrMultiByteNamesFallBackToWindows1251)
{
    const AnsiCodePage unknown(QStringLiteral("no-such-code-page"));
    EXPECT_EQ(unknown.decode("\xc0"), QString::fromUtf8("А"));
    const AnsiCodePage utf16(QStringLiteral("UTF-16LE"));
    EXPECT_EQ(utf16.decode("\xc0\x04"), QString::fromUtf8("А\x04"));
}
