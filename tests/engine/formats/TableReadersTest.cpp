// The three readers through OpenTable: files written by hand, the tables they make (all
// columns TEXT, names from the file, the name-clash question), their deliberate oddities,
// and what bad files end in. Every database must still check clean after each test.

#include "FormatsFixture.h"

#include "rt/AnsiCodePage.h"
#include "lang/LangApp.h"

namespace {

// Lines ended by CR LF, in the program's code page.
QByteArray lines(const QStringList& text)
{
    return rt::AnsiCodePage::current().encode(text.join("\r\n") + "\r\n");
}

// Table names as a set: the catalogue lists them in its own order.
QStringList sortedNames(QStringList names)
{
    names.sort(Qt::CaseInsensitive);
    return names;
}

// The description of the run-time error the code raises ("" when none).
std::string errorText(const std::function<void()>& code)
{
    try {
        code();
    } catch (const jet::RuntimeError& e) {
        return e.description();
    }
    return "";
}

const QStringList kClashBox = {"Table name|0|The database already has a table with this name. Enter another name:"};

}  // namespace

class TableReadersTest : public FormatsFixture {
protected:
    void SetUp() override
    {
        FormatsFixture::SetUp();
        // Items 17 and 18 of the main window's common captions ask for another name.
        for (int i = 1; i <= 18; ++i)
            app::gLang().Table().Common().Add(i == 17 ? "Table name"
                                              : i == 18 ? "The database already has a table with this name. Enter another name:"
                                                        : QString("caption %1").arg(i));
    }
};

TEST_F(TableReadersTest, TextCutsAtEverySeparatorKeepsEmptyFieldsAndMakesTextColumns)
{
    openCopy("testV2000.mdb");  // Jet 4: Cyrillic text fits
    db().setDefaultSeparator("<->");
    const QString prices = tableFile("Prices.csv", lines({"Name<->Price<->Note", "Tea<->3<->", "<-><->x", "Coffee", "",
                                                          QString::fromUtf8("Чай<->5<->с лимоном")}));
    ASSERT_TRUE(db().OpenTable(prices));
    EXPECT_EQ(db().AddedTable(), "Prices");
    EXPECT_EQ(db().CurrentTable(), "Prices");
    EXPECT_EQ(tables(), kTestTables + QStringList{"Prices"});
    EXPECT_EQ(columns(), QStringList({"Name", "Price", "Note"}));
    EXPECT_EQ(sql, QStringList({"CREATE TABLE Prices (Name TEXT,Price TEXT,Note TEXT);", "SELECT * FROM Prices"}));
    // An empty field is an empty text; fields the line lacks stay Null.
    EXPECT_EQ(content("Prices"), QStringList({"Tea|3|", "||x", "Coffee|<Null>|<Null>",
                                              "<Null>|<Null>|<Null>", QString::fromUtf8("Чай|5|с лимоном")}));
    EXPECT_TRUE(fake.boxes().empty());
}

