// The grids over the engine's record set: flex-grid coordinates, reading without moving
// the engine's cursor, edits pending until the user leaves the row or the grid, and what
// happens to values the database will not take.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include "../support/CorpusCopy.h"
#include "../support/FreshProgram.h"
#include "../support/ShownBoxes.h"

#include "engine/XDataBase.h"
#include "jet/Recordset.h"
#include "ui/main/TableGrid.h"

namespace {

using ui::RecordsetModel;

// testV1997 Table1: A Text (primary key), B Text, C Byte, D Integer, E Long, F Double,
// G Date, H Currency, I Yes/No; rows ("a", "b", 0, ...) and ("abcdefg", "hijklmnop", 2, ...).
// compIndexTestV1997 Table1: 512 rows.
class TableGridTest : public testing::Test {
protected:
    std::shared_ptr<jet::Recordset> open(const QString& corpus, const QString& table = "Table1")
    {
        file = copyCorpusFile(corpus, program.path(corpus));
        EXPECT_TRUE(app::gDataBase().OpenDataBase(file));
        app::gDataBase().setCurrentTable(table);
        return app::gDataBase().GetDataMember(table);
    }
    // What the file holds, read by opening the table afresh.
    static QString storedText(int32_t record, const QString& field)
    {
        app::gDataBase().setCurrentTable("Table1");
        app::gDataBase().MoveFirst();
        return app::gDataBase().Item(field, record - 1);
    }
    static QString text(const QAbstractItemModel& model, int row, int column)
    {
        return model.index(row, column).data().toString();
    }

