// The three writers, byte for byte: expected files written out by hand from the formats
// (templates, order of substitutions, entity encoding, the Windows-1251 code page with
// "?" for what it lacks, CR LF), and the ways a save fails.

#include "FormatsFixture.h"

namespace {

// Name Null in the first record, Age Null in the second, Note Null in the third; values
// with "&", "<", ">", "|", blanks and quotes, and one with a character Windows-1251 lacks.
const QString kPeople = "CREATE TABLE People (Name TEXT(50), Age INTEGER, Note TEXT(100))";
const Rows kPeopleRows = {
    {std::nullopt, "30", "a<b>|c"},
    {"Tom & Jerry", std::nullopt, "say \"hi\""},
    {QString::fromUtf8("Ёж ✓"), "7", std::nullopt},
};

}  // namespace

class TableWritersTest : public FormatsFixture {};

TEST_F(TableWritersTest, TextHasNoQuotingAndAnEmptyCellGivesUpItsSeparator)
{
    openNewTable("People", kPeople, kPeopleRows);
    const QString out = tableFile("people.csv", QByteArray(5000, 'x'));  // replaced, not overwritten in place
    EXPECT_TRUE(db().SaveTable(out, ";"));
    EXPECT_EQ(readFile(out), QByteArray("Name;Age;Note\r\n"
                                        "30;a<b>|c\r\n"
                                        "Tom & Jerry;say \"hi\"\r\n"
                                        "\xa8\xe6 ?;7\r\n"));
    // The separator goes in whole, and may be empty.
    EXPECT_TRUE(db().SaveTable(out, "<->"));
    EXPECT_EQ(readFile(out), QByteArray("Name<->Age<->Note\r\n30<->a<b>|c\r\nTom & Jerry<->say \"hi\"\r\n\xa8\xe6 ?<->7\r\n"));
    EXPECT_TRUE(db().SaveTable(out, ""));
    EXPECT_EQ(readFile(out), QByteArray("NameAgeNote\r\n30a<b>|c\r\nTom & Jerrysay \"hi\"\r\n\xa8\xe6 ?7\r\n"));
    EXPECT_EQ(openFiles(), 0);
}

TEST_F(TableWritersTest, XmlPutsEveryRowInOneAttributeWithRawValues)
{
    openNewTable("People", kPeople, kPeopleRows);
    const QString out = path("people.xml");
    EXPECT_TRUE(db().SaveTableXML(out));
    EXPECT_EQ(readFile(out), QByteArray("<?xml version=\"1.0\"?>\r\n"
                                        "<table type=\"list\" sep=\"\t\" >\r\n"
                                        "<columns sep=\"\t\" text=\"Name\tAge\tNote\" />\r\n"
                                        "<data>\r\n"
                                        "<line sep=\"\t\" text=\"\t30\ta<b>|c\"/>\r\n"
                                        "<line sep=\"\t\" text=\"Tom & Jerry\t\tsay \"hi\"\"/>\r\n"
                                        "<line sep=\"\t\" text=\"\xa8\xe6 ?\t7\t\"/>\r\n"
                                        "</data>\r\n"
                                        "</table>\r\n"));
    EXPECT_EQ(openFiles(), 0);
}

TEST_F(TableWritersTest, XmlSeparatorIsTheFirstCandidateNoValueHolds)
{
    // A tab in a value: the comma is next. Column names are not looked at.
    openNewTable("T", "CREATE TABLE T (A TEXT, [B,C] TEXT)", {{"x\ty", "1"}});
    EXPECT_TRUE(db().SaveTableXML(path("t.xml")));
    EXPECT_EQ(readFile(path("t.xml")), QByteArray("<?xml version=\"1.0\"?>\r\n<table type=\"list\" sep=\",\" >\r\n"
                                                  "<columns sep=\",\" text=\"A,B,C\" />\r\n<data>\r\n"
                                                  "<line sep=\",\" text=\"x\ty,1\"/>\r\n</data>\r\n</table>\r\n"));
}

TEST_F(TableWritersTest, XmlWithTheBarAsSeparatorWritesItAsAQuoteInColumnsAndLines)
{
    // Nineteen candidates in the values leave "|"; the quotes go in after the separator
    // in the column and row lines, so it shows as a double quote there (and so does the
    // "|" of a column name), but not in the table line.
    openNewTable("Pipes", "CREATE TABLE Pipes (V TEXT, [P|Q] TEXT)", {{"\t,;:.[]{}()`~!@#$%^", "xy"}});
    EXPECT_TRUE(db().SaveTableXML(path("pipes.xml")));
    EXPECT_EQ(readFile(path("pipes.xml")), QByteArray("<?xml version=\"1.0\"?>\r\n"
                                                      "<table type=\"list\" sep=\"|\" >\r\n"
                                                      "<columns sep=\"\"\" text=\"V\"P\"Q\" />\r\n"
                                                      "<data>\r\n"
                                                      "<line sep=\"\"\" text=\"\t,;:.[]{}()`~!@#$%^|xy\"/>\r\n"
                                                      "</data>\r\n"
                                                      "</table>\r\n"));
}