TEST_F(TableReadersTest, OpenTableChoosesTheReaderByExtensionAlone)
{
    openCopy("indexTestV1997.mdb");
    db().setDefaultSeparator("X");
    const QByteArray text = lines({"aXb", "1X2"});
    // ".txt" in any case is comma-separated whatever the separator setting; other
    // extensions, or none, take the setting.
    ASSERT_TRUE(db().OpenTable(tableFile("upper.TXT", text)));
    EXPECT_EQ(columns(), QStringList({"aXb"}));
    ASSERT_TRUE(db().OpenTable(tableFile("lower.txt", text)));
    EXPECT_EQ(columns(), QStringList({"aXb"}));
    ASSERT_TRUE(db().OpenTable(tableFile("data.csv", text)));
    EXPECT_EQ(columns(), QStringList({"a", "b"}));
    ASSERT_TRUE(db().OpenTable(tableFile("plain", text)));
    EXPECT_EQ(columns(), QStringList({"a", "b"}));
    // Every HTML extension in any case, and ".xml".
    const QByteArray page = "<table><tr><td>h</td></tr></table>";
    for (const char* name : {"page.ShTmL", "page2.htm", "page3.SHTM", "page4.Html"}) {
        ASSERT_TRUE(db().OpenTable(tableFile(name, page))) << name;
        EXPECT_EQ(columns(), QStringList({"h"}));
    }
    ASSERT_TRUE(db().OpenTable(tableFile("sheet.xml", "<t type=\"list\"><columns sep=\",\" text=\"x,y\"/><data/></t>")));
    EXPECT_EQ(columns(), QStringList({"x", "y", "y"})) << "all names, then each column added once more";
    // Only the text reader renames the reserved word "table".
    ASSERT_TRUE(db().OpenTable(tableFile("table.txt", text)));
    EXPECT_EQ(db().AddedTable(), "table0");
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_FALSE(db().OpenTable(tableFile("table.xml", "<t type=\"list\"><columns sep=\",\" text=\"x\"/><data/></t>")));
    EXPECT_EQ(shownBoxes(fake), QStringList({"Error!|16|Error of opening table XML!"}));
    EXPECT_EQ(sortedNames(tablesInFile()), sortedNames(kIndexTables + QStringList({"upper", "lower", "data", "plain", "page",
                                                                                   "page2", "page3", "page4", "sheet",
                                                                                   "table0"})));
    EXPECT_EQ(engine::XDataBase::ImportedTableName("/a.b/dir/table.csv"), "table0");
    EXPECT_EQ(engine::XDataBase::ImportedTableName("/a.b/dir/table.html"), "table");
    EXPECT_EQ(engine::XDataBase::ImportedTableName("C:\\data\\prices.v2.xml"), "prices.v2");
    EXPECT_EQ(engine::XDataBase::ImportedTableName("/a.b/noextension"), "noextension");
}

TEST_F(TableReadersTest, TextRefusesALineWithMoreFieldsThanColumnsAndKeepsTheRowsBefore)
{
    openCopy("indexTestV1997.mdb");
    const QString file = tableFile("wide.txt", lines({"a,b", "1,2", "3", "4,5,6", "7,8"}));
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(file); }), 9);
    EXPECT_EQ(errorText([&] { db().OpenTable(tableFile("wide2.txt", lines({"a,b", "1,2,3"}))); }),
              "Subscript out of range: line 2 of '" + path("wide2.txt").toStdString() +
                  "' has 3 fields, but the table wide2 has 2 columns");
    EXPECT_EQ(content("wide"), QStringList({"1|2", "3|<Null>"}));
    EXPECT_EQ(content("wide2"), QStringList());
    EXPECT_EQ(db().AddedTable(), "");
    EXPECT_EQ(sortedNames(tablesInFile()), sortedNames(kIndexTables + QStringList({"wide", "wide2"})));
}

TEST_F(TableReadersTest, RowsBeforeAFailureAreStoredAlsoBeyondTheFirstThousand)
{
    openCopy("indexTestV1997.mdb");
    QStringList text = {"n"}, xml = {"<t type=\"list\"><columns sep=\",\" text=\"n\"/><data>"};
    QStringList numbers;
    for (int i = 1; i <= 2500; ++i) {
        text << QString::number(i);
        xml << QString("<line sep=\",\" text=\"%1\"/>").arg(i);
        numbers << QString::number(i);
    }
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("many.txt", lines(text + QStringList{"x,y"}))); }), 9);
    EXPECT_FALSE(db().OpenTable(tableFile("stray.xml", lines(xml + QStringList{"<row/></data></t>"}))));
    EXPECT_FALSE(db().OpenTable(tableFile("wide.xml", lines(xml + QStringList{"<line sep=\",\" text=\"x,y\"/></data></t>"}))));
    EXPECT_EQ(shownBoxes(fake), QStringList({"Error!|16|Error of opening table XML!"}));
    for (const char* table : {"many", "stray", "wide"})
        EXPECT_EQ(content(table), numbers) << table;
}

