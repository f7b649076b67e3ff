// Writing cells, appending and deleting rows through the engine, on copies of a Jet 3 and
// a Jet 4 file; every copy must pass the integrity checker afterwards (EngineFixture).

#include "EngineFixture.h"

#include "jet/Connection.h"

namespace {

const QString editingError = "Error of editing!";

}  // namespace

// indexTestV1997 Table1 (id is the primary key; id, otherfk1, otherfk2, data, otherfk3):
//   0,0,10,baz0,0 / 1,1,11,baz11,0 / 2,1,11,baz11-2,0 / 3,2,13,baz13,0
class RowsTest : public EngineFixture {
protected:
    void SetUp() override
    {
        EngineFixture::SetUp();
        openCopy("indexTestV1997.mdb");
    }
};

TEST_F(RowsTest, ItemWritesStayPendingAndAreDroppedByAReopen)
{
    db().MoveFirst();
    db().setItem("data", 1, "changed");
    // The record set shows the pending value; the file does not have it.
    EXPECT_EQ(db().Item("data", 0), "changed");
    db().ReOpen(2, 4);
    EXPECT_EQ(db().Item("data", 1), "baz11");
    EXPECT_EQ(columnInFile("Table1", "data"), QStringList({"baz0", "baz11", "baz11-2", "baz13"}));
    EXPECT_TRUE(fake.boxes().empty());
}

TEST_F(RowsTest, AddValueSendsItsCellTogetherWithEarlierItemWrites)
{
    db().MoveFirst();
    db().setItem("data", 0, "first");
    db().setItem("otherfk3", 2, "77");
    EXPECT_TRUE(db().AddValue("data", 4, "fourth"));
    // Only queries were sent; the cells went through the record set.
    EXPECT_TRUE(sql.isEmpty());
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(columnInFile("Table1", "data"), QStringList({"first", "baz11", "baz11-2", "fourth"}));
    EXPECT_EQ(columnInFile("Table1", "otherfk3"), QStringList({"0", "0", "77", "0"}));
}

TEST_F(RowsTest, AddValueErrorsShowErrorOfEditingAndWriteNothing)
{
    db().MoveFirst();
    db().setItem("data", 0, "pending");
    // A number column refuses a text; row 5 does not exist; neither does the column.
    EXPECT_FALSE(db().AddValue("otherfk1", 2, "not a number"));
    EXPECT_FALSE(db().AddValue("data", 5, "x"));
    EXPECT_FALSE(db().AddValue("nosuch", 1, "x"));
    // The primary key refuses a duplicate, and the batch goes as a whole or not at all.
    EXPECT_FALSE(db().AddValue("id", 2, "3"));
    const auto boxes = fake.messageBoxes();
    ASSERT_EQ(boxes.size(), 4u);
    for (const auto& box : boxes) {
        EXPECT_EQ(box.prompt, editingError);
        EXPECT_EQ(box.style, ui::vbCritical);
    }
    EXPECT_EQ(columnInFile("Table1", "data"), QStringList({"baz0", "baz11", "baz11-2", "baz13"}));
    EXPECT_EQ(columnInFile("Table1", "id"), QStringList({"0", "1", "2", "3"}));
}

TEST_F(RowsTest, AddNewLineNumbersTheNewRowWithTheRecordCount)
{
    EXPECT_TRUE(db().AddNewLine());
    EXPECT_EQ(db().RecordCount(), 5);
    EXPECT_TRUE(db().AddNewLine());
    EXPECT_EQ(columnInFile("Table1", "id"), QStringList({"0", "1", "2", "3", "5", "6"}));
    EXPECT_EQ(columnInFile("Table1", "data"), QStringList({"baz0", "baz11", "baz11-2", "baz13", "<Null>", "<Null>"}));
    EXPECT_TRUE(fake.boxes().empty());
}

