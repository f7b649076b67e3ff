#pragma once
// The main window's two table grids: frdMain, the read-only grid in which cells are
// selected with the mouse, and dtgMain, the editable grid of edit mode. Both show the
// record set the engine hands out through a RecordsetModel and speak in the read-only
// grid's coordinates (row 0 and column 0 are the headers; Rows() and Cols() count them).
//
// The editable grid sends what was typed when the user leaves the row or the grid, so
// nothing typed is lost and every value reaches the database as the user walks on.

#include <cstdint>
#include <memory>
#include <QTableView>

#include "ui/main/RecordsetModel.h"

namespace jet {
class Recordset;
}

namespace ui {

class TableGrid : public QTableView {
    Q_OBJECT
public:
    TableGrid(RecordsetModel::Access access, QWidget* parent = nullptr);
    ~TableGrid() override;

    // Shows the record set as it now is; the columns fit their content again. A grid that
    // is hidden (the edit grid outside edit mode) lets go of what it showed and takes the
    // record set when it is shown: a grid's row header costs memory for every row, and
    // one grid on screen is all a user looks at.
    void bind(std::shared_ptr<jet::Recordset> recordset);
    RecordsetModel& records() { return model_; }
    const RecordsetModel& records() const { return model_; }
    // Sends the edits not yet sent (see RecordsetModel::sendEdits).
    bool sendEdits() { return model_.sendEdits(); }

    // The flex grid's view of itself: the current cell, and the counts with the headers.
    int32_t Row() const;
    int32_t Col() const;
    int32_t Rows() const { return model_.rowCount(); }
    int32_t Cols() const { return model_.columnCount(); }
    // The cell under a point of the viewport, (-1, -1) outside the cells.
    QPoint cellAt(const QPoint& viewportPoint) const;

    // Tints the cells of these areas (column and row in grid coordinates, corners
    // included), so the user sees what a calculation or a copy will take. Areas may reach
    // beyond the last cell.
    void markAreas(const QList<QRect>& areas);
    const QList<QRect>& markedAreas() const { return markedAreas_; }
    bool isMarked(int32_t row, int32_t col) const;

    // Widths of the columns from their names and the texts of the rows on screen, at
    // most half the grid wide; the user drags them from there.
    void fitColumnsToContent();

signals:
    // A mouse button pressed or released over the grid, with the cell it picked.
    void MouseDown(Qt::MouseButton button, int32_t row, int32_t col);
    void MouseUp(Qt::MouseButton button, int32_t row, int32_t col);
    void currentCellChanged(int32_t row, int32_t col);

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void focusMoved(QWidget* from, QWidget* to);
    bool holds(const QWidget* widget) const;

    void bindNow(std::shared_ptr<jet::Recordset> recordset);

    RecordsetModel model_;
    QList<QRect> markedAreas_;
    bool fitPending_ = false;
    bool bindPending_ = false;
    std::shared_ptr<jet::Recordset> pending_;
};

}  // namespace ui