TEST_F(TableReadersTest, ATakenNameIsAskedForAgainUnlessItIsTheLastTable)
{
    openCopy("indexTestV1997.mdb");
    // "Table1" is taken: the box offers it, and the answer is checked again.
    fake.answerInputBox("Table2").answerInputBox("Fresh");
    ASSERT_TRUE(db().OpenTable(tableFile("Table1.csv", lines({"x", "1"}))));
    EXPECT_EQ(db().AddedTable(), "Fresh");
    EXPECT_EQ(shownBoxes(fake), kClashBox + kClashBox);
    EXPECT_EQ(fake.boxes()[0].defaultText, "Table1");
    EXPECT_EQ(fake.boxes()[1].defaultText, "Table2");
    // A cancelled box answers "", taken as the name like any other: no table has it.
    fake.clear();
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("Table2.csv", lines({"x", "1"}))); }), jet::err::SyntaxError);
    EXPECT_EQ(shownBoxes(fake), kClashBox);

    // The last name of the list is not seen: creating the table fails, which the text
    // and HTML readers raise and the XML reader reports, and the table of that name is
    // left alone.
    fake.clear();
    ASSERT_TRUE(db().OpenDataBase(file));
    ASSERT_EQ(tables().last(), "Table3");
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("Table3.csv", lines({"x", "1"}))); }), jet::err::ObjectExists);
    ASSERT_TRUE(db().OpenDataBase(file));
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("Table3.htm", "<table><tr><td>x</td></tr></table>")); }),
              jet::err::ObjectExists);
    ASSERT_TRUE(db().OpenDataBase(file));
    EXPECT_FALSE(db().OpenTable(tableFile("Table3.xml", "<t type=\"list\"><columns sep=\",\" text=\"x\"/><data/></t>")));
    EXPECT_EQ(shownBoxes(fake), QStringList({"Error!|16|Error of opening table XML!"}));
    EXPECT_EQ(content("Table3"), QStringList({"10|bar10", "11|bar11", "12|bar12", "13|bar13"}))
        << "the table of that name is untouched";
    EXPECT_EQ(sortedNames(tablesInFile()), sortedNames(kIndexTables + QStringList{"Fresh"}));
}

TEST_F(TableReadersTest, XmlRowsEachSplitAtTheirOwnSeparatorIntoTextColumns)
{
    openCopy("testV2000.mdb");  // Jet 4: Cyrillic text fits
    QDir(path("")).mkpath("some folder");
    const QString file = tableFile("some folder/prices.xml", lines({
        "<?xml version=\"1.0\"?>",
        "<table type=\"list\" sep=\"\t\" >",
        "<columns sep=\"\t\" text=\"Name\tPrice\tNote\" />",
        "<data>",
        "<line sep=\"\t\" text=\"Tea\t3\ta<b & c>\"/>",
        "<line sep=\";\" text=\"Milk;;say \"hi\"\"/>",
        "<line sep=\"\t\" text=\"Juice\"/>",
        "<line text=\"no separator, one piece\"/>",
        "<line sep=\"\t\" text=\"\"/>",
        QString::fromUtf8("<line sep=\"\t\" text=\"Чай\t&amp;\"/>"),
        "</data>",
        "</table>"}));
    ASSERT_TRUE(db().OpenTable(file));
    EXPECT_EQ(db().AddedTable(), "prices");
    EXPECT_EQ(db().CurrentTable(), "prices");
    EXPECT_EQ(tables(), kTestTables + QStringList{"prices"});
    EXPECT_EQ(sql, QStringList({"CREATE TABLE prices (Name TEXT)", "SELECT * FROM prices", "ALTER TABLE prices ADD Price TEXT",
                                "SELECT * FROM prices", "ALTER TABLE prices ADD Note TEXT", "SELECT * FROM prices"}));
    EXPECT_EQ(content("prices"),
              QStringList({"Tea|3|a<b & c>", "Milk||say \"hi\"", "Juice|<Null>|<Null>",
                           "no separator, one piece|<Null>|<Null>", "<Null>|<Null>|<Null>",
                           QString::fromUtf8("Чай|&amp;|<Null>")}));
    EXPECT_TRUE(fake.boxes().empty());
}

