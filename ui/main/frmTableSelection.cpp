// The main window's selection (made with the mouse in the read-only grid, or a whole row
// or column at a time) and its commands on rows and columns.

#include <QAction>

#include "app/ModMain.h"
#include "engine/XDataBase.h"
#include "rt/ErrorTrap.h"
#include "rt/UiServices.h"
#include "ui/main/TableGrid.h"
#include "ui/main/frmTable.h"
#include "ui/main/frmTableBusy.h"

namespace ui {

namespace {

void placeCorner(engine::Simple_Row& corner, int32_t column, int32_t row)
{
    corner.setColumn(column);
    corner.setRow(row);
}

}  // namespace

TableGrid* frmTable::shownGrid() const
{
    return mEditMode ? dtgMain : frdMain;
}

void frmTable::frdMain_MouseDown(Qt::MouseButton button, int32_t row, int32_t col)
{
    // A press beside the cells picks none and starts nothing.
    if (button != Qt::LeftButton || mMouseDown || row < 0 || col < 0)
        return;
    placeCorner(mRange().Start(), col, row);
    mMouseDown = true;
}

void frmTable::frdMain_MouseUp(Qt::MouseButton button, int32_t row, int32_t col)
{
    if (button != Qt::LeftButton || !mMouseDown)
        return;
    // Released beside the cells: the drag ends where the grid's own selection ended.
    if (row < 0 || col < 0) {
        row = frdMain->Row();
        col = frdMain->Col();
    }
    placeCorner(mRange().Finish(), col, row);
    mSelection().AddSelection(range_.shared());
    mMouseDown = false;
    showSelection();
}

void frmTable::mnuSelString_Click()
{
    rt::trapError([&] {
        mEditMode = true;
        mnuEditView_Click();
        const int32_t row = frdMain->Row();
        placeCorner(mRange().Start(), 1, row);
        placeCorner(mRange().Finish(), frdMain->Cols(), row);
        mSelection().ClearSelection();
        mSelection().AddSelection(range_.shared());
    });
    showSelection();
}

void frmTable::mnuSelColumn_Click()
{
    rt::trapError([&] {
        mEditMode = true;
        mnuEditView_Click();
        const int32_t column = frdMain->Col();
        placeCorner(mRange().Start(), column, 1);
        placeCorner(mRange().Finish(), column, frdMain->Rows());
        mSelection().ClearSelection();
        mSelection().AddSelection(range_.shared());
    });
    showSelection();
}

void frmTable::showSelection()
{
    QList<QRect> areas;
    const engine::Table_Selection& selection = mSelection();
    for (int32_t i = 1; i <= selection.Count(); ++i) {
        const std::shared_ptr<engine::Rows_Selection> area = selection.Item(static_cast<int16_t>(i));
        if (!area)
            continue;
        const QPoint start(area->Start().Column(), area->Start().Row());
        const QPoint finish(area->Finish().Column(), area->Finish().Row());
        areas << QRect(start, finish).normalized();
    }
    frdMain->markAreas(areas);
}

void frmTable::mnuStrikeAdd_Click()
{
    if (!app::gDataBase().AddNewLine())
        return;
    rt::trapError([&] { RefreshGrid(); });
}

void frmTable::mnuStrikeDelete_Click()
{
    const int32_t row = shownGrid()->Row();
    sendGridEdits();
    {
        Busy busy(*this);
        app::gDataBase().DeleteRecord(row);
    }
    RefreshGrid();
}

void frmTable::mnuColumnAdd_Click()
{
    sendGridEdits();
    app::gRenameField = false;
    rt::UiServices::current().showModalForm(QStringLiteral("frmAddField"), objectName());
    RefreshGrid();
}

void frmTable::mnuColumnDelete_Click()
{
    const int32_t answer = rt::UiServices::current().messageBox(
        QStringLiteral("Вы действительно хотите удалить этот столбец"), rt::vbYesNo | rt::vbQuestion,
        QStringLiteral("Есть вопрос!"));
    if (answer != rt::vbYes)
        return;
    sendGridEdits();
    engine::XDataBase& database = app::gDataBase();
    const QString field = database.CaptionOfField(shownGrid()->Col());
    database.DeleteField(field);
    RefreshGrid();
}

void frmTable::mnuColumnRename_Click()
{
    // Offered in the menu, and left without effect.
}

void frmTable::mnuCopy_Click()
{
    sendGridEdits();
    Busy busy(*this);
    const QString text = app::gDataBase().SelectFromTable(mSelection(), app::gTableSeparator);
    rt::UiServices::current().setClipboardText(text);
}

void frmTable::mnuEditView_Click()
{
    mEditMode = !mEditMode;
    menuItem(QStringLiteral("mnuEditView"))->setChecked(mEditMode);
    menuItem(QStringLiteral("mnuCalc"))->setEnabled(!mEditMode);
    button(QStringLiteral("EditView"))->setChecked(mEditMode);
    showEditGrid(mEditMode);
}

}  // namespace ui
