// Switching tables, the record cursor, reading cells and copying selections as text, on
// copies of corpus files.

#include "Areas.h"
#include "EngineFixture.h"

#include "jet/Connection.h"
#include "jet/Locale.h"
#include "jet/Recordset.h"

using engine::Table_Selection;

// indexTestV1997 Table1 (id, otherfk1, otherfk2, data, otherfk3):
//   0,0,10,baz0,0 / 1,1,11,baz11,0 / 2,1,11,baz11-2,0 / 3,2,13,baz13,0
class CursorTest : public EngineFixture {
protected:
    void SetUp() override
    {
        EngineFixture::SetUp();
        openCopy("indexTestV1997.mdb");
    }
};

TEST_F(CursorTest, SwitchingTablesReopensTheRecordSetAndRefreshesTheColumns)
{
    db().setCurrentTable("Table3");
    EXPECT_EQ(db().CurrentTable(), "Table3");
    EXPECT_EQ(sql, QStringList{"SELECT * FROM Table3"});
    EXPECT_EQ(columns(), QStringList({"id", "data"}));
    EXPECT_EQ(rowsOfCurrentTable(), (std::vector<QStringList>{
                                        {"10", "bar10"}, {"11", "bar11"}, {"12", "bar12"}, {"13", "bar13"}}));
    // The table list is the catalogue's and does not follow the current table.
    EXPECT_EQ(tables(), QStringList({"Table1", "Table2", "Table3"}));
}

TEST_F(CursorTest, TableThatDoesNotOpenKeepsItsNameAndLeavesTheRecordSetClosed)
{
    db().setCurrentTable("Nope");
    EXPECT_EQ(db().CurrentTable(), "Nope");
    EXPECT_EQ(db().queryText(), "SELECT * FROM Nope");
    EXPECT_TRUE(columns().isEmpty());
    EXPECT_EQ(runTimeErrorOf([&] { db().RecordCount(); }), jet::err::NotAllowedNow);
    // A name that is not bare SQL fails the same way, silently.
    db().setCurrentTable("two words");
    EXPECT_EQ(db().CurrentTable(), "two words");
    db().setCurrentTable("Table2");
    EXPECT_EQ(db().RecordCount(), 3);
}

TEST_F(CursorTest, CurrentTableBeforeAnyDatabaseIsSilent)
{
    // A reset of the module globals makes a fresh engine at the next use.
    app::resetModuleGlobals();
    EXPECT_EQ(db().CurrentTable(), "");
    EXPECT_EQ(db().Tables().Count(), 0);
    db().setCurrentTable("Table1");
    EXPECT_EQ(db().CurrentTable(), "Table1");
    EXPECT_TRUE(db().Columns().items().isEmpty());
}

TEST_F(CursorTest, MovesAndReadsCellsRelativeToTheCurrentRecord)
{
    db().MoveFirst();
    EXPECT_EQ(db().Item("data", 0), "baz0");
    EXPECT_EQ(db().Item("DATA", 2), "baz11-2");  // field names without case
    EXPECT_EQ(db().Item("id", -1), "1");
    db().Move(2);
    EXPECT_EQ(db().GetCurrentRecord("otherfk2"), "13");
    EXPECT_FALSE(db().EndOfRecords());
    db().MoveNext();
    EXPECT_TRUE(db().EndOfRecords());
    EXPECT_EQ(db().RecordCount(), 4);

    // The mechanical members pass the record set's errors on.
    EXPECT_EQ(runTimeErrorOf([&] { db().MoveNext(); }), jet::err::NoCurrentRecord);
    EXPECT_EQ(runTimeErrorOf([&] { db().Item("data", 0); }), jet::err::NoCurrentRecord);
    db().MoveFirst();
    EXPECT_EQ(runTimeErrorOf([&] { db().GetCurrentRecord("nosuch"); }), jet::err::ItemNotFound);
    EXPECT_EQ(runTimeErrorOf([&] { db().Item("data", 9); }), jet::err::NoCurrentRecord);
}

TEST_F(CursorTest, CellsReadAsTextInTheUsersLocaleAndNullIsAnError)
{
    const jet::Locale saved = jet::Locale::current();
    jet::Locale russian;
    russian.decimalSeparator = ",";
    russian.dateOrder = jet::Locale::DateOrder::DayMonthYear;
    russian.dateSeparator = '.';
    jet::Locale::setCurrent(russian);
    ASSERT_TRUE(db().OpenDataBase(copyOf("testV1997.mdb")));
    db().MoveFirst();
    db().MoveNext();
    EXPECT_EQ(db().GetCurrentRecord("F"), "444,555");
    EXPECT_EQ(db().GetCurrentRecord("G"), "21.09.1974");
    EXPECT_EQ(db().GetCurrentRecord("I"), "True");
    jet::Locale::setCurrent(saved);

    ASSERT_TRUE(db().OpenDataBase(copyOf("testIndexPropertiesV2003.mdb")));
    db().setCurrentTable("TableIgnoreNulls2");
    db().MoveFirst();
    EXPECT_EQ(runTimeErrorOf([&] { db().Item("data1", 1); }), jet::err::InvalidUseOfNull);
}