TEST_F(TableReadersTest, XmlThatIsNotATableOfTheDialectIsRefusedSilently)
{
    openCopy("indexTestV1997.mdb");
    const std::vector<std::pair<const char*, QByteArray>> refused = {
        {"broken", "<table type=\"list\"><columns sep=\",\" text=\"a\"/>"},
        {"empty", ""},
        {"binary", QByteArray("\x00\x01\xff<\xfe", 5)},
        {"html", "<html><body><table><tr><td>a</td></tr></table></body></html>"},
        {"typeless", "<table><columns sep=\",\" text=\"a\"/><data/></table>"},
        {"wrongcase", "<table type=\"List\"><columns sep=\",\" text=\"a\"/><data/></table>"},
        {"nocolumns", "<table type=\"list\"><Columns sep=\",\" text=\"a\"/><data/></table>"},
    };
    for (const auto& [name, bytes] : refused)
        EXPECT_FALSE(db().OpenTable(tableFile(QString(name) + ".xml", bytes))) << name;
    EXPECT_FALSE(db().OpenTable(path("missing.xml")));
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(tables(), kIndexTables);

    // Once the table exists it stays: without "data", or up to a child that is no "line".
    EXPECT_FALSE(db().OpenTable(tableFile("nodata.xml", "<table type=\"list\"><columns sep=\",\" text=\"a,b\"/></table>")));
    EXPECT_FALSE(db().OpenTable(tableFile("stray.xml", "<t type=\"list\"><columns sep=\",\" text=\"a,b\"/><data>"
                                                         "<line sep=\",\" text=\"1,2\"/><row text=\"3,4\"/>"
                                                         "<line sep=\",\" text=\"5,6\"/></data></t>")));
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(db().AddedTable(), "");
    EXPECT_EQ(content("nodata"), QStringList());
    EXPECT_EQ(content("stray"), QStringList({"1|2"}));
    EXPECT_EQ(sortedNames(tablesInFile()), sortedNames(kIndexTables + QStringList({"nodata", "stray"})));
}

TEST_F(TableReadersTest, XmlErrorsShowOneMessageAndKeepTheRowsStoredSoFar)
{
    openCopy("indexTestV1997.mdb");
    const QStringList errorBox = {"Error!|16|Error of opening table XML!"};
    // A row with more values than columns.
    EXPECT_FALSE(db().OpenTable(tableFile("wide.xml", "<t type=\"list\"><columns sep=\",\" text=\"a,b\"/><data>"
                                                       "<line sep=\",\" text=\"1,2\"/><line sep=\",\" text=\"3,4,5\"/>"
                                                       "<line sep=\",\" text=\"6,7\"/></data></t>")));
    EXPECT_EQ(shownBoxes(fake), errorBox);
    // A column name the database refuses: creation fails without a word, and the first
    // row shows it.
    fake.clear();
    EXPECT_FALSE(db().OpenTable(tableFile("blank.xml", "<t type=\"list\"><columns sep=\",\" text=\"my col\"/><data>"
                                                        "<line sep=\",\" text=\"1\"/></data></t>")));
    EXPECT_EQ(shownBoxes(fake), errorBox);
    // A value longer than a text column holds.
    fake.clear();
    EXPECT_FALSE(db().OpenTable(tableFile("long.xml", "<t type=\"list\"><columns sep=\",\" text=\"a\"/><data>"
                                                       "<line sep=\",\" text=\"ok\"/><line sep=\",\" text=\"" +
                                                           QByteArray(256, 'x') + "\"/></data></t>")));
    EXPECT_EQ(shownBoxes(fake), errorBox);
    // A second column Jet refuses.
    fake.clear();
    EXPECT_FALSE(db().OpenTable(tableFile("second.xml", "<t type=\"list\"><columns sep=\",\" text=\"a,my col\"/><data>"
                                                         "<line sep=\",\" text=\"1,2\"/></data></t>")));
    EXPECT_EQ(shownBoxes(fake), errorBox);
    // No column name at all.
    fake.clear();
    EXPECT_FALSE(db().OpenTable(tableFile("nameless.xml", "<t type=\"list\"><columns sep=\",\" text=\"\"/><data/></t>")));
    EXPECT_EQ(shownBoxes(fake), errorBox);

    EXPECT_EQ(db().AddedTable(), "");
    EXPECT_EQ(content("wide"), QStringList({"1|2"}));
    EXPECT_EQ(content("long"), QStringList({"ok"}));
    EXPECT_EQ(content("second"), QStringList());
    EXPECT_EQ(sortedNames(tablesInFile()), sortedNames(kIndexTables + QStringList({"long", "second", "wide"})));
}

