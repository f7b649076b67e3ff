// Writing cells, appending and deleting rows through the engine on copies of a Jet 3 file.

#include "EngineFixture.h"

namespace {

// indexTestV1997 Table1 (id is the primary key; id, otherfk1, otherfk2, data, otherfk3):
//   0,0,10,baz0,0 / 1,1,11,baz11,0 / 2,1,11,baz11-2,0 / 3,2,13,baz13,0
const QStringList kData = {"baz0", "baz11", "baz11-2", "baz13"};
const QString kNoRecord = "Number:3021|16|Either BOF or EOF is True, or the current record has been deleted. "
                          "Requested operation requires a current record.";

}  // namespace

class RowsTest : public EngineFixture {};

TEST_F(RowsTest, ItemWritesStayPendingUntilAddValueSendsThemWithItsOwnCell)
{
    openCopy("indexTestV1997.mdb");
    db().MoveFirst();
    db().setItem("data", 1, "dropped");
    EXPECT_EQ(db().Item("data", 0), "dropped");  // the record set shows it, the file does not have it
    db().ReOpen(2, 4);
    EXPECT_EQ(db().Item("data", 1), "baz11");
    db().MoveFirst();
    db().setItem("data", 0, "first");
    db().setItem("otherfk3", 2, "77");
    EXPECT_TRUE(db().AddValue("data", 4, "fourth"));
    EXPECT_EQ(sql, QStringList{"SELECT * FROM Table1"});  // the ReOpen's: cells go through the record set
    EXPECT_EQ(columnInFile("Table1", "data"), QStringList({"first", "baz11", "baz11-2", "fourth"}));
    EXPECT_EQ(columnInFile("Table1", "otherfk3"), QStringList({"0", "0", "77", "0"}));
    // A number column refuses a text; row 5 and the column do not exist; the primary key
    // refuses a duplicate, and the batch goes as a whole or not at all.
    db().MoveFirst();
    db().setItem("data", 0, "pending");
    EXPECT_FALSE(db().AddValue("otherfk1", 2, "not a number"));
    EXPECT_FALSE(db().AddValue("data", 5, "x"));
    EXPECT_FALSE(db().AddValue("nosuch", 1, "x"));
    EXPECT_FALSE(db().AddValue("id", 2, "3"));
    EXPECT_EQ(shownBoxes(fake), QStringList(4, "|16|Error of editing!"));
    EXPECT_EQ(columnInFile("Table1", "data"), QStringList({"first", "baz11", "baz11-2", "fourth"}));
    EXPECT_EQ(columnInFile("Table1", "id"), QStringList({"0", "1", "2", "3"}));
}

TEST_F(RowsTest, AddNewLineNumbersTheNewRowWithTheRecordCountOrFailsSilently)
{
    openCopy("indexTestV1997.mdb");
    EXPECT_TRUE(db().AddNewLine());
    EXPECT_EQ(db().RecordCount(), 5);
    EXPECT_TRUE(db().AddNewLine());
    // Table2's id is a unique key: after this the new row's number 4 is taken.
    db().setCurrentTable("Table2");
    EXPECT_TRUE(db().AddValue("id", 3, "4"));
    EXPECT_FALSE(db().AddNewLine());
    db().setCurrentTable("Table3");
    db().ReOpen(0, 1);  // read-only
    EXPECT_FALSE(db().AddNewLine());
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(columnInFile("Table1", "id"), QStringList({"0", "1", "2", "3", "5", "6"}));
    EXPECT_EQ(columnInFile("Table1", "data"), kData + QStringList({"<Null>", "<Null>"}));
    EXPECT_EQ(columnInFile("Table2", "id"), QStringList({"0", "1", "4"}));
    EXPECT_EQ(columnInFile("Table3", "id"), QStringList({"10", "11", "12", "13"}));
}

TEST_F(RowsTest, DeleteRecordShowsTheFirstValueThenDeletesTheRowAndClosesTheRecordSet)
{
    openCopy("indexTestV1997.mdb");
    EXPECT_TRUE(db().DeleteRecord(3));
    EXPECT_TRUE(recordSetClosed());
    EXPECT_TRUE(db().DeleteRecord(1));  // opens it again first
    EXPECT_FALSE(db().DeleteRecord(9));
    EXPECT_EQ(shownBoxes(fake), QStringList({"|0|0", "|0|0", "|0|1", kNoRecord}));
    EXPECT_EQ(columnInFile("Table1", "id"), QStringList({"1", "3"}));
    // Deleting the last row works, but moving to the first record afterwards finds none;
    // with no record left not even the first value can be shown.
    db().setCurrentTable("Table2");
    fake.clear();
    EXPECT_TRUE(db().DeleteRecord(1));
    EXPECT_TRUE(db().DeleteRecord(1));
    EXPECT_FALSE(db().DeleteRecord(1));
    EXPECT_FALSE(db().DeleteRecord(1));
    EXPECT_EQ(shownBoxes(fake).mid(2), QStringList({"|0|2", kNoRecord, kNoRecord}));
    EXPECT_TRUE(columnInFile("Table2", "id").isEmpty());
}
