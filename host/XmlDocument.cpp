#include "host/XmlDocument.h"

#include "rt/AnsiCodePage.h"
#include "rt/VbError.h"
#include "rt/WholeFile.h"
#include "jet/RuntimeError.h"

namespace host {

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

// Names are taken as loosely as the values: anything up to a blank or a character that
// has a meaning in a tag.
bool isNameChar(QChar c)
{
    return !isBlank(c) && c != u'<' && c != u'>' && c != u'/' && c != u'=' && c != u'"' && c != u'\'' && c != u'?' &&
           c != u'!';
}

}  // namespace

// One pass over the text, elements kept in document order with their parents; an
// explicit stack of open elements stands in for recursion.
class XmlDocument::Parser {
public:
    explicit Parser(XmlDocument& doc) : doc_(doc), text_(doc.text_), n_(int32_t(text_.size())) {}

    bool run()
    {
        while (pos_ < n_) {
            const qsizetype lt = text_.indexOf(u'<', pos_);
            if (lt < 0)
                break;  // text after the last tag
            pos_ = int32_t(lt);
            if (!markup())
                return false;
        }
        return open_.empty() && !doc_.nodes_.empty();
    }

private:
    bool startsWith(const char* literal) const { return QStringView(text_).mid(pos_).startsWith(QLatin1String(literal)); }

    // Moves past the literal that ends the construct started here.
    bool skipTo(const char* terminator)
    {
        const qsizetype end = text_.indexOf(QLatin1String(terminator), pos_);
        if (end < 0)
            return false;
        pos_ = int32_t(end + qstrlen(terminator));
        return true;
    }

    // A document type declaration may hold an internal subset in brackets and quoted
    // strings, both of which may contain ">".
    bool skipDeclaration()
    {
        int depth = 0;
        for (++pos_; pos_ < n_; ++pos_) {
            const QChar c = text_[pos_];
            if (c == u'"' || c == u'\'') {
                const qsizetype close = text_.indexOf(c, pos_ + 1);
                if (close < 0)
                    return false;
                pos_ = int32_t(close);
            } else if (c == u'[') {
                ++depth;
            } else if (c == u']') {
                --depth;
            } else if (c == u'>' && depth <= 0) {
                ++pos_;
                return true;
            }
        }
        return false;
    }

    bool markup()
    {
        if (startsWith("<?"))
            return skipTo("?>");
        if (startsWith("<!--"))
            return skipTo("-->");
        if (startsWith("<![CDATA["))
            return skipTo("]]>");
        if (startsWith("<!"))
            return skipDeclaration();
        if (startsWith("</"))
            return endTag();
        return startTag();
    }

    void skipBlanks()
    {
        while (pos_ < n_ && isBlank(text_[pos_]))
            ++pos_;
    }

    Span name()
    {
        const int32_t start = pos_;
        while (pos_ < n_ && isNameChar(text_[pos_]))
            ++pos_;
        return {start, pos_ - start};
    }

    bool endTag()
    {
        pos_ += 2;
        const Span closing = name();
        skipBlanks();
        if (closing.length == 0 || pos_ >= n_ || text_[pos_] != u'>' || open_.empty())
            return false;
        if (doc_.view(doc_.nodes_[open_.back()].name) != doc_.view(closing))
            return false;
        open_.pop_back();
        ++pos_;
        return true;
    }

    bool startTag()
    {
        ++pos_;
        Node node;
        node.name = name();
        if (node.name.length == 0 || doc_.nodes_.size() >= size_t(kMaxElements))
            return false;
        node.parent = open_.empty() ? -1 : open_.back();
        node.firstAttribute = int32_t(doc_.attributes_.size());
        for (;;) {
            skipBlanks();
            if (pos_ >= n_)
                return false;
            if (text_[pos_] == u'>' || startsWith("/>")) {
                const bool empty = text_[pos_] == u'/';
                pos_ += empty ? 2 : 1;
                node.attributeCount = int32_t(doc_.attributes_.size()) - node.firstAttribute;
                doc_.nodes_.push_back(node);
                if (!empty)
                    open_.push_back(int32_t(doc_.nodes_.size() - 1));
                return true;
            }
            if (!attribute())
                return false;
        }
    }

