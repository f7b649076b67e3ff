// Switching tables, the record cursor, reading cells, copying selections as text and the
// data-source role, on copies of corpus files.

#include "EngineFixture.h"

#include "jet/Connection.h"
#include "jet/Recordset.h"

// indexTestV1997 Table1 (id, otherfk1, otherfk2, data, otherfk3):
//   0,0,10,baz0,0 / 1,1,11,baz11,0 / 2,1,11,baz11-2,0 / 3,2,13,baz13,0
class CursorTest : public EngineFixture {};

TEST_F(CursorTest, SwitchingTablesReopensTheRecordSetAndATableThatDoesNotOpenIsSilent)
{
    openCopy("indexTestV1997.mdb");
    db().setCurrentTable("Table3");
    EXPECT_EQ(sql, QStringList{"SELECT * FROM Table3"});
    EXPECT_EQ(columns(), QStringList({"id", "data"}));
    EXPECT_EQ(column("data"), QStringList({"bar10", "bar11", "bar12", "bar13"}));
    EXPECT_EQ(tables(), kIndexTables);  // the catalogue's, whatever is current
    // A name that is not bare SQL, or opens nothing, is kept with the record set closed.
    for (const QString name : {"two words", "Nope"}) {
        db().setCurrentTable(name);
        EXPECT_EQ(db().CurrentTable() + u'|' + db().queryText(), name + "|SELECT * FROM " + name);
        EXPECT_TRUE(columns().isEmpty());
        EXPECT_TRUE(recordSetClosed());
    }
    EXPECT_EQ(runTimeErrorOf([&] { db().ReOpen(2, 4); }), jet::err::NoSuchTable);
    app::resetModuleGlobals();  // before any database the same
    db().setCurrentTable("Table1");
    EXPECT_EQ(db().CurrentTable(), "Table1");
    EXPECT_TRUE(columns().isEmpty());
}

TEST_F(CursorTest, MovesAndReadsCellsRelativeToTheCurrentRecordAndPassesErrorsOn)
{
    openCopy("indexTestV1997.mdb");
    db().MoveFirst();
    EXPECT_EQ(db().Item("data", 0), "baz0");
    EXPECT_EQ(db().Item("DATA", 2), "baz11-2");  // field names without case
    EXPECT_EQ(db().Item("id", -1), "1");
    db().Move(2);
    EXPECT_EQ(db().GetCurrentRecord("otherfk2"), "13");
    EXPECT_FALSE(db().EndOfRecords());
    db().MoveNext();
    EXPECT_TRUE(db().EndOfRecords());
    EXPECT_EQ(runTimeErrorOf([&] { db().MoveNext(); }), jet::err::NoCurrentRecord);
    EXPECT_EQ(runTimeErrorOf([&] { db().Item("data", 0); }), jet::err::NoCurrentRecord);
    db().MoveFirst();
    EXPECT_EQ(runTimeErrorOf([&] { db().GetCurrentRecord("nosuch"); }), jet::err::ItemNotFound);
    // Fields by position count from 1; captions are not stored.
    db().setCaptionOfField(1, "Number");
    EXPECT_EQ(db().CaptionOfField(1) + u'|' + db().CaptionOfField(5), "id|otherfk3");
    EXPECT_EQ(runTimeErrorOf([&] { db().CaptionOfField(0); }), jet::err::ItemNotFound);
    // ReOpen runs the current query again from the first record.
    db().Move(3);
    db().ReOpen(0, 1);
    EXPECT_EQ(sql, QStringList{"SELECT * FROM Table1"});
    EXPECT_EQ(db().GetCurrentRecord("data"), "baz0");
}

TEST_F(CursorTest, ACopiedSelectionHasOneLineForEachSelectedColumn)
{
    openCopy("indexTestV1997.mdb");
    const std::vector<std::tuple<std::vector<Corners>, QString, QString>> cases = {
        {{{4, 2, 4, 2}}, ";", "baz11\r\n"},  // one cell: no separator
        {{{1, 1, 1, 3}}, ";", "0;1;2\r\n"},  // a column becomes a line, top to bottom
        {{{2, 2, 3, 4}}, "\t", "1\t1\t2\r\n11\t11\t13\r\n"},
        {{{4, 3, 4, 4}}, " | ", "baz11-2 | baz13\r\n"},  // the last separator is cut whole
        {{{1, 1, 1, 4}}, "", "0123\r\n"},
        {{{4, 1, 4, 2}, {2, 3, 3, 4}, {5, 4, 5, 4}}, ";", "baz0;baz11\r\n1;2\r\n11;13\r\n0\r\n"},
        {{{3, 1, 2, 1}, {1, 2, 1, 2}}, ";", "1\r\n"},  // columns running backwards add no line
        {{}, ";", ""}};
    for (const auto& [areas, separator, text] : cases)
        EXPECT_EQ(db().SelectFromTable(selectionOf(areas), separator), text);
    EXPECT_EQ(runTimeErrorOf([&] { db().SelectFromTable(selectionOf({{1, 4, 1, 5}}), ";"); }),
              jet::err::NoCurrentRecord);
    EXPECT_EQ(runTimeErrorOf([&] { db().SelectFromTable(selectionOf({{6, 1, 6, 1}}), ";"); }), jet::err::ItemNotFound);
    // A Null cell is an error when read, and adds only its separator to a copy.
    openCopy("testIndexPropertiesV2003.mdb");
    db().setCurrentTable("TableIgnoreNulls2");
    db().MoveFirst();
    EXPECT_EQ(runTimeErrorOf([&] { db().Item("data1", 1); }), jet::err::InvalidUseOfNull);
    EXPECT_EQ(db().SelectFromTable(selectionOf({{2, 1, 2, 5}}), ";"), "stuff;;more;some;\r\n");
}

TEST_F(CursorTest, AsADataSourceItHandsOutItsRecordSetOnTheCurrentQueryOrElseTheCatalogue)
{
    openCopy("indexTestV1997.mdb");
    db().MoveFirst();
    db().Move(2);
    const std::shared_ptr<jet::Recordset> data = db().GetDataMember("anything");
    ASSERT_TRUE(data && data->State() == jet::ado::StateOpen);
    EXPECT_EQ(data->RecordCount(), 4);
    EXPECT_EQ(data->Fields()[3].Value().toString(), "baz0");
    // The connection was opened again with the same string, then the query sent.
    EXPECT_EQ(connectionStrings, QStringList{jet351(file)});
    EXPECT_EQ(sql, QStringList{"SELECT * FROM Table1"});
    data->MoveNext();  // the engine's own record set
    EXPECT_EQ(db().GetCurrentRecord("id"), "1");

    app::resetModuleGlobals();
    ASSERT_TRUE(QFile::copy(fixture("testV1997.mdb"), path("Database/empty97.mdb")));
    EXPECT_EQ(runTimeErrorOf([&] { db().GetDataMember(""); }), 91);
    db().CreateDataBase("", path("fresh.mdb"));
    QStringList names;
    for (const auto catalogue = db().GetDataMember("!__LIST"); !catalogue->Eof(); catalogue->MoveNext())
        names << QString::fromStdString(catalogue->Fields()["TABLE_NAME"].Value().toString());
    EXPECT_EQ(names, kTestTables);
}
