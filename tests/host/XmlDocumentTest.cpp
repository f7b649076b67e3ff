// The XML document object: it must read whatever the table writer puts into a file (raw
// "&", "<", ">", tabs, quotes and line breaks inside attribute values), give elements and
// attributes as the importer asks for them, and fail cleanly on anything that is not a
// whole document.

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "../support/TestSupport.h"

#include "rt/WholeFile.h"
#include "host/XmlDocument.h"

using host::XmlDocument;
using host::XmlElement;

namespace {

// The element's name and children, nested: "table(columns,data(line,line))".
QString outline(const XmlElement& e)
{
    QString text = e.name();
    if (e.childCount() == 0)
        return text;
    QStringList children;
    for (int32_t i = 1; i <= e.childCount(); ++i)
        children << outline(e.child(i));
    return text + u'(' + children.join(u',') + u')';
}

}  // namespace

TEST(XmlDocument, ReadsWhatTheTableWriterWritesValueForValue)
{
    XmlDocument doc;
    ASSERT_TRUE(doc.loadBytes("<?xml version=\"1.0\"?>\r\n"
                              "<table type=\"list\" sep=\"\t\" >\r\n"
                              "<columns sep=\"\t\" text=\"Name\tNote\" />\r\n"
                              "<data>\r\n"
                              "<line sep=\"\t\" text=\"a<b&c\t5 > 3 & 2 < 4\"/>\r\n"
                              "<line sep=\"\t\" text=\"he said \"hi\" twice\t\"\"/>\r\n"
                              "<line sep=\"\t\" text=\"two\r\nlines\t&amp;\"/>\r\n"
                              "<line sep=\"\t\" text=\"\xcf\xf0\xe8\xe2\xe5\xf2\t\"/>\r\n"
                              "</data>\r\n"
                              "</table>\r\n"));
    ASSERT_EQ(doc.elementCount(), 1);
    const XmlElement table = doc.element(1);
    EXPECT_EQ(outline(table), "table(columns,data(line,line,line,line))");
    EXPECT_EQ(table.attribute("type"), "list");
    EXPECT_EQ(table.attribute("sep"), "\t");
    EXPECT_EQ(table.child(1).attribute("text"), "Name\tNote");
    const XmlElement data = table.child(2);
    EXPECT_EQ(data.child(1).attribute("text"), "a<b&c\t5 > 3 & 2 < 4");
    EXPECT_EQ(data.child(2).attribute("text"), "he said \"hi\" twice\t\"");
    EXPECT_EQ(data.child(3).attribute("text"), "two\r\nlines\t&amp;") << "no entity is decoded";
    EXPECT_EQ(data.child(4).attribute("text"), QString::fromUtf8("Привет\t")) << "bytes in the ANSI code page";
    EXPECT_EQ(data.child(1).attribute("missing"), "");
    EXPECT_EQ(data.attribute("text"), "");
}

TEST(XmlDocument, ASeparatorWrittenAsAQuoteStillReadsAsOne)
{
    // With "|" as the separator the writer puts a double quote in every sep attribute,
    // and in the column list in place of each "|".
    XmlDocument doc;
    ASSERT_TRUE(doc.loadBytes("<table type=\"list\" sep=\"|\" >\r\n<columns sep=\"\"\" text=\"a\"b\"c\" />\r\n"
                              "<data>\r\n<line sep=\"\"\" text=\"1|2|3\"/>\r\n</data>\r\n</table>\r\n"));
    const XmlElement table = doc.element(1);
    EXPECT_EQ(table.child(1).attribute("sep"), "\"");
    EXPECT_EQ(table.child(1).attribute("text"), "a\"b\"c");
    EXPECT_EQ(table.child(2).child(1).attribute("sep"), "\"");
    EXPECT_EQ(table.child(2).child(1).attribute("text"), "1|2|3");
}

