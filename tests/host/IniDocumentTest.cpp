#include <gtest/gtest.h>

#include <QStringList>

#include "host/IniDocument.h"

using host::IniDocument;

namespace {

IniDocument reparsed(const IniDocument& doc)
{
    return IniDocument::parse(doc.serialize());
}

}  // namespace

TEST(IniDocument, HostileNamesAndValuesRoundTrip)
{
    const QStringList texts = {
        QStringLiteral("C:\\Program Files\\Vorbex"), QStringLiteral("a=b=c"), QStringLiteral("line1\nline2\r\n"),
        QStringLiteral("  padded  "), QStringLiteral("%41 is not A"), QStringLiteral("[section]"),
        QStringLiteral("; not a comment"), QStringLiteral("# nor this"), QString::fromUtf8("Кириллица и 中文"),
        QStringLiteral("@"), QStringLiteral("tab\there"), QString(QChar(0)) + "nul", QStringLiteral("]"),
    };
    IniDocument doc;
    for (const QString& text : texts) {
        doc.setValue(text, text, text);
        doc.setValue(QStringLiteral("Plain"), text, text);
    }
    const IniDocument back = reparsed(doc);
    for (const QString& text : texts) {
        EXPECT_EQ(back.value(text, text), text) << text.toStdString();
        EXPECT_EQ(back.value(QStringLiteral("Plain"), text), text) << text.toStdString();
    }
    // Control characters never reach the file as they are.
    EXPECT_FALSE(doc.serialize().contains('\r'));
    EXPECT_FALSE(doc.serialize().contains('\t'));
}

TEST(IniDocument, DefaultValueIsWrittenAsAtAndDiffersFromAValueNamedAt)
{
    IniDocument doc;
    doc.setValue(QStringLiteral("Software\\Vorbex\\Settings\\Languages"), QString(), QStringLiteral("/usr/share"));
    doc.setValue(QStringLiteral("Software\\Vorbex\\Settings\\Languages"), QStringLiteral("@"), QStringLiteral("at"));
    const QByteArray bytes = doc.serialize();
    EXPECT_TRUE(bytes.contains("[Software\\Vorbex\\Settings\\Languages]\n@=/usr/share\n%40=at\n")) << bytes.constData();
    const IniDocument back = reparsed(doc);
    EXPECT_EQ(back.value(QStringLiteral("software\\vorbex\\settings\\languages"), QString()), "/usr/share");
    EXPECT_EQ(back.value(QStringLiteral("Software\\Vorbex\\Settings\\Languages"), QStringLiteral("@")), "at");
}

TEST(IniDocument, NamesCompareCaseInsensitivelyAndKeepTheFirstSpelling)
{
    IniDocument doc;
    doc.setValue(QStringLiteral("Software\\Vorbex\\Pro"), QStringLiteral("TableSepparator"), QStringLiteral("59"));
    doc.setValue(QStringLiteral("SOFTWARE\\VORBEX\\PRO"), QStringLiteral("tablesepparator"), QStringLiteral("9"));
    doc.setValue(QString::fromUtf8("Ключ"), QString::fromUtf8("Имя"), QStringLiteral("1"));
    EXPECT_EQ(doc.value(QStringLiteral("software\\vorbex\\pro"), QStringLiteral("TABLESEPPARATOR")), "9");
    EXPECT_EQ(doc.value(QString::fromUtf8("КЛЮЧ"), QString::fromUtf8("имя")), "1");
    const QByteArray bytes = doc.serialize();
    EXPECT_TRUE(bytes.contains("[Software\\Vorbex\\Pro]\nTableSepparator=9\n")) << bytes.constData();
    EXPECT_FALSE(bytes.contains("SOFTWARE"));
}

TEST(IniDocument, LinesItDidNotChangeAreWrittenBackByteForByte)
{
    const QByteArray original = "; written by hand\r\n"
                                "stray line before any section\n"
                                "[Software\\Vorbex\\Pro]\n"
                                "  TypeNum   =  2  \n"
                                "not a value line\n"
                                "# comment\n"
                                "\n"
                                "[Other]\n"
                                "x=%zz\n";
    IniDocument doc = IniDocument::parse(original);
    EXPECT_EQ(doc.value(QStringLiteral("Software\\Vorbex\\Pro"), QStringLiteral("TypeNum")), "2");
    EXPECT_EQ(doc.value(QStringLiteral("Other"), QStringLiteral("x")), "%zz");  // not an escape: kept
    EXPECT_EQ(doc.serialize(), original);
    EXPECT_FALSE(doc.setValue(QStringLiteral("Software\\Vorbex\\Pro"), QStringLiteral("TypeNum"), QStringLiteral("2")));
    EXPECT_TRUE(doc.setValue(QStringLiteral("Software\\Vorbex\\Pro"), QStringLiteral("TypeNum"), QStringLiteral("1")));
    QByteArray expected = original;
    expected.replace("  TypeNum   =  2  \n", "TypeNum=1\n");
    EXPECT_EQ(doc.serialize(), expected);
}

TEST(IniDocument, RepeatedSectionsMergeWithoutLosingValues)
{
    IniDocument doc = IniDocument::parse("[A]\nx=1\n[B]\ny=2\n[a]\nz=3\nx=ignored\n");
    EXPECT_EQ(doc.value("A", "x"), "1");  // the first one wins
    EXPECT_EQ(doc.value("A", "z"), "3");
    EXPECT_EQ(doc.value("B", "y"), "2");
    const IniDocument back = reparsed(doc);
    EXPECT_EQ(back.value("a", "z"), "3");
    EXPECT_EQ(back.value("b", "y"), "2");
}

TEST(IniDocument, MissingSectionOrValueIsNothing)
{
    const IniDocument doc = IniDocument::parse("[A]\nx=\n");
    EXPECT_EQ(doc.value("A", "x"), QString());
    EXPECT_TRUE(doc.value("A", "x").has_value());
    EXPECT_FALSE(doc.value("A", "y").has_value());
    EXPECT_FALSE(doc.value("B", "x").has_value());
}
