// Creating and dropping tables and columns through the engine, with the exact SQL it
// sends, on corpus copies.

#include "EngineFixture.h"

namespace {

// What the engine sent, without the record-set queries in between.
QStringList statementsOnly(const QStringList& sent)
{
    QStringList statements;
    for (const QString& s : sent)
        if (!s.startsWith("SELECT"))
            statements << s;
    return statements;
}

}  // namespace

class TablesTest : public EngineFixture {};

TEST_F(TablesTest, ANewTableHasOneColumnAndOneEmptyRowAndIsNotMadeCurrent)
{
    openCopy("indexTestV1997.mdb");
    const QStringList columnsBefore = columns();
    EXPECT_TRUE(db().CreateTable("Orders"));
    EXPECT_EQ(sql, QStringList({"CREATE TABLE Orders (__custom INTEGER);", "SELECT * FROM Orders"}));
    EXPECT_EQ(db().queryText(), "SELECT * FROM Orders");
    EXPECT_EQ(column("__custom"), QStringList{"<Null>"});
    EXPECT_EQ(db().CaptionOfField(1), "__custom");
    // The current table and the table list stay; "__custom" joins the column list as it is.
    EXPECT_EQ(db().CurrentTable(), "Table1");
    EXPECT_EQ(tables(), kIndexTables);
    EXPECT_EQ(columns(), columnsBefore + QStringList{"__custom"});
    EXPECT_EQ(db().DataMembers(), QStringList({"!__LIST", "Orders"}));
    // "table" is reserved and only this spelling becomes "table0"; failures are counted
    // too and say nothing.
    EXPECT_TRUE(db().CreateTable("table"));
    for (const char* refused : {"Table", "two words", "Table2"})
        EXPECT_FALSE(db().CreateTable(refused)) << refused;
    EXPECT_EQ(statementsOnly(sql).mid(1), QStringList({"CREATE TABLE table0 (__custom INTEGER);",
                                                      "CREATE TABLE Table (__custom INTEGER);",
                                                      "CREATE TABLE two words (__custom INTEGER);",
                                                      "CREATE TABLE Table2 (__custom INTEGER);"}));
    EXPECT_EQ(db().createdTableCount(), 5);
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(tablesInFile(), QStringList({"Orders", "table0", "Table1", "Table2", "Table3"}));
}

TEST_F(TablesTest, ColumnsAreAddedRenamedAndDroppedOnTheCurrentTable)
{
    openCopy("indexTestV1997.mdb");
    // Failures return False silently and leave the record set closed.
    EXPECT_FALSE(db().AddField("my col", "INTEGER"));
    EXPECT_FALSE(db().AddField("data", "INTEGER"));
    EXPECT_FALSE(db().DeleteField("nosuch"));
    EXPECT_FALSE(db().ReNameField("nosuch", "other", ""));
    EXPECT_EQ(statementsOnly(sql), QStringList({"ALTER TABLE Table1 ADD my col INTEGER",
                                                "ALTER TABLE Table1 ADD data INTEGER", "ALTER TABLE Table1 DROP nosuch",
                                                "ALTER TABLE Table1 RENAME nosuch TO other"}));
    EXPECT_TRUE(recordSetClosed());
    EXPECT_FALSE(db().columnsChanged());
    EXPECT_EQ(columns().size(), 5);

    ASSERT_TRUE(db().CreateTable("Prices"));
    db().setCurrentTable("Prices");
    sql.clear();
    EXPECT_TRUE(db().AddField("Name", "VARCHAR (255)"));
    EXPECT_TRUE(db().columnsChanged());
    EXPECT_TRUE(db().AddField("Cost", "DOUBLE"));
    EXPECT_TRUE(db().AddField("Pieces", "INTEGER"));
    EXPECT_EQ(columns(), QStringList({"__custom", "Name", "Cost", "Pieces"}));
    EXPECT_TRUE(fake.boxes().empty());
    // The file's code page (1252) has no Cyrillic: refused like any value it cannot store.
    EXPECT_FALSE(db().AddValue("Name", 1, QString::fromUtf8("Чай")));
    EXPECT_TRUE(db().AddValue("Name", 1, QString::fromUtf8("Thé")));
    EXPECT_TRUE(db().AddValue("Cost", 1, "2.5"));
    EXPECT_TRUE(db().AddNewLine());
    EXPECT_TRUE(db().AddValue("Name", 2, "Milk"));
    EXPECT_TRUE(db().ReNameField("Cost", "Price", "ignored"));
    EXPECT_TRUE(db().DeleteField("Pieces"));
    QStringList eachThenReopened;
    for (const QString change : {"ADD Name VARCHAR (255)", "ADD Cost DOUBLE", "ADD Pieces INTEGER", "RENAME Cost TO Price", "DROP Pieces"})
        eachThenReopened << "ALTER TABLE Prices " + change << "SELECT * FROM Prices";
    EXPECT_EQ(sql, eachThenReopened);
    EXPECT_EQ(columns(), QStringList({"__custom", "Name", "Cost", "Pieces"}));  // dropping leaves it to the caller
    // Open again on the first record, with the columns as the file now has them.
    EXPECT_EQ(db().GetCurrentRecord("Name") + u'|' + db().CaptionOfField(3), QString::fromUtf8("Thé|Price"));
    EXPECT_EQ(runTimeErrorOf([&] { db().CaptionOfField(4); }), jet::err::ItemNotFound);
    EXPECT_EQ(db().SelectFromTable(selectionOf({{1, 1, 3, 2}}), ";"), QString::fromUtf8(";2\r\nThé;Milk\r\n2.5;\r\n"));
}