TEST(XmlDocument, SkipsWhatIsNoElementAndKeepsDocumentOrder)
{
    XmlDocument doc;
    ASSERT_TRUE(doc.loadBytes("\xef\xbb\xbf<?xml version='1.0' encoding='utf-8'?>\n"
                              "<!DOCTYPE table [ <!ELEMENT table ANY> <!ATTLIST table x CDATA \">\"> ]>\n"
                              "<!-- <fake/> -->\n"
                              "<table   type = 'list'\n  x=\"1\" type=\"second\">\n"
                              "  text <![CDATA[ <fake/> ]]> <?pi <fake/> ?>\n"
                              "  <a><b/><c></c></a><d/>\n"
                              "</table  >\n"
                              "<second/> trailing text"));
    ASSERT_EQ(doc.elementCount(), 2);
    EXPECT_EQ(outline(doc.element(1)), "table(a(b,c),d)");
    EXPECT_EQ(outline(doc.element(2)), "second");
    EXPECT_EQ(doc.element(1).attribute("type"), "list") << "the first of a repeated name";
    EXPECT_EQ(doc.element(1).attribute("TYPE"), "") << "names are case-sensitive";
    for (int32_t index : {0, 3, -1})
        EXPECT_EQ(runTimeErrorOf([&] { doc.element(index); }), 9) << index;
    EXPECT_EQ(runTimeErrorOf([&] { doc.element(1).child(1).child(3); }), 9);
}

TEST(XmlDocument, AnythingButAWholeDocumentFailsToLoadAndLeavesNothingBehind)
{
    XmlDocument doc;
    const char* broken[] = {
        "",
        "just text",
        "<?xml version=\"1.0\"?>",
        "<table type=\"list\">",                        // never closed
        "<table><data></table></data>",                 // crossed
        "<a></b>",
        "</a>",
        "<a b></a>",                                    // attribute without a value
        "<a b=c/>",                                     // unquoted
        "<a b=\"c/>",                                   // unterminated value
        "<a b=\"c\"",                                   // truncated tag
        "<!-- open comment <a/>",
        "<![CDATA[ <a/>",
        "<?pi <a/>",
        "<!DOCTYPE a [ <a/>",
        "<>",
        "< a/>",
        "\x01\x02<\xff\xfe",
    };
    for (const char* text : broken) {
        ASSERT_TRUE(doc.loadBytes("<ok/>"));
        EXPECT_FALSE(doc.loadBytes(QByteArray(text))) << text;
        EXPECT_EQ(doc.elementCount(), 0) << text;
    }
}

TEST(XmlDocument, HostileSizesLoadWithoutExhaustingTheStackOrMemory)
{
    XmlDocument doc;
    const int depth = 200000;
    ASSERT_TRUE(doc.loadBytes(QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth)));
    XmlElement e = doc.element(1);
    for (int i = 1; i < depth; ++i)
        e = e.child(1);
    EXPECT_EQ(e.childCount(), 0);
    EXPECT_FALSE(doc.loadBytes(QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth - 1)));

    const QByteArray megabyte(1 << 20, 'x');
    ASSERT_TRUE(doc.loadBytes("<a v=\"" + megabyte + "\" w='" + megabyte + "'/>"));
    EXPECT_EQ(doc.element(1).attribute("w").size(), 1 << 20);

    EXPECT_FALSE(doc.loadBytes("<r>" + QByteArray("<a/>").repeated(XmlDocument::kMaxElements) + "</r>"));
}

TEST(XmlDocument, FilesThatCannotBeReadDoNotLoad)
{
    QTemporaryDir dir;
    XmlDocument doc;
    EXPECT_FALSE(doc.load(dir.path() + "/missing.xml"));
    EXPECT_FALSE(doc.load(dir.path()));
    writeFile(dir.path() + "/t.xml", "<t a=\"1\"/>");
    ASSERT_TRUE(doc.load(dir.path() + "/t.xml"));
    EXPECT_EQ(doc.element(1).attribute("a"), "1");

    // Larger than a file read at once may be: refused before it is read (the file is
    // sparse, so this costs no disk).
    QFile huge(dir.path() + "/huge.xml");
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(rt::kMaxWholeFileSize + 1));
    huge.close();
    EXPECT_FALSE(doc.load(huge.fileName()));
    EXPECT_EQ(runTimeErrorOf([&] { rt::readWholeFile(huge.fileName()); }), 7);
    EXPECT_EQ(runTimeErrorOf([&] { rt::readWholeFile(dir.path() + "/missing.xml"); }), 53);
    EXPECT_EQ(runTimeErrorOf([&] { rt::readWholeFile(dir.path() + "/no/such/folder.xml"); }), 76);
    EXPECT_EQ(runTimeErrorOf([&] { rt::readWholeFile(dir.path()); }), 75);
}
