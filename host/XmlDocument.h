#pragma once
// The suite's XML document object: loads a file and hands out its elements, each with its
// name, its attributes by name and its child elements in document order.
//
// It reads the program's own table dialect, whose writer puts names and values into
// attributes as they are. So, unlike a conforming parser, it
//  - takes "&", "<" and ">" inside attribute values literally and decodes no entity
//    ("&amp;" stays "&amp;": what was written is what is read);
//  - keeps tabs, carriage returns and line feeds in attribute values as they are;
//  - ends a value only at a quote that is followed (after optional blanks) by the end of
//    the tag or by the next "name=", so a quote inside a value does not cut it short.
// The structure must still be whole: every element closed by its own end tag, at least
// one element, no attribute without a value. Declarations, processing instructions,
// comments, CDATA sections and text between elements are skipped.
//
// The file is read in the program's ANSI code page, whatever its declaration says.
// Nesting depth costs no stack; element and attribute counts are capped so a hostile file
// cannot exhaust memory (its load fails).

#include <cstdint>
#include <vector>
#include <QByteArray>
#include <QString>

namespace host {

class XmlDocument;

// A view of one element; valid while its document is neither reloaded nor destroyed.
class XmlElement {
public:
    QString name() const;
    // The attribute's value, "" when the element has no attribute of that name (the
    // first one counts when a name is repeated).
    QString attribute(const QString& name) const;
    int32_t childCount() const;
    // Child elements count from 1; any other index is run-time error 9.
    XmlElement child(int32_t index) const;

private:
    friend class XmlDocument;
    XmlElement(const XmlDocument* document, int32_t node) : document_(document), node_(node) {}

    const XmlDocument* document_;
    int32_t node_;
};

class XmlDocument {
public:
    static constexpr int32_t kMaxElements = 1 << 23;
    static constexpr int32_t kMaxAttributes = 1 << 24;

    // Reads and parses the file; false when it cannot be read, is too large or is not a
    // document (what was loaded before is gone either way).
    bool load(const QString& path);
    // The same for bytes in the ANSI code page.
    bool loadBytes(const QByteArray& bytes);

    // The top-level elements, counting from 1 (a document has one, but more are taken).
    int32_t elementCount() const { return static_cast<int32_t>(topLevel_.size()); }
    XmlElement element(int32_t index) const;

private:
    friend class XmlElement;
    struct Span {
        int32_t start = 0;
        int32_t length = 0;
    };
    struct Node {
        Span name;
        int32_t firstAttribute = 0;
        int32_t attributeCount = 0;
        int32_t parent = -1;
        int32_t firstChild = 0;  // into children_, filled once parsing is done
        int32_t childCount = 0;
    };
    struct Attribute {
        Span name;
        Span value;
    };
    class Parser;

    void clear();
    bool parse();
    void linkChildren();
    QStringView view(Span span) const { return QStringView(text_).mid(span.start, span.length); }
    XmlElement checkedElement(const std::vector<int32_t>& list, int32_t first, int32_t count, int32_t index) const;

    QString text_;
    std::vector<Node> nodes_;
    std::vector<Attribute> attributes_;
    std::vector<int32_t> children_;
    std::vector<int32_t> topLevel_;
};

}  // namespace host