TEST_F(TableReadersTest, HtmlAlwaysReadsTheFirstTableWhateverNumberIsChosen)
{
    openCopy("indexTestV1997.mdb");
    const QByteArray page = "<html><body>\r\n"
                            "<TABLE border=1><TR><TD>First</TD></TR><TR><TD>1</TD></TR></TABLE>\r\n"
                            "<table><tr><td>Second</td></tr></table>\r\n"
                            "<Table><tr><td>Third</td></tr></Table>\r\n"
                            "</body></html>\r\n";
    fake.answerInputBox("3");
    ASSERT_TRUE(db().OpenTable(tableFile("three.html", page)));
    EXPECT_EQ(shownBoxes(fake),
              QStringList({QString::fromUtf8("Введите номер таблицы|0|В данном HTML-файле найдено несколько( 3 ) таблиц. "
                                             "Какую из них хотите загрузить: Введите номер таблицы (от 1 до 3 )")}));
    EXPECT_EQ(fake.boxes()[0].defaultText, "1");
    EXPECT_EQ(columns(), QStringList({"First"}));
    EXPECT_EQ(content("three"), QStringList({"1", "<Null>"}));

    // Numbers beyond the count are capped; below 1 (a cancelled box too) the counter
    // overflows, before any table is made.
    fake.answerInputBox("99").answerInputBox("0").answerInputBox("-2");
    ASSERT_TRUE(db().OpenTable(tableFile("capped.htm", page)));
    EXPECT_EQ(columns(), QStringList({"First"}));
    for (const char* name : {"zero.htm", "negative.htm", "cancelled.htm"})
        EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile(name, page)); }), 6) << name;
    EXPECT_EQ(sortedNames(tablesInFile()), sortedNames(kIndexTables + QStringList({"capped", "three"})));
}

TEST_F(TableReadersTest, HtmlReadsTdCellsOnlyCleansThemAndAddsOneEmptyRecordAtTheEnd)
{
    openCopy("testV2000.mdb");  // Jet 4: Cyrillic text fits
    const QString file = tableFile("page.htm", rt::AnsiCodePage::current().encode(QString::fromUtf8(
        "<p>before</p><table width=\"100%\">\r\n"
        "<tr><th>skipped</th><td><b>Name</b></td><TD class=\"x\">Price</TD></tr>\r\n"
        "<tr><td>  <i>Caf&eacute;</i>   au&nbsp;lait </td><td>3&#44;50 &quot;ok&quot;</td></tr>\r\n"
        "<tr>\r\n<td>\r\nЧай\r\n</td><td>&amp;lt;5&gt;</td>\r\n</tr>\r\n"
        "</table>")));
    ASSERT_TRUE(db().OpenTable(file));
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(db().AddedTable(), "page");
    EXPECT_EQ(sql, QStringList({"CREATE TABLE page (Name TEXT)", "SELECT * FROM page", "ALTER TABLE page ADD Price TEXT",
                                "SELECT * FROM page"}));
    EXPECT_EQ(content("page"), QStringList({QString("Caf") + QChar(0x439) + " au" + QChar(0xA0) + "lait|3,50 ok",
                                            QString::fromUtf8("Чай|<5>"), "<Null>|<Null>"}));
}

