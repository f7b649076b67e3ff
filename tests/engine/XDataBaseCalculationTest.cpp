// The statistics over selections and the column scans, on a copy of a corpus table.

#include "EngineFixture.h"

#include "engine/Calculation.h"
#include "jet/Connection.h"
#include "jet/Recordset.h"

// indexTestV1997 Table1 (id, otherfk1, otherfk2, data, otherfk3):
//   0,0,10,baz0,0 / 1,1,11,baz11,0 / 2,1,11,baz11-2,0 / 3,2,13,baz13,0
class CalculationTest : public EngineFixture {
protected:
    void setNumberType(const QString& type)
    {
        app::gRegistry().write(host::HKEY_LOCAL_MACHINE, host::keys::Pro, host::keys::TypeNum, type);
    }
    // The texts Calculate would hand to the library, read from a record set of its own.
    QStringList gathered(const QString& table, const std::vector<Corners>& areas)
    {
        jet::Connection connection;
        connection.Open(("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + file).toStdString());
        jet::Recordset records;
        records.Open("SELECT * FROM " + table.toStdString(), connection);
        rt::StringList values;
        engine::gatherSelectedCells(records, selectionOf(areas), values);
        return values.items();
    }
};

TEST_F(CalculationTest, GathersAreaByAreaColumnByColumnTopToBottom)
{
    openCopy("indexTestV1997.mdb");
    EXPECT_EQ(gathered("Table1", {{2, 3, 3, 4}}), QStringList({"1", "2", "11", "13"}));
    // Areas in the order they were added, overlaps once per area, nothing from an area
    // that runs backwards.
    EXPECT_EQ(gathered("Table1", {{3, 1, 3, 2}, {1, 4, 1, 4}, {4, 2, 3, 3}, {1, 3, 1, 4}, {1, 4, 1, 3}}),
              QStringList({"10", "11", "3", "2", "3"}));
    EXPECT_EQ(gathered("Table1", {}), QStringList());
    // Corners are 16-bit.
    EXPECT_EQ(runTimeErrorOf([&] { gathered("Table1", {{1, 1, 1, 40000}}); }), jet::err::Overflow);
    EXPECT_EQ(runTimeErrorOf([&] { gathered("Table1", {{32768, 1, 1, 1}}); }), jet::err::Overflow);
    // Past the last record or field the record set answers.
    EXPECT_NE(runTimeErrorOf([&] { gathered("Table1", {{1, 4, 1, 5}}); }), 0);
    EXPECT_NE(runTimeErrorOf([&] { gathered("Table1", {{6, 1, 6, 1}}); }), 0);
}

TEST_F(CalculationTest, EachIndexCallsItsStatisticInTheNumberTypeOfTheRegistry)
{
    openCopy("indexTestV1997.mdb");
    db().setCurrentTable("Table1");
    const engine::Table_Selection keys = selectionOf({{2, 1, 3, 4}});  // 0 1 1 2 and 10 11 11 13
    const engine::Table_Selection otherfk2 = selectionOf({{3, 1, 3, 4}});
    const std::vector<std::pair<int32_t, QString>> ordinary = {
        {1, "0"}, {2, "1"}, {4, "13"}, {5, "6.125"}, {6, "0"}, {7, "0"}, {8, "8447342188747228169348532787200"}, {9, "49"},
        {10, "30.9821428571429"}, {11, "6"}, {13, "5.56616051305951"}, {14, "5.125"}, {0, ""}, {15, ""}};
    for (const auto& [index, expected] : ordinary)
        EXPECT_EQ(db().Calculate(keys, index), expected) << index;
    EXPECT_EQ(db().Calculate(otherfk2, 3), "11.1990757101158");
    EXPECT_EQ(db().Calculate(otherfk2, 12), "11.1500974658869");
    // The record set stays on the last cell gathered.
    EXPECT_EQ(db().GetCurrentRecord("id"), "3");
    setNumberType("1");
    EXPECT_EQ(db().Calculate(otherfk2, 12), "11.150097465886939571150097465886939571150097465887");
    EXPECT_EQ(db().Calculate(keys, 8), "8447342188747228169348532787200");
    EXPECT_EQ(db().Calculate(keys, 4), "13");
    EXPECT_EQ(db().Calculate(otherfk2, 3), "11.199075710115776233329526650558692387869499048472");
    setNumberType("2");
    EXPECT_EQ(db().Calculate(otherfk2, 3),
              "11.199075710115776233329526650558692387869499048472371642250501144675012738688");
}

TEST_F(CalculationTest, WithoutATableNothingIsAskedAndEverythingElseReachesTheCaller)
{
    openCopy("indexTestV1997.mdb");
    db().setCurrentTable("Table1");
    // An empty selection hands the library an empty list: no sum, and 0 for Max.
    EXPECT_EQ(db().Calculate(engine::Table_Selection(), 9), "");
    EXPECT_EQ(db().Calculate(engine::Table_Selection(), 4), "0");
    // The mode is asked first, whatever the index: a stored type that is no Long fails.
    setNumberType("1e12");
    EXPECT_EQ(runTimeErrorOf([&] { db().Calculate(selectionOf({{1, 1, 1, 1}}), 15); }), jet::err::Overflow);
    db().setCurrentTable("");
    EXPECT_EQ(db().Calculate(selectionOf({{1, 1, 1, 1}}), 9), "");
    setNumberType("0");
    // A Null cell cannot become text: error 94, even for an index that calls nothing.
    db().setCurrentTable("Table1");
    ASSERT_TRUE(db().AddField("extra", "INTEGER"));
    EXPECT_EQ(runTimeErrorOf([&] { db().Calculate(selectionOf({{6, 1, 6, 2}}), 9); }), jet::err::InvalidUseOfNull);
    EXPECT_EQ(runTimeErrorOf([&] { db().Calculate(selectionOf({{6, 1, 6, 2}}), 0); }), jet::err::InvalidUseOfNull);
    // A closed record set is opened again before gathering.
    db().MaxValueOfField("id");
    ASSERT_TRUE(recordSetClosed());
    EXPECT_EQ(db().Calculate(selectionOf({{1, 1, 1, 4}}), 9), "6");
}

TEST_F(CalculationTest, ColumnScansCompareByValAndByTextAndLeaveTheRecordSetClosed)
{
    openCopy("indexTestV1997.mdb");
    db().setCurrentTable("Table3");  // id 10, 11, 12, 13; data bar10 ...
    ASSERT_TRUE(db().AddValue("id", 4, "9"));
    ASSERT_TRUE(db().AddValue("data", 2, "10 pins"));
    ASSERT_TRUE(db().AddValue("data", 3, "9 lives"));
    EXPECT_EQ(db().MaxValueOfField("id"), "12");
    EXPECT_TRUE(recordSetClosed());
    EXPECT_EQ(db().MinValueOfField("id"), "10");  // "10" before "9" as texts
    EXPECT_EQ(db().MaxValueOfField("data"), "10 pins");
    EXPECT_EQ(db().MinValueOfField("DATA"), "10 pins");
    EXPECT_TRUE(recordSetClosed());
    EXPECT_EQ(sql.last(), "SELECT * FROM Table3");
    // Equal values keep the first; a column that fails gives "".
    db().setCurrentTable("Table1");
    EXPECT_EQ(db().MaxValueOfField("otherfk3"), "0");
    EXPECT_EQ(db().MaxValueOfField("nope"), "");
    ASSERT_TRUE(db().AddField("extra", "INTEGER"));
    EXPECT_EQ(db().MaxValueOfField("extra"), "");
    EXPECT_EQ(db().MinValueOfField("extra"), "");
    EXPECT_TRUE(recordSetClosed());
}