TEST_F(TableWritersTest, XmlRefusesValuesThatHoldEveryCandidate)
{
    openNewTable("T", "CREATE TABLE T (A TEXT, B TEXT)", {{"\t,;:.[]{}()", "`~!@#$%^"}, {std::nullopt, "|"}});
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTableXML(path("t.xml")); }), 9);
    EXPECT_FALSE(QFile::exists(path("t.xml"))) << "the separator is chosen before the file is opened";
}

TEST_F(TableWritersTest, HtmlEncodesEveryCellAndAnEmptyCellRepeatsTheOneBefore)
{
    openNewTable("People", kPeople, kPeopleRows);
    // "~" in the path turns into a double quote in the title.
    QDir(path("")).mkpath("TABLES~1");
    const QString out = path("TABLES~1/PEOPLE~1.HTM");
    const QByteArray title = QFile::encodeName(QString(out).replace(u'~', u'"'));
    EXPECT_FALSE(db().SaveTableHTML(out)) << "the result is never set";
    EXPECT_EQ(readFile(out),
              "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Final//EN\"><HTML><HEAD>\r\n"
              "<META HTTP-EQUIV=\"Content-Type\" Content=\"text-html; charset=Windows-1251\">\r\n"
              "<title>Saved Table " + title + "</title></HEAD><BODY BGCOLOR=#FFFFFF TEXT=#000000>\r\n"
              "<center><table width=\"100%\" border=1 cellspacing=0>\r\n"
              "<tr><td><b>Name</b></td><td><b>Age</b></td><td><b>Note</b></td></tr>\r\n\r\n"
              "<tr><td>Note</td><td>30</td><td>a&lt;b&gt;|c</td></tr>\r\n\r\n"
              "<tr><td>Tom&nbsp;&amp;&nbsp;Jerry</td><td>Tom&amp;nbsp;&amp;amp;&amp;nbsp;Jerry</td>"
              "<td>say&nbsp;&quot;hi&quot;</td></tr>\r\n\r\n"
              "<tr><td>\xa8\xe6&nbsp;?</td><td>7</td><td>7</td></tr>\r\n\r\n"
              "</table>\r\n</center>\r\n</BODY>\r\n</HTML>\r\n");
    EXPECT_EQ(openFiles(), 0);
}

TEST_F(TableWritersTest, ATextSaveOverflowsAtRecord3277AndItsFileStaysOpenUntilTheNextCloseAll)
{
    Rows rows;
    for (int i = 1; i <= 3277; ++i)
        rows.push_back({QString::number(i)});
    openNewTable("Numbers", "CREATE TABLE Numbers (N TEXT)", rows);
    const QString out = path("numbers.txt");
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTable(out, ","); }), 6);
    EXPECT_EQ(openFiles(), 1);
    // The next writer closes it, and the lines written so far come out: the 3277th too.
    EXPECT_TRUE(db().SaveTableXML(path("numbers.xml")));
    EXPECT_EQ(openFiles(), 0);
    const QByteArray partial = readFile(out);
    EXPECT_EQ(partial.count("\r\n"), 3278);
    EXPECT_TRUE(partial.endsWith("\r\n3276\r\n3277\r\n"));

    // 3276 records are the most a text save holds.
    db().DeleteRecord(3277);
    db().setCurrentTable("Numbers");
    EXPECT_TRUE(db().SaveTable(out, ","));
    EXPECT_EQ(readFile(out).count("\r\n"), 3277);
}

TEST_F(TableWritersTest, FailuresReachTheCallerAndLeaveNoFileOpen)
{
    openNewTable("People", kPeople, kPeopleRows);
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTable(path("no/such/folder/p.csv"), ";"); }), 76);
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTableXML(path("")); }), 75);
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTableHTML(path("no/p.htm")); }), 76);
    // A full disk shows when the buffered lines go out.
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTable("/dev/full", ";"); }), 61);
    EXPECT_EQ(openFiles(), 0);

    // An empty table has no first record to move to.
    openNewTable("Empty", "CREATE TABLE Empty (A TEXT)", {}, "empty.mdb");
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTable(path("e.csv"), ";"); }), jet::err::NoCurrentRecord);
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTableXML(path("e.xml")); }), jet::err::NoCurrentRecord);
    EXPECT_EQ(runTimeErrorOf([&] { db().SaveTableHTML(path("e.htm")); }), jet::err::NoCurrentRecord);
}
