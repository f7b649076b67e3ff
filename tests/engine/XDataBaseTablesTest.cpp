// Creating and dropping tables and columns through the engine, with the exact SQL it
// sends, on corpus copies of both versions and on databases made from the template.

#include "EngineFixture.h"

#include "Areas.h"
#include "app/HostSetup.h"

namespace {

// Everything the engine sent, without the record-set queries in between.
QStringList statementsOnly(const QStringList& sent)
{
    QStringList result;
    for (const QString& s : sent)
        if (!s.startsWith("SELECT"))
            result.append(s);
    return result;
}

const QStringList testTablesOfV1997 = {"Table1", "Table2", "Table3", "Table4"};

}  // namespace

// indexTestV1997: Table1 (5 columns, 4 rows), Table2 (id, data; 3 rows), Table3 (id, data; 4 rows)
class TablesTest : public EngineFixture {
protected:
    void SetUp() override
    {
        EngineFixture::SetUp();
        openCopy("indexTestV1997.mdb");
    }
};

TEST_F(TablesTest, NewTableHasOneColumnAndOneEmptyRowAndIsNotMadeCurrent)
{
    const QStringList columnsBefore = columns();
    EXPECT_TRUE(db().CreateTable("Orders"));
    EXPECT_EQ(sql, QStringList({"CREATE TABLE Orders (__custom INTEGER);", "SELECT * FROM Orders"}));
    EXPECT_EQ(db().queryText(), "SELECT * FROM Orders");
    EXPECT_EQ(db().RecordCount(), 1);
    EXPECT_EQ(db().CaptionOfField(1), "__custom");
    db().MoveFirst();
    EXPECT_EQ(runTimeErrorOf([&] { db().GetCurrentRecord("__custom"); }), jet::err::InvalidUseOfNull);
    // The current table, the table list and the tree stay as they were; "__custom" is
    // added to the column list as it stands.
    EXPECT_EQ(db().CurrentTable(), "Table1");
    EXPECT_EQ(tables(), QStringList({"Table1", "Table2", "Table3"}));
    EXPECT_EQ(columns(), columnsBefore + QStringList{"__custom"});
    EXPECT_EQ(db().DataMembers(), QStringList({"!__LIST", "Orders"}));
    EXPECT_EQ(db().createdTableCount(), 1);
    EXPECT_EQ(tablesInFile(), QStringList({"Orders", "Table1", "Table2", "Table3"}));
}

TEST_F(TablesTest, LowerCaseTableBecomesTable0AndOtherBadNamesFail)
{
    EXPECT_TRUE(db().CreateTable("table"));
    EXPECT_FALSE(db().CreateTable("Table"));
    EXPECT_FALSE(db().CreateTable("two words"));
    EXPECT_FALSE(db().CreateTable("Table2"));
    EXPECT_EQ(statementsOnly(sql), QStringList({"CREATE TABLE table0 (__custom INTEGER);",
                                                "CREATE TABLE Table (__custom INTEGER);",
                                                "CREATE TABLE two words (__custom INTEGER);",
                                                "CREATE TABLE Table2 (__custom INTEGER);"}));
    // Failures count as well, and say nothing.
    EXPECT_EQ(db().createdTableCount(), 4);
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(tablesInFile(), QStringList({"table0", "Table1", "Table2", "Table3"}));
}