    bool attribute()
    {
        Attribute a;
        a.name = name();
        skipBlanks();
        if (a.name.length == 0 || pos_ >= n_ || text_[pos_] != u'=')
            return false;
        ++pos_;
        skipBlanks();
        if (pos_ >= n_ || (text_[pos_] != u'"' && text_[pos_] != u'\''))
            return false;
        const QChar quote = text_[pos_];
        a.value.start = ++pos_;
        for (;;) {
            const qsizetype close = text_.indexOf(quote, pos_);
            if (close < 0)
                return false;
            pos_ = int32_t(close) + 1;
            if (endsValue()) {
                a.value.length = int32_t(close) - a.value.start;
                break;
            }
        }
        if (doc_.attributes_.size() >= size_t(kMaxAttributes))
            return false;
        doc_.attributes_.push_back(a);
        return true;
    }

    // Whether the quote just passed closes the value: what follows it, after blanks, is
    // the end of the tag, the end of the text, or another attribute's "name=".
    bool endsValue() const
    {
        int32_t p = pos_;
        while (p < n_ && isBlank(text_[p]))
            ++p;
        if (p >= n_ || text_[p] == u'>')
            return true;
        if ((text_[p] == u'/' || text_[p] == u'?') && p + 1 < n_ && text_[p + 1] == u'>')
            return true;
        if (p == pos_)
            return false;  // "name=" must be set off by a blank
        const int32_t nameStart = p;
        while (p < n_ && isNameChar(text_[p]))
            ++p;
        if (p == nameStart)
            return false;
        while (p < n_ && isBlank(text_[p]))
            ++p;
        return p < n_ && text_[p] == u'=';
    }

    XmlDocument& doc_;
    const QString& text_;
    const int32_t n_;
    int32_t pos_ = 0;
    std::vector<int32_t> open_;
};

void XmlDocument::clear()
{
    text_.clear();
    nodes_.clear();
    attributes_.clear();
    children_.clear();
    topLevel_.clear();
}

bool XmlDocument::load(const QString& path)
{
    clear();
    try {
        return loadBytes(rt::readWholeFile(path));
    } catch (const jet::RuntimeError&) {
        return false;
    }
}

bool XmlDocument::loadBytes(const QByteArray& bytes)
{
    clear();
    if (bytes.size() > rt::kMaxWholeFileSize)
        return false;
    text_ = rt::AnsiCodePage::current().decode(bytes);
    if (!parse()) {
        clear();
        return false;
    }
    return true;
}

bool XmlDocument::parse()
{
    if (!Parser(*this).run())
        return false;
    linkChildren();
    return true;
}

// Children are listed per parent, in document order, in one array: counted first, then
// placed at their parent's offset.
void XmlDocument::linkChildren()
{
    const int32_t count = int32_t(nodes_.size());
    for (int32_t i = 0; i < count; ++i) {
        if (nodes_[i].parent < 0)
            topLevel_.push_back(i);
        else
            ++nodes_[nodes_[i].parent].childCount;
    }
    int32_t offset = 0;
    for (Node& node : nodes_) {
        node.firstChild = offset;
        offset += node.childCount;
    }
    children_.assign(size_t(offset), 0);
    std::vector<int32_t> filled(size_t(count), 0);
    for (int32_t i = 0; i < count; ++i) {
        const int32_t parent = nodes_[i].parent;
        if (parent >= 0)
            children_[size_t(nodes_[parent].firstChild + filled[parent]++)] = i;
    }
}

XmlElement XmlDocument::checkedElement(const std::vector<int32_t>& list, int32_t first, int32_t count,
                                       int32_t index) const
{
    if (index < 1 || index > count)
        throw rt::vbError(rt::vberr::SubscriptOutOfRange);
    return XmlElement(this, list[size_t(first + index - 1)]);
}

XmlElement XmlDocument::element(int32_t index) const
{
    return checkedElement(topLevel_, 0, elementCount(), index);
}

QString XmlElement::name() const
{
    return document_->view(document_->nodes_[node_].name).toString();
}

QString XmlElement::attribute(const QString& name) const
{
    const XmlDocument::Node& node = document_->nodes_[node_];
    for (int32_t i = 0; i < node.attributeCount; ++i) {
        const XmlDocument::Attribute& a = document_->attributes_[size_t(node.firstAttribute + i)];
        if (document_->view(a.name) == name)
            return document_->view(a.value).toString();
    }
    return QString();
}

int32_t XmlElement::childCount() const
{
    return document_->nodes_[node_].childCount;
}

XmlElement XmlElement::child(int32_t index) const
{
    const XmlDocument::Node& node = document_->nodes_[node_];
    return document_->checkedElement(document_->children_, node.firstChild, node.childCount, index);
}

}  // namespace host