    FreshProgram program;
    QString file;
};

TEST_F(TableGridTest, ShowsTheRecordSetWithTheHeadersAsRowAndColumnZero)
{
    RecordsetModel model(RecordsetModel::Access::ReadOnly);
    model.bind(open("testV1997.mdb"));
    EXPECT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.columnCount(), 10);
    EXPECT_EQ(model.headerData(1, Qt::Horizontal).toString(), "A");
    EXPECT_EQ(model.headerData(9, Qt::Horizontal).toString(), "I");
    EXPECT_EQ(model.headerData(2, Qt::Vertical).toInt(), 2);
    EXPECT_EQ(text(model, 1, 1), "a");
    EXPECT_EQ(text(model, 2, 2), "hijklmnop");
    EXPECT_EQ(text(model, 2, 3), "2");
    for (const QModelIndex& outside : {model.index(0, 1), model.index(1, 0), model.index(0, 0)}) {
        EXPECT_FALSE(outside.data().isValid());
        EXPECT_EQ(model.flags(outside), Qt::NoItemFlags);
    }
    EXPECT_EQ(model.index(1, 1).data(Qt::TextAlignmentRole).toInt() & Qt::AlignHorizontal_Mask, Qt::AlignLeft);
    EXPECT_EQ(model.index(1, 4).data(Qt::TextAlignmentRole).toInt() & Qt::AlignHorizontal_Mask, Qt::AlignRight);
    EXPECT_FALSE(model.flags(model.index(1, 1)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model.setData(model.index(1, 2), "x"));

    model.bind(nullptr);
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(model.columnCount(), 1);
}

TEST_F(TableGridTest, ReadingAnyRowLeavesTheEngineCursorWhereItWas)
{
    RecordsetModel model(RecordsetModel::Access::ReadOnly);
    const std::shared_ptr<jet::Recordset> rs = open("compIndexTestV1997.mdb");
    model.bind(rs);
    ASSERT_EQ(model.rowCount(), 513);
    const struct {
        const char* where;
        std::function<void()> place;
    } starts[] = {
        {"before the first record", [&] { rs->MoveFirst(); rs->MovePrevious(); }},
        {"on record 101", [&] { rs->MoveFirst(); rs->Move(100); }},
        {"after the last record", [&] { rs->MoveLast(); rs->MoveNext(); }},
    };
    for (const auto& start : starts) {
        start.place();
        const int32_t before = rs->AbsolutePosition();
        for (int row : {1, 300, 510, 101})
            EXPECT_FALSE(text(model, row, 1).isEmpty()) << start.where << ", row " << row;
        EXPECT_EQ(model.index(7, 1).data(Qt::EditRole), model.index(7, 1).data());
        EXPECT_EQ(rs->AbsolutePosition(), before) << start.where;
    }
}

TEST_F(TableGridTest, TypedValuesStayPendingUntilSentThenReachTheFile)
{
    RecordsetModel editable(RecordsetModel::Access::Editable);
    RecordsetModel readOnly(RecordsetModel::Access::ReadOnly);
    const std::shared_ptr<jet::Recordset> rs = open("testV1997.mdb");
    editable.bind(rs);
    readOnly.bind(rs);
    EXPECT_TRUE(editable.flags(editable.index(1, 2)) & Qt::ItemIsEditable);

    EXPECT_FALSE(editable.setData(editable.index(1, 2), "b"));  // unchanged: nothing to send
    EXPECT_FALSE(editable.hasEdits());
    ASSERT_TRUE(editable.setData(editable.index(1, 2), QString::fromUtf8("changed")));
    EXPECT_TRUE(editable.hasEdits());
    readOnly.bind(rs);
    EXPECT_EQ(text(readOnly, 1, 2), "changed");

    EXPECT_TRUE(editable.sendEdits());
    EXPECT_FALSE(editable.hasEdits());
    EXPECT_TRUE(program.fake.boxes().empty());
    EXPECT_EQ(storedText(1, "B"), "changed");
}

TEST_F(TableGridTest, AValueThatDoesNotFitIsRefusedAndOneTheDatabaseRefusesStaysToBeCorrected)
{
    RecordsetModel model(RecordsetModel::Access::Editable);
    model.bind(open("testV1997.mdb"));

    EXPECT_FALSE(model.setData(model.index(1, 3), "300"));  // C is a Byte
    EXPECT_EQ(text(model, 1, 3), "0");
    EXPECT_FALSE(model.hasEdits());
    ASSERT_EQ(program.fake.messageBoxes().size(), 1u);
    EXPECT_TRUE(program.fake.messageBoxes()[0].prompt.startsWith("Error of editing!\r\n"));
    EXPECT_EQ(program.fake.messageBoxes()[0].style, rt::vbCritical);

    ASSERT_TRUE(model.setData(model.index(2, 1), "a"));  // A is the primary key: "a" is taken
    EXPECT_FALSE(model.sendEdits());
    EXPECT_EQ(program.fake.messageBoxes().size(), 2u);
    EXPECT_TRUE(model.hasEdits());
    EXPECT_EQ(text(model, 2, 1), "a");  // still there for the user to correct

    ASSERT_TRUE(model.setData(model.index(2, 1), "z"));
    EXPECT_TRUE(model.sendEdits());
    EXPECT_EQ(storedText(2, "A"), "z");
}

TEST_F(TableGridTest, ARecordSetClosedUnderTheGridShowsNothingUntilRebound)
{
    RecordsetModel model(RecordsetModel::Access::Editable);
    const std::shared_ptr<jet::Recordset> rs = open("testV1997.mdb");
    model.bind(rs);
    rs->Close();
    EXPECT_EQ(text(model, 1, 1), "");
    EXPECT_FALSE(model.setData(model.index(1, 2), "x"));
    rs->Open();
    model.bind(rs);
    EXPECT_EQ(text(model, 1, 1), "a");
}

// A grid shown in a window with one other control to move the focus to.
struct GridWindow {
    explicit GridWindow(RecordsetModel::Access access) : grid(new ui::TableGrid(access)), other(new QLineEdit)
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(grid);
        layout->addWidget(other);
        window.resize(640, 400);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    QWidget window;
    ui::TableGrid* grid;
    QLineEdit* other;
};

TEST_F(TableGridTest, EditsAreSentWhenTheUserLeavesTheRowOrTheGrid)
{
    GridWindow shown(RecordsetModel::Access::Editable);
    ui::TableGrid& grid = *shown.grid;
    grid.bind(open("testV1997.mdb"));
    EXPECT_EQ(grid.Row(), 1);
    EXPECT_EQ(grid.Col(), 1);

    grid.setFocus();
    ASSERT_TRUE(grid.records().setData(grid.records().index(1, 2), "first"));
    grid.setCurrentIndex(grid.records().index(1, 3));  // same row: still pending
    EXPECT_TRUE(grid.records().hasEdits());
    QTest::keyClick(&grid, Qt::Key_Down);
    EXPECT_EQ(grid.Row(), 2);
    EXPECT_FALSE(grid.records().hasEdits());

    // Typed into the cell's editor, then the focus goes elsewhere in the window.
    QTest::keyClick(&grid, 's');
    ASSERT_NE(QApplication::focusWidget(), &grid);  // the cell's editor
    QTest::keyClicks(QApplication::focusWidget(), "econd");
    shown.other->setFocus();
    EXPECT_FALSE(grid.records().hasEdits());
    EXPECT_EQ(storedText(1, "B"), "first");
    EXPECT_EQ(storedText(2, "C"), "2");  // "second" is no Byte: refused, nothing sent
    EXPECT_EQ(shownBoxes(program.fake).size(), 1);
}

TEST_F(TableGridTest, KeyboardWalksTheTableAndColumnsFitTheirContent)
{
    GridWindow shown(RecordsetModel::Access::ReadOnly);
    ui::TableGrid& grid = *shown.grid;
    grid.bind(open("compIndexTestV1997.mdb"));
    grid.setFocus();
    const int lastColumn = grid.Cols() - 1;
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int32_t row, col;
    } walk[] = {
        {Qt::Key_End, Qt::ControlModifier, 512, lastColumn},
        {Qt::Key_Home, Qt::ControlModifier, 1, 1},
        {Qt::Key_Right, Qt::NoModifier, 1, 2},
        {Qt::Key_Up, Qt::NoModifier, 1, 2},  // never onto the header row
        {Qt::Key_Left, Qt::NoModifier, 1, 1},
        {Qt::Key_Left, Qt::NoModifier, 1, 1},  // nor onto the header column
    };
    for (const auto& step : walk) {
        QTest::keyClick(&grid, step.key, step.modifiers);
        EXPECT_EQ(grid.Row(), step.row) << QTest::toString(step.key);
        EXPECT_EQ(grid.Col(), step.col) << QTest::toString(step.key);
    }
    QTest::keyClick(&grid, Qt::Key_PageDown);
    EXPECT_GT(grid.Row(), 5);
    EXPECT_EQ(grid.Rows(), 513);

    const QFontMetrics metrics = grid.fontMetrics();
    for (int c = 1; c <= lastColumn; ++c) {
        EXPECT_GE(grid.columnWidth(c), metrics.horizontalAdvance(grid.records().fieldName(c))) << c;
        EXPECT_GE(grid.columnWidth(c), metrics.horizontalAdvance(text(grid.records(), 1, c))) << c;
        EXPECT_LE(grid.columnWidth(c), qMax(80, grid.viewport()->width() / 2)) << c;
    }
}

}  // namespace