TEST_F(CursorTest, CaptionOfFieldCountsFromOneAndItsLetStoresNothing)
{
    EXPECT_EQ(db().CaptionOfField(1), "id");
    EXPECT_EQ(db().CaptionOfField(5), "otherfk3");
    EXPECT_EQ(runTimeErrorOf([&] { db().CaptionOfField(0); }), jet::err::ItemNotFound);
    EXPECT_EQ(runTimeErrorOf([&] { db().CaptionOfField(6); }), jet::err::ItemNotFound);
    db().setCaptionOfField(1, "Number");
    EXPECT_EQ(db().CaptionOfField(1), "id");
}

TEST_F(CursorTest, ReOpenRunsTheCurrentQueryAgain)
{
    db().MoveFirst();
    db().Move(3);
    db().ReOpen(0, 1);
    EXPECT_EQ(sql, QStringList{"SELECT * FROM Table1"});
    EXPECT_EQ(db().GetCurrentRecord("data"), "baz0");
    db().setCurrentTable("Nope");
    EXPECT_EQ(runTimeErrorOf([&] { db().ReOpen(2, 4); }), jet::err::NoSuchTable);
}

TEST_F(CursorTest, SelectionOfOneCellIsItsTextAndALineEnd)
{
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(4, 2, 4, 2)}), ";"), "baz11\r\n");
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(1, 1, 1, 1)}), ";"), "0\r\n");
}

TEST_F(CursorTest, SelectedColumnBecomesOneLineOfItsCellsTopToBottom)
{
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(1, 1, 1, 3)}), ";"), "0;1;2\r\n");
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(2, 2, 3, 4)}), "\t"), "1\t1\t2\r\n11\t11\t13\r\n");
    // A separator of several characters is cut off whole; an empty one joins the cells.
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(4, 3, 4, 4)}), " | "), "baz11-2 | baz13\r\n");
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(1, 1, 1, 4)}), ""), "0123\r\n");
}

TEST_F(CursorTest, SeveralAreasFollowEachOtherWithoutABlankLine)
{
    const auto s = selectionOf({area(4, 1, 4, 2), area(2, 3, 3, 4), area(5, 4, 5, 4)});
    EXPECT_EQ(db().SelectFromTable(s, ";"), "baz0;baz11\r\n1;2\r\n11;13\r\n0\r\n");
    // An area whose columns run backwards adds no line.
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(3, 1, 2, 1), area(1, 2, 1, 2)}), ";"), "1\r\n");
    EXPECT_EQ(db().SelectFromTable(Table_Selection(), ";"), "");
}

TEST_F(CursorTest, NullCellsAddOnlyTheirSeparator)
{
    ASSERT_TRUE(db().OpenDataBase(copyOf("testIndexPropertiesV2003.mdb")));
    db().setCurrentTable("TableIgnoreNulls2");
    // data1: stuff, Null, more, some, Null
    EXPECT_EQ(db().SelectFromTable(selectionOf({area(2, 1, 2, 5)}), ";"), "stuff;;more;some;\r\n");
}

TEST_F(CursorTest, SelectionBeyondTheLastRecordOrFieldIsAnError)
{
    EXPECT_EQ(runTimeErrorOf([&] { db().SelectFromTable(selectionOf({area(1, 4, 1, 5)}), ";"); }),
              jet::err::NoCurrentRecord);
    EXPECT_EQ(runTimeErrorOf([&] { db().SelectFromTable(selectionOf({area(6, 1, 6, 1)}), ";"); }),
              jet::err::ItemNotFound);
}

TEST_F(CursorTest, DataSourceHandsOutTheRecordSetOnTheCurrentQuery)
{
    db().MoveFirst();
    db().Move(2);
    const std::shared_ptr<jet::Recordset> data = db().GetDataMember("anything");
    ASSERT_TRUE(data);
    EXPECT_EQ(data->State(), jet::ado::StateOpen);
    EXPECT_EQ(data->RecordCount(), 4);
    EXPECT_EQ(data->Fields()[3].Value().toString(), "baz0");
    // The connection was opened again with the same string, then the query sent.
    ASSERT_EQ(connectionStrings.size(), 1);
    EXPECT_TRUE(connectionStrings[0].startsWith("Provider=microsoft.jet.OLEDB.3.51;"));
    EXPECT_EQ(sql, QStringList{"SELECT * FROM Table1"});
    // It is the engine's own record set: moving it moves the engine.
    data->MoveNext();
    EXPECT_EQ(db().GetCurrentRecord("id"), "1");
}

TEST_F(CursorTest, DataSourceWithoutAQueryHandsOutTheCatalogue)
{
    app::resetModuleGlobals();
    QFile::copy(QStringLiteral(SHEETWRIGHT_MDB_FIXTURES "/testV1997.mdb"), path("Database/empty97.mdb"));
    EXPECT_EQ(runTimeErrorOf([&] { db().GetDataMember(""); }), 91);
    db().CreateDataBase("", path("fresh.mdb"));
    const auto catalogue = db().GetDataMember("!__LIST");
    QStringList names;
    for (; !catalogue->Eof(); catalogue->MoveNext())
        names.append(QString::fromStdString(catalogue->Fields()["TABLE_NAME"].Value().toString()));
    EXPECT_EQ(names, QStringList({"Table1", "Table2", "Table3", "Table4"}));
}