TEST_F(TablesTest, ColumnsAreAddedRenamedAndDroppedOnTheCurrentTable)
{
    ASSERT_TRUE(db().CreateTable("Prices"));
    db().setCurrentTable("Prices");
    sql.clear();
    EXPECT_TRUE(db().AddField("Name", "VARCHAR (255)"));
    EXPECT_TRUE(db().columnsChanged());
    EXPECT_TRUE(db().AddField("Cost", "DOUBLE"));
    EXPECT_TRUE(db().AddField("Pieces", "INTEGER"));
    EXPECT_EQ(columns(), QStringList({"__custom", "Name", "Cost", "Pieces"}));
    // The file's code page (1252) has no Cyrillic: refused like any value that cannot be stored.
    EXPECT_FALSE(db().AddValue("Name", 1, QString::fromUtf8("Чай")));
    EXPECT_EQ(fake.messageBoxes().size(), 1u);
    EXPECT_TRUE(db().AddValue("Name", 1, QString::fromUtf8("Thé")));
    EXPECT_TRUE(db().AddValue("Cost", 1, "2.5"));
    EXPECT_TRUE(db().AddNewLine());
    EXPECT_TRUE(db().AddValue("Name", 2, "Milk"));
    EXPECT_TRUE(db().ReNameField("Cost", "Price", "ignored"));
    EXPECT_TRUE(db().DeleteField("Pieces"));
    EXPECT_EQ(sql, QStringList({"ALTER TABLE Prices ADD Name VARCHAR (255)", "SELECT * FROM Prices",
                                "ALTER TABLE Prices ADD Cost DOUBLE", "SELECT * FROM Prices",
                                "ALTER TABLE Prices ADD Pieces INTEGER", "SELECT * FROM Prices",
                                "ALTER TABLE Prices RENAME Cost TO Price", "SELECT * FROM Prices",
                                "ALTER TABLE Prices DROP Pieces", "SELECT * FROM Prices"}));
    // Dropping leaves the column list to the caller.
    EXPECT_EQ(columns(), QStringList({"__custom", "Name", "Cost", "Pieces"}));

    // Re-opened on the first record, with the columns as the file now has them.
    EXPECT_EQ(db().CaptionOfField(3), "Price");
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(1, 1, 3, 2)}), ";"),
              QString::fromUtf8(";2\r\nThé;Milk\r\n2.5;\r\n"));
    EXPECT_EQ(runTimeErrorOf([&] { db().CaptionOfField(4); }), jet::err::ItemNotFound);
}

TEST_F(TablesTest, ColumnStatementsThatFailReturnFalseSilently)
{
    EXPECT_FALSE(db().AddField("my col", "INTEGER"));
    EXPECT_FALSE(db().AddField("data", "INTEGER"));
    EXPECT_FALSE(db().DeleteField("nosuch"));
    EXPECT_FALSE(db().ReNameField("nosuch", "other", ""));
    EXPECT_EQ(statementsOnly(sql), QStringList({"ALTER TABLE Table1 ADD my col INTEGER",
                                                "ALTER TABLE Table1 ADD data INTEGER",
                                                "ALTER TABLE Table1 DROP nosuch",
                                                "ALTER TABLE Table1 RENAME nosuch TO other"}));
    EXPECT_FALSE(db().columnsChanged());
    EXPECT_EQ(columns().size(), 5);
    EXPECT_TRUE(fake.boxes().empty());
    // The record set was closed before the statement and stays closed.
    EXPECT_EQ(runTimeErrorOf([&] { db().RecordCount(); }), jet::err::NotAllowedNow);
}

// testV1997: Table1 (2 rows), Table2, Table3, Table4 (empty), no relationships
class DeleteTableTest : public EngineFixture {
protected:
    void SetUp() override
    {
        EngineFixture::SetUp();
        openCopy("testV1997.mdb");
    }
};

TEST_F(DeleteTableTest, DroppingTheFirstTableMakesTheSecondCurrentAnyOtherTheFirst)
{
    EXPECT_FALSE(db().DeleteTable("Table1"));
    EXPECT_EQ(sql, QStringList({"SELECT * FROM Table2", "DROP TABLE Table1;"}));
    EXPECT_EQ(db().CurrentTable(), "Table2");
    EXPECT_EQ(tables(), QStringList({"Table2", "Table3", "Table4"}));
    sql.clear();
    EXPECT_FALSE(db().DeleteTable("Table4"));
    EXPECT_EQ(sql, QStringList({"SELECT * FROM Table2", "DROP TABLE Table4;"}));
    EXPECT_EQ(db().CurrentTable(), "Table2");
    EXPECT_EQ(tables(), QStringList({"Table2", "Table3"}));
    EXPECT_EQ(columns().size(), 89);
    EXPECT_EQ(tablesInFile(), QStringList({"Table2", "Table3"}));
}

TEST_F(DeleteTableTest, DroppingTheOnlyTableLeavesNoCurrentTable)
{
    db().DeleteTable("Table1");
    db().DeleteTable("Table2");
    db().DeleteTable("Table3");
    sql.clear();
    EXPECT_FALSE(db().DeleteTable("Table4"));
    EXPECT_EQ(sql, QStringList({"SELECT * FROM ", "DROP TABLE Table4;"}));
    EXPECT_EQ(db().CurrentTable(), "");
    EXPECT_TRUE(tables().isEmpty());
    EXPECT_TRUE(tablesInFile().isEmpty());
}

