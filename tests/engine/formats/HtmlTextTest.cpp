// Entities and cell text of HTML tables, case by case as the host suite's files have them
// (the program's code page in tests is Windows-1251, so codes 192 to 255 are Cyrillic).

#include <gtest/gtest.h>

#include "../../support/TestSupport.h"

#include "engine/XDataBase.h"

using engine::XDataBase;

TEST(HtmlEntities, EncodingTakesTheAmpersandFirstSoNothingIsEncodedTwice)
{
    EXPECT_EQ(XDataBase::EncodeHtmlEntities("Tom & Jerry"), "Tom&nbsp;&amp;&nbsp;Jerry");
    EXPECT_EQ(XDataBase::EncodeHtmlEntities("a<b>\"c\"&lt;"), "a&lt;b&gt;&quot;c&quot;&amp;lt;");
    EXPECT_EQ(XDataBase::EncodeHtmlEntities("\t\r\n|~"), "\t\r\n|~");
    EXPECT_EQ(XDataBase::EncodeHtmlEntities(XDataBase::EncodeHtmlEntities("a b")), "a&amp;nbsp;b");
}

TEST(HtmlEntities, NamesGiveOneCharacterOfTheCodePage)
{
    const std::vector<std::pair<QString, QString>> cases = {
        {"amp", "&"}, {"AMP", "&"}, {"lt", "<"}, {"gt", ">"},
        {"quot", ""}, {"QUOT", ""},  // a quoted text loses its quotes
        {"nbsp", QString(QChar(0xA0))}, {"sect", QString::fromUtf8("§")}, {"copy", QString::fromUtf8("©")},
        {"laquo", QString::fromUtf8("«")}, {"shy", QString(QChar(0xAD))}, {"deg", QString::fromUtf8("°")},
        {"plusmn", QString::fromUtf8("±")}, {"micro", QString::fromUtf8("µ")}, {"middot", QString::fromUtf8("·")},
        {"raquo", QString::fromUtf8("»")},
        // Code 185 is read only as "supl"; Windows-1251 has the numero sign there.
        {"supl", QString::fromUtf8("№")}, {"sup1", ""},
        // In Windows-1251 codes 160 to 191 that Latin-1 fills hold other letters.
        {"iexcl", QString::fromUtf8("Ў")}, {"frac14", QString::fromUtf8("ј")}, {"iquest", QString::fromUtf8("ї")},
        // Small code when the name is all small letters, capital code on any capital.
        {"agrave", QString::fromUtf8("а")}, {"Agrave", QString::fromUtf8("А")}, {"AGRAVE", QString::fromUtf8("А")},
        {"aGrave", QString::fromUtf8("А")}, {"eacute", QString::fromUtf8("й")}, {"Eacute", QString::fromUtf8("Й")},
        {"oslash", QString::fromUtf8("ш")}, {"Oslash", QString::fromUtf8("Ш")}, {"thorn", QString::fromUtf8("ю")},
        {"THORN", QString::fromUtf8("Ю")},
        {"times", QString::fromUtf8("Ч")}, {"szlig", QString::fromUtf8("Я")}, {"divide", QString::fromUtf8("ч")},
        {"YUML", QString::fromUtf8("я")},
        // Numbers, with or without "#"; hexadecimal is no number.
        {"#65", "A"}, {"65", "A"}, {"#0065", "A"}, {"# 65 ", "A"}, {"#65.4", "A"}, {"#&H41", "A"}, {"#200", "И"},
        {"#x41", ""}, {"#", ""}, {"", ""}, {"unknown", ""}, {"nbsp ", ""}};
    for (const auto& [name, character] : cases)
        EXPECT_EQ(XDataBase::DecodeHtmlEntity(name), character) << name.toStdString();
    for (const char* outOfRange : {"#256", "#-1", "256"})
        EXPECT_EQ(runTimeErrorOf([&] { XDataBase::DecodeHtmlEntity(outOfRange); }), 5) << outOfRange;
    EXPECT_EQ(runTimeErrorOf([] { XDataBase::DecodeHtmlEntity("#99999999999"); }), 6);
}

TEST(HtmlCellText, TagPairsControlsBlanksAndEntitiesAreCleanedInThatOrder)
{
    const std::vector<std::pair<QString, QString>> cases = {
        {"<b>x</b>", "x"},
        {"<i><b>x</b></i>", "x"},  // nested pairs go in two rounds
        {"a<b>c</b>d<i>e</i>f", "acdef"},
        {"<font color=\"red\">Hi</font> there", "Hi there"},
        {"x >y", "x >y"},  // no "<": nothing to remove
        {"x>y<z", "x>y<z"},  // "<" without a ">" after it: tag removal stops
        {"\x01" "a\tb\r\nc\x0b\x0c", "abc\x0b\x0c"},
        {"  a  b   c  ", "ab c"},  // trimmed, then each pair of blanks dropped
        {"&quot;Hi&quot;", "Hi"},
        {"&Eacute;t&eacute;", QString::fromUtf8("Йtй")},
        {"&#65;&65;", "AA"},
        {"&sup1;&unknown;x", "x"},
        {"&amp;lt;", "<"},  // a decoded "&" is looked at again
        {"&amp;amp;lt;", "<"},
        {"&&amp;;", ";"},
        {"a & b", "a & b"}, {"a &amp b", "a &amp b"}, {"x;&y", "x;&y"},
        // The decoded "&" takes the "&" of the next reference into its name: what the
        // writer makes of "Tom & Jerry" reads back without the ampersand.
        {"Tom&nbsp;&amp;&nbsp;Jerry", QString("Tom") + QChar(0xA0) + "Jerry"},
        {"a&amp;b;c", "ac"},
        {"&lt;b&gt;bold&lt;/b&gt;", "<b>bold</b>"},  // entities after the tags are gone stay text
    };
    for (const auto& [raw, value] : cases)
        EXPECT_EQ(XDataBase::CleanCellText(raw), value) << raw.toStdString();
}

TEST(HtmlCellText, ATagWithoutItsPairIsAnInvalidArgumentEvenInAHugeCell)
{
    for (const char* single : {"x<br>", "<br>x", "<a>b<c", "a<b>c<d e"})
        EXPECT_EQ(runTimeErrorOf([&] { XDataBase::CleanCellText(single); }), 5) << single;
    // Many tags and entities in one cell take one pass each, not one per tag.
    const QString big = QString("<b>x</b>&lt;").repeated(200000);
    EXPECT_EQ(XDataBase::CleanCellText(big), QString("x<").repeated(200000));
}