TEST_F(RowsTest, AddNewLineFailsSilently)
{
    // Table2's id is a unique key that already holds 3 (ids 0, 1, 2 and now 3 from here).
    db().setCurrentTable("Table2");
    EXPECT_TRUE(db().AddValue("id", 3, "4"));
    EXPECT_FALSE(db().AddNewLine());
    // A read-only record set refuses the new row.
    db().setCurrentTable("Table3");
    db().ReOpen(0, 1);
    EXPECT_FALSE(db().AddNewLine());
    EXPECT_TRUE(fake.boxes().empty());
    EXPECT_EQ(columnInFile("Table2", "id"), QStringList({"0", "1", "4"}));
    EXPECT_EQ(columnInFile("Table3", "id"), QStringList({"10", "11", "12", "13"}));
}

TEST_F(RowsTest, DeleteRecordShowsTheFirstValueDeletesTheRowAndClosesTheRecordSet)
{
    EXPECT_TRUE(db().DeleteRecord(3));
    ASSERT_EQ(fake.messageBoxes().size(), 1u);
    EXPECT_EQ(fake.messageBoxes()[0].prompt, "0");
    EXPECT_EQ(fake.messageBoxes()[0].style, ui::vbOKOnly);
    EXPECT_EQ(runTimeErrorOf([&] { db().RecordCount(); }), jet::err::NotAllowedNow);
    // The next deletion opens it again; the box shows the first value once more.
    EXPECT_TRUE(db().DeleteRecord(1));
    EXPECT_EQ(fake.messageBoxes()[1].prompt, "0");
    EXPECT_EQ(columnInFile("Table1", "id"), QStringList({"1", "3"}));
}

TEST_F(RowsTest, DeleteRecordErrorsShowTheirNumberAndDescription)
{
    EXPECT_FALSE(db().DeleteRecord(9));
    const auto boxes = fake.messageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].prompt, "0");
    EXPECT_EQ(boxes[1].title, "Number:3021");
    EXPECT_EQ(boxes[1].style, ui::vbCritical);
    EXPECT_TRUE(boxes[1].prompt.startsWith("Either BOF or EOF is True")) << boxes[1].prompt.toStdString();
    EXPECT_EQ(columnInFile("Table1", "id").size(), 4);
}

TEST_F(RowsTest, DeletingTheLastRowReportsThatNoRecordIsLeft)
{
    db().setCurrentTable("Table2");
    EXPECT_TRUE(db().DeleteRecord(1));
    EXPECT_TRUE(db().DeleteRecord(1));
    // The row goes; moving to the first record afterwards finds none.
    EXPECT_FALSE(db().DeleteRecord(1));
    EXPECT_EQ(fake.messageBoxes().back().title, "Number:3021");
    EXPECT_TRUE(columnInFile("Table2", "id").isEmpty());
    // With no record left even the first value cannot be shown.
    fake.clear();
    EXPECT_FALSE(db().DeleteRecord(1));
    ASSERT_EQ(fake.messageBoxes().size(), 1u);
    EXPECT_EQ(fake.messageBoxes()[0].title, "Number:3021");
}

TEST_F(RowsTest, Jet4FileTakesTheSameEdits)
{
    // delTestV2003 "Table": a, b (text): z,y / v,u
    openCopy("delTestV2003.mdb");
    EXPECT_EQ(db().CurrentTable(), "Table");
    db().MoveFirst();
    db().setItem("b", 1, QString::fromUtf8("юникод"));
    EXPECT_TRUE(db().AddValue("a", 1, QString::fromUtf8("Мир")));
    EXPECT_TRUE(db().AddNewLine());
    EXPECT_EQ(columnInFile("Table", "a"), QStringList({QString::fromUtf8("Мир"), "v", "3"}));
    EXPECT_EQ(columnInFile("Table", "b"), QStringList({"y", QString::fromUtf8("юникод"), "<Null>"}));
    EXPECT_TRUE(db().DeleteRecord(2));
    EXPECT_EQ(fake.messageBoxes().back().prompt, QString::fromUtf8("Мир"));
    EXPECT_EQ(columnInFile("Table", "a"), QStringList({QString::fromUtf8("Мир"), "3"}));
}
