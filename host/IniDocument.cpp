#include "host/IniDocument.h"

#include <utility>

namespace host {

namespace {

QString fold(const QString& text)
{
    return text.toCaseFolded();
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

const char kHex[] = "0123456789ABCDEF";

// Escapes the bytes that would change the meaning of the line; `special` says which
// further bytes matter where the text stands.
template <typename Special>
QByteArray escape(const QString& text, Special special)
{
    const QByteArray utf8 = text.toUtf8();
    QByteArray out;
    out.reserve(utf8.size());
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        const auto b = static_cast<unsigned char>(utf8[i]);
        const bool atEdge = i == 0 || i == utf8.size() - 1;
        if (b == '%' || b < 0x20 || b == 0x7F || (atEdge && isBlank(static_cast<char>(b)))
            || special(b, i)) {
            out += '%';
            out += kHex[b >> 4];
            out += kHex[b & 15];
        } else {
            out += static_cast<char>(b);
        }
    }
    return out;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

QByteArray escapeName(const QString& name)
{
    if (name.isEmpty())
        return "@";
    return escape(name, [&](unsigned char b, qsizetype i) {
        return b == '=' || (i == 0 && (b == ';' || b == '#' || b == '[' || (b == '@' && name.size() == 1)));
    });
}

QByteArray escapeSection(const QString& section)
{
    return escape(section, [](unsigned char b, qsizetype) { return b == ']'; });
}

QByteArray escapeValue(const QString& value)
{
    return escape(value, [](unsigned char, qsizetype) { return false; });
}

QString unescape(QByteArrayView text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0 && hexDigit(text[i + 2]) >= 0) {
            bytes += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return QString::fromUtf8(bytes);
}

}  // namespace

IniDocument IniDocument::parse(QByteArrayView bytes)
{
    IniDocument doc;
    doc.sections_.push_back(Section{{}, {}, {}, false, {}});  // lines before the first header
    Section* current = &doc.sections_.back();
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', start);
        if (end < 0)
            end = bytes.size();
        const QByteArray raw = bytes.sliced(start, end - start).toByteArray();
        start = end + 1;

        const QByteArray line = raw.trimmed();
        if (line.size() >= 2 && line.startsWith('[') && line.endsWith(']')) {
            const QString name = unescape(QByteArrayView(line).sliced(1, line.size() - 2));
            // A repeated header continues the section met first: its lines move there
            // when the file is written again, and nothing in them is lost.
            current = doc.findSection(fold(name));
            if (current == nullptr) {
                doc.sections_.push_back(Section{name, fold(name), raw, true, {}});
                current = &doc.sections_.back();
            }
            continue;
        }
        const qsizetype eq = line.indexOf('=');
        const bool comment = line.startsWith(';') || line.startsWith('#');
        if (eq < 0 || comment || !current->hasHeader) {
            current->entries.push_back(Entry{{}, {}, {}, raw, false});
            continue;
        }
        const QByteArray rawName = line.left(eq).trimmed();
        const QString name = rawName == "@" ? QString() : unescape(rawName);
        current->entries.push_back(Entry{name, fold(name), unescape(line.sliced(eq + 1).trimmed()), raw, true});
    }
    return doc;
}

QByteArray IniDocument::serialize() const
{
    QByteArray out;
    for (const Section& s : sections_) {
        if (s.hasHeader) {
            if (s.rawHeader.isEmpty()) {
                // A section this program adds is set off by a blank line.
                if (!out.isEmpty() && !out.endsWith("\n\n"))
                    out += '\n';
                out += '[' + escapeSection(s.name) + "]\n";
            } else {
                out += s.rawHeader + '\n';
            }
        }
        for (const Entry& e : s.entries) {
            if (e.rawLine.isEmpty() && e.isValue)
                out += escapeName(e.name) + '=' + escapeValue(e.value) + '\n';
            else
                out += e.rawLine + '\n';
        }
    }
    return out;
}

std::optional<QString> IniDocument::value(const QString& section, const QString& name) const
{
    const Section* s = findSection(fold(section));
    if (s == nullptr)
        return std::nullopt;
    const QString folded = fold(name);
    for (const Entry& e : s->entries)
        if (e.isValue && e.folded == folded)
            return e.value;
    return std::nullopt;
}

bool IniDocument::setValue(const QString& section, const QString& name, const QString& value)
{
    Section* s = findSection(fold(section));
    if (s == nullptr) {
        sections_.push_back(Section{section, fold(section), {}, true, {}});
        s = &sections_.back();
    }
    const QString folded = fold(name);
    for (Entry& e : s->entries) {
        if (e.isValue && e.folded == folded) {
            if (e.value == value)
                return false;
            e.value = value;
            e.rawLine.clear();
            return true;
        }
    }
    s->entries.push_back(Entry{name, folded, value, {}, true});
    return true;
}

const IniDocument::Section* IniDocument::findSection(const QString& folded) const
{
    for (const Section& s : sections_)
        if (s.hasHeader && s.folded == folded)
            return &s;
    return nullptr;
}

IniDocument::Section* IniDocument::findSection(const QString& folded)
{
    return const_cast<Section*>(std::as_const(*this).findSection(folded));
}

}  // namespace host