TEST_F(TableReadersTest, HtmlWithoutTableOrColumnsMakesNoTableAndWritesNowhereElse)
{
    openCopy("indexTestV1997.mdb");
    const QStringList before = content("Table2");
    EXPECT_FALSE(db().OpenTable(tableFile("plain.htm", "<html><body><p>no table here</p></body></html>")));
    EXPECT_FALSE(db().OpenTable(tableFile("empty.htm", "")));
    EXPECT_TRUE(fake.boxes().empty());
    // A first row of th cells only, or no row at all, names no column: refused before
    // anything is written, and the current table keeps its rows.
    db().setCurrentTable("Table2");
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("th.htm", "<table><tr><th>a</th></tr><tr><td>1</td></tr></table>")); }),
              5);
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("rowless.htm", "<table></table>")); }), 5);
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(path("missing.htm")); }), 53);
    EXPECT_EQ(content("Table2"), before);
    EXPECT_EQ(tablesInFile(), kIndexTables);
}

TEST_F(TableReadersTest, HtmlErrorsReachTheCallerAndTheTableKeepsItsRows)
{
    openCopy("indexTestV1997.mdb");
    // A single tag in a cell, and a row with more cells than columns.
    EXPECT_EQ(runTimeErrorOf([&] {
                  db().OpenTable(tableFile("single.htm", "<table><tr><td>a</td></tr><tr><td>1</td></tr>"
                                                         "<tr><td>2<br></td></tr><tr><td>3</td></tr></table>"));
              }),
              5);
    EXPECT_EQ(runTimeErrorOf([&] {
                  db().OpenTable(tableFile("wide.htm", "<table><tr><td>a</td></tr><tr><td>1</td></tr>"
                                                       "<tr><td>2</td><td>x</td></tr></table>"));
              }),
              jet::err::ItemNotFound);
    // A column Jet refuses (a blank in the name, one too many) stops the import there.
    EXPECT_NE(errorText([&] {
                  db().OpenTable(tableFile("blank.htm", "<table><tr><td>a</td><td>my col</td><td>c</td></tr>"
                                                        "<tr><td>1</td><td>2</td></tr></table>"));
              }).find("Syntax error in field definition. (column 'my col' of the table 'blank')"),
              std::string::npos);
    QByteArray header;
    for (int i = 0; i < 300; ++i)
        header += "<td>c" + QByteArray::number(i) + "</td>";
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("many.htm", "<table><tr>" + header + "</tr></table>")); }),
              jet::err::Unspecified);
    // Cut short: the last row and cell end where the text ends.
    ASSERT_TRUE(db().OpenTable(tableFile("cut.htm", "<table><tr><td>a</td><td>b</td></tr><tr><td>1</td><td>2")));
    EXPECT_EQ(content("cut"), QStringList({"1|2", "<Null>|<Null>"}));
    EXPECT_EQ(content("single"), QStringList({"1"}));
    EXPECT_EQ(content("wide"), QStringList({"1"}));
    EXPECT_EQ(content("blank"), QStringList());
    EXPECT_EQ(sortedNames(tablesInFile()), sortedNames(kIndexTables + QStringList({"blank", "cut", "many", "single", "wide"})));
}

TEST_F(TableReadersTest, EmptyBinaryAndHostileTextFilesEndInAClearError)
{
    openCopy("indexTestV1997.mdb");
    db().setDefaultSeparator(";");
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("empty.csv", "")); }), 62);
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(path("missing.csv")); }), 53);
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("binary.csv", QByteArray("\x00\x01\x02\xff\r\n\x00", 7))); }),
              jet::err::SyntaxError);
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("long.csv", QByteArray(2 << 20, 'x'))); }), 7);
    QStringList many;
    for (int i = 0; i < 3000; ++i)
        many << QString("c%1").arg(i);
    EXPECT_EQ(runTimeErrorOf([&] { db().OpenTable(tableFile("many.csv", lines({many.join(';')}))); }),
              jet::err::Unspecified);
    EXPECT_EQ(db().AddedTable(), "");
    EXPECT_EQ(tablesInFile(), kIndexTables);
}
