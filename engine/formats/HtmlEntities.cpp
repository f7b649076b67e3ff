// The HTML entities the table files write and read. The reader knows HTML 4.0's Latin-1
// names by a table of its own and gives each as one character of the ANSI code page, so
// on a Cyrillic machine the codes 192 to 255 come out as Cyrillic letters.

#include <array>

#include "engine/XDataBase.h"
#include "rt/VbConvert.h"

namespace engine {

namespace {

// Codes 160 to 191 in order. Code 185 is spelt "supl" (HTML has "sup1"): files written
// for the host suite use this spelling, and only it is read.
constexpr std::array<const char*, 32> kLatin1Names = {
    "nbsp",  "iexcl", "cent",  "pound", "curren", "yen",    "brvbar", "sect",   "uml",    "copy",   "ordf",
    "laquo", "not",   "shy",   "reg",   "macr",   "deg",    "plusmn", "sup2",   "sup3",   "acute",  "micro",
    "para",  "middot", "cedil", "supl", "ordm",   "raquo",  "frac14", "frac12", "frac34", "iquest"};

struct Letter {
    const char* name;
    int32_t small;
    int32_t capital;
};

constexpr std::array<Letter, 30> kLetters = {{
    {"agrave", 224, 192}, {"aacute", 225, 193}, {"acirc", 226, 194},  {"atilde", 227, 195}, {"auml", 228, 196},
    {"aring", 229, 197},  {"aelig", 230, 198},  {"ccedil", 231, 199}, {"egrave", 232, 200}, {"eacute", 233, 201},
    {"ecirc", 234, 202},  {"euml", 235, 203},   {"igrave", 236, 204}, {"iacute", 237, 205}, {"icirc", 238, 206},
    {"iuml", 239, 207},   {"eth", 240, 208},    {"ntilde", 241, 209}, {"ograve", 242, 210}, {"oacute", 243, 211},
    {"ocirc", 244, 212},  {"otilde", 245, 213}, {"ouml", 246, 214},   {"oslash", 248, 216}, {"ugrave", 249, 217},
    {"uacute", 250, 218}, {"ucirc", 251, 219},  {"uuml", 252, 220},   {"yacute", 253, 221}, {"thorn", 254, 222},
}};

struct Single {
    const char* name;
    int32_t code;
};

constexpr std::array<Single, 4> kSingles = {{{"times", 215}, {"szlig", 223}, {"divide", 247}, {"yuml", 255}}};

}  // namespace

QString XDataBase::EncodeHtmlEntities(const QString& text)
{
    // "&" first, so that no entity made here is encoded again.
    QString encoded = text;
    encoded.replace(u'&', QStringLiteral("&amp;"));
    encoded.replace(u'<', QStringLiteral("&lt;"));
    encoded.replace(u'>', QStringLiteral("&gt;"));
    encoded.replace(u'"', QStringLiteral("&quot;"));
    encoded.replace(u' ', QStringLiteral("&nbsp;"));
    return encoded;
}

QString XDataBase::DecodeHtmlEntity(const QString& name)
{
    const QString lower = name.toLower();
    if (lower == u"amp")
        return QStringLiteral("&");
    if (lower == u"lt")
        return QStringLiteral("<");
    if (lower == u"gt")
        return QStringLiteral(">");
    // A quoted text read from a page loses its quotes.
    if (lower == u"quot")
        return QString();
    for (size_t i = 0; i < kLatin1Names.size(); ++i)
        if (lower == QLatin1String(kLatin1Names[i]))
            return rt::Chr(160 + int32_t(i));
    for (const Letter& letter : kLetters)
        if (lower == QLatin1String(letter.name))
            return rt::Chr(name == lower ? letter.small : letter.capital);
    for (const Single& single : kSingles)
        if (lower == QLatin1String(single.name))
            return rt::Chr(single.code);
    const QString number = name.startsWith(u'#') ? name.mid(1) : name;
    if (rt::IsNumeric(number))
        return rt::Chr(rt::CLng(rt::Val(number)));
    return QString();
}

}  // namespace engine