TEST_F(TablesTest, DroppingTheFirstTableMakesTheSecondCurrentAnyOtherTheFirst)
{
    openCopy("testV1997.mdb");
    EXPECT_FALSE(db().DeleteTable("Table1"));  // False, also on success
    EXPECT_FALSE(db().DeleteTable("Table4"));
    EXPECT_EQ(db().CurrentTable(), "Table2");
    EXPECT_EQ(tables(), QStringList({"Table2", "Table3"}));
    EXPECT_EQ(columns().size(), 89);
    db().DeleteTable("Table2");
    db().DeleteTable("Table3");  // the only one left: no table is current
    EXPECT_EQ(sql, QStringList({"SELECT * FROM Table2", "DROP TABLE Table1;", "SELECT * FROM Table2",
                                "DROP TABLE Table4;", "SELECT * FROM Table3", "DROP TABLE Table2;", "SELECT * FROM ",
                                "DROP TABLE Table3;"}));
    EXPECT_EQ(db().CurrentTable(), "");
    EXPECT_TRUE(tables().isEmpty());
    EXPECT_TRUE(tablesInFile().isEmpty());
    // A table in a relationship is not dropped, but another has become current.
    openCopy("indexTestV1997.mdb");
    EXPECT_FALSE(db().DeleteTable("Table1"));
    EXPECT_EQ(sql, QStringList({"SELECT * FROM Table2", "DROP TABLE Table1;"}));
    EXPECT_EQ(db().CurrentTable(), "Table2");
    EXPECT_EQ(tables(), kIndexTables);
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(tablesInFile(), kIndexTables);
}

TEST_F(TablesTest, ANameTheListLacksIsDroppedButTheListLosesItsLastEntry)
{
    openCopy("testV1997.mdb");
    ASSERT_TRUE(db().CreateTable("Extra"));  // made in this session: not in the list
    EXPECT_FALSE(db().DeleteTable("Extra"));
    EXPECT_EQ(tables(), QStringList({"Table1", "Table2", "Table3"}));
    EXPECT_EQ(db().CurrentTable(), "Table1");
    EXPECT_FALSE(db().DeleteTable("Ghost"));  // a drop that fails stops before the list
    EXPECT_EQ(tables(), QStringList({"Table1", "Table2", "Table3"}));
    EXPECT_EQ(tablesInFile(), QStringList({"Table1", "Table2", "Table3", "Table4"}));
}
