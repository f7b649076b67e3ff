// What a cell of an HTML table holds, from the raw text between its start tag and
// "</td>".
//
// Tags are removed in pairs and entities resolved as the host suite's reader does it:
// each pair of tags (start tag, text, end tag) gives way to the text between them, and a
// decoded "&" is looked at again, so "&amp;lt;" ends as "<". Both passes go from left to
// right without ever looking back, because what they leave behind them can no longer
// change: the text before the first "<" has none, and neither has the text between a
// pair. That keeps a long cell with many tags or entities linear instead of rebuilding
// the whole string for each one.

#include "engine/XDataBase.h"
#include "rt/VbError.h"
#include "rt/VbStrings.h"

namespace engine {

namespace {

QString removeTagPairs(const QString& text)
{
    QString out;
    qsizetype pos = 0;
    for (;;) {
        const qsizetype a = text.indexOf(u'<', pos);
        if (a < 0)
            break;
        const qsizetype b = text.indexOf(u'>', a);
        if (b < 0)
            break;
        // A single tag (as a line break after a value) has no partner to pair with.
        const qsizetype c = text.indexOf(u'<', b);
        const qsizetype d = c < 0 ? -1 : text.indexOf(u'>', c);
        if (d < 0)
            throw rt::vbError(rt::vberr::InvalidProcedureCall,
                                QStringLiteral("Invalid procedure call or argument: a tag without its pair in the cell "
                                               "text \"%1\"").arg(text.left(200)));
        out += QStringView(text).mid(pos, a - pos);
        out += QStringView(text).mid(b + 1, c - b - 1);
        pos = d + 1;
    }
    out += QStringView(text).mid(pos);
    return out;
}

bool isRemovedControl(QChar c)
{
    return c.unicode() <= 10 || c == u'\r';
}

QString resolveEntities(const QString& text)
{
    QString out;
    qsizetype pos = 0;
    // A decoded "&" that stands just before text[pos] and opens the next reference.
    bool decodedAmp = false;
    for (;;) {
        qsizetype nameStart;
        if (decodedAmp) {
            nameStart = pos;
        } else {
            const qsizetype amp = text.indexOf(u'&', pos);
            if (amp < 0)
                break;
            out += QStringView(text).mid(pos, amp - pos);
            pos = amp;
            nameStart = amp + 1;
        }
        const qsizetype semicolon = text.indexOf(u';', nameStart);
        if (semicolon < 0)
            break;
        const QString decoded = XDataBase::DecodeHtmlEntity(text.mid(nameStart, semicolon - nameStart));
        pos = semicolon + 1;
        decodedAmp = decoded == u"&";
        if (!decodedAmp)
            out += decoded;
    }
    if (decodedAmp)
        out += u'&';
    out += QStringView(text).mid(pos);
    return out;
}

}  // namespace

QString XDataBase::CleanCellText(const QString& text)
{
    QString cell = removeTagPairs(text);
    cell.removeIf(isRemovedControl);
    // Only blanks are trimmed; then every pair of blanks goes, so three leave one.
    cell = rt::Trim(cell);
    cell.replace(QStringLiteral("  "), QString());
    return resolveEntities(cell);
}

}  // namespace engine