TEST_F(DeleteTableTest, NameTheListLacksRemovesItsLastEntry)
{
    // A table made in this session is not in the list: it is dropped, and the list loses
    // its last entry instead.
    ASSERT_TRUE(db().CreateTable("Extra"));
    EXPECT_FALSE(db().DeleteTable("Extra"));
    EXPECT_EQ(tables(), QStringList({"Table1", "Table2", "Table3"}));
    EXPECT_EQ(db().CurrentTable(), "Table1");
    // A drop that fails stops before the list is touched.
    EXPECT_FALSE(db().DeleteTable("Ghost"));
    EXPECT_EQ(tables(), QStringList({"Table1", "Table2", "Table3"}));
    EXPECT_EQ(tablesInFile(), testTablesOfV1997);
}

TEST_F(TablesTest, TableInARelationshipIsNotDroppedButAnotherHasBecomeCurrent)
{
    EXPECT_FALSE(db().DeleteTable("Table1"));
    EXPECT_EQ(sql, QStringList({"SELECT * FROM Table2", "DROP TABLE Table1;"}));
    EXPECT_EQ(db().CurrentTable(), "Table2");
    EXPECT_EQ(tables(), QStringList({"Table1", "Table2", "Table3"}));
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(tablesInFile(), QStringList({"Table1", "Table2", "Table3"}));
}

TEST_F(TablesTest, Jet4FileTakesTheSameStatements)
{
    openCopy("testV2000.mdb");
    ASSERT_TRUE(db().CreateTable("Notes"));
    db().setCurrentTable("Notes");
    EXPECT_TRUE(db().AddField("Text", "VARCHAR (255)"));
    EXPECT_TRUE(db().AddValue("Text", 1, QString::fromUtf8("漢字")));
    EXPECT_FALSE(db().DeleteTable("Table2"));
    EXPECT_EQ(db().CurrentTable(), "Table1");
    EXPECT_EQ(tablesInFile(), QStringList({"Notes", "Table1", "Table3", "Table4"}));
    db().setCurrentTable("Notes");
    db().MoveFirst();
    EXPECT_EQ(db().GetCurrentRecord("Text"), QString::fromUtf8("漢字"));
}

class TemplateTest : public EngineFixture {};

TEST_F(TemplateTest, NewDatabaseFromTheTemplateTakesTablesRowsAndCyrillicText)
{
    // The template as the setup step makes it.
    app::makeTemplateDatabase(path("Database/empty97.mdb"));
    const QString file = path("Новая.mdb");
    db().CreateDataBase("Новая", file);
    ASSERT_TRUE(db().OpenDataBase(file));
    EXPECT_TRUE(tables().isEmpty());

    ASSERT_TRUE(db().CreateTable("Items"));
    db().setCurrentTable("Items");
    ASSERT_TRUE(db().AddField("Name", "VARCHAR (255)"));
    ASSERT_TRUE(db().AddField("Weight", "DOUBLE"));
    ASSERT_TRUE(db().AddValue("Name", 1, QString::fromUtf8("Гиря")));
    ASSERT_TRUE(db().AddValue("Weight", 1, "16"));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(db().AddNewLine());
    db().MoveFirst();
    db().setItem("Name", 2, QString::fromUtf8("Ядро"));
    ASSERT_TRUE(db().AddValue("Weight", 4, "7.26"));
    ASSERT_TRUE(db().DeleteRecord(2));
    EXPECT_EQ(fake.messageBoxes().size(), 1u);  // the first value of the first row, Null: ""
    EXPECT_EQ(fake.messageBoxes()[0].prompt, "");

    ASSERT_TRUE(db().OpenDataBase(file));
    EXPECT_EQ(tables(), QStringList{"Items"});
    EXPECT_EQ(columns(), QStringList({"__custom", "Name", "Weight"}));
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(1, 1, 3, 3)}), ";"),
              QString::fromUtf8(";3;4\r\nГиря;Ядро;\r\n16;;7.26\r\n"));
    ASSERT_TRUE(db().CreateTable("table"));
    EXPECT_FALSE(db().DeleteTable("Items"));
    ASSERT_TRUE(db().OpenDataBase(file));
    EXPECT_EQ(tables(), QStringList{"table0"});
}
