#include "ui/main/TableGrid.h"

#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

namespace ui {

namespace {

constexpr int cellPadding = 14;
constexpr int minimumColumnWidth = 40;

// Paints the marked areas under the cells' texts, in the selection colour made faint, so
// the grid's own selection (the cell or drag under way) still stands out above them.
class MarkedAreaDelegate : public QStyledItemDelegate {
public:
    explicit MarkedAreaDelegate(TableGrid& grid) : QStyledItemDelegate(&grid), grid_(grid) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (grid_.isMarked(index.row(), index.column())) {
            QColor tint = option.palette.color(QPalette::Highlight);
            tint.setAlpha(70);
            painter->fillRect(option.rect, tint);
        }
        QStyledItemDelegate::paint(painter, option, index);
    }

private:
    TableGrid& grid_;
};

}  // namespace

TableGrid::TableGrid(RecordsetModel::Access access, QWidget* parent)
    : QTableView(parent), model_(access, this)
{
    setModel(&model_);
    setItemDelegate(new MarkedAreaDelegate(*this));
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setEditTriggers(access == RecordsetModel::Access::Editable
                        ? QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::AnyKeyPressed
                        : QAbstractItemView::NoEditTriggers);
    setWordWrap(false);
    // Rows are all alike: a fixed height lets the header of a huge table work out
    // positions by arithmetic instead of asking every row.
    QHeaderView* rows = verticalHeader();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(fontMetrics().height() + 6);
    rows->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setHighlightSections(true);
    // The header row and column live in the frozen headers.
    auto hideHeaderCells = [this] {
        setRowHidden(0, true);
        setColumnHidden(0, true);
    };
    hideHeaderCells();
    connect(&model_, &QAbstractItemModel::modelReset, this, hideHeaderCells);
    connect(qApp, &QApplication::focusChanged, this, &TableGrid::focusMoved);
}

TableGrid::~TableGrid()
{
    // The focus leaves the grid while the widget underneath is torn down, after the model
    // has gone.
    disconnect(qApp, nullptr, this, nullptr);
}

void TableGrid::bind(std::shared_ptr<jet::Recordset> recordset)
{
    if (isHidden() && recordset) {
        pending_ = std::move(recordset);
        bindPending_ = true;
        bindNow(nullptr);
        return;
    }
    bindPending_ = false;
    pending_.reset();
    bindNow(std::move(recordset));
}

void TableGrid::bindNow(std::shared_ptr<jet::Recordset> recordset)
{
    model_.bind(std::move(recordset));
    if (model_.recordCount() > 0 && model_.columnCount() > 1)
        setCurrentIndex(model_.index(1, 1));
    fitPending_ = true;
    if (isVisible())
        fitColumnsToContent();
    emit currentCellChanged(Row(), Col());
}

int32_t TableGrid::Row() const
{
    return currentIndex().isValid() ? currentIndex().row() : 0;
}

int32_t TableGrid::Col() const
{
    return currentIndex().isValid() ? currentIndex().column() : 0;
}

QPoint TableGrid::cellAt(const QPoint& viewportPoint) const
{
    const QModelIndex index = indexAt(viewportPoint);
    return index.isValid() ? QPoint(index.column(), index.row()) : QPoint(-1, -1);
}

void TableGrid::markAreas(const QList<QRect>& areas)
{
    markedAreas_ = areas;
    viewport()->update();
}

bool TableGrid::isMarked(int32_t row, int32_t col) const
{
    for (const QRect& area : markedAreas_)
        if (area.contains(col, row))
            return true;
    return false;
}

void TableGrid::fitColumnsToContent()
{
    fitPending_ = false;
    const int columns = model_.columnCount();
    if (columns <= 1)
        return;
    const int rowHeight = qMax(1, verticalHeader()->defaultSectionSize());
    const int firstRow = qMax(1, rowAt(0));
    const int lastRow = qMin(model_.recordCount(), firstRow + viewport()->height() / rowHeight + 1);
    const QFontMetrics cells = fontMetrics();
    const QFontMetrics names = horizontalHeader()->fontMetrics();
    const int widest = qMax(minimumColumnWidth * 2, viewport()->width() / 2);
    for (int c = 1; c < columns; ++c) {
        int width = names.horizontalAdvance(model_.fieldName(c)) + cellPadding * 2;
        for (int r = firstRow; r <= lastRow; ++r)
            width = qMax(width, cells.horizontalAdvance(model_.index(r, c).data().toString()) + cellPadding);
        setColumnWidth(c, qBound(minimumColumnWidth, width, widest));
    }
}

void TableGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    // The base class commits an open editor first, so the value typed is in the record
    // set before the row is sent.
    QTableView::currentChanged(current, previous);
    if (previous.isValid() && current.row() != previous.row())
        model_.sendEdits();
    emit currentCellChanged(Row(), Col());
}

void TableGrid::focusMoved(QWidget* from, QWidget* to)
{
    // Leaving the grid for a popup menu or a box it raised is not leaving the table.
    if (holds(from) && !holds(to) && !(to && to->window() != window()))
        model_.sendEdits();
}

bool TableGrid::holds(const QWidget* widget) const
{
    return widget && (widget == this || isAncestorOf(widget));
}

void TableGrid::mousePressEvent(QMouseEvent* event)
{
    const QPoint cell = cellAt(event->position().toPoint());
    QTableView::mousePressEvent(event);
    emit MouseDown(event->button(), cell.y(), cell.x());
}

void TableGrid::mouseReleaseEvent(QMouseEvent* event)
{
    const QPoint cell = cellAt(event->position().toPoint());
    QTableView::mouseReleaseEvent(event);
    emit MouseUp(event->button(), cell.y(), cell.x());
}

void TableGrid::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    if (bindPending_) {
        bindPending_ = false;
        bindNow(std::move(pending_));
    }
    if (fitPending_)
        fitColumnsToContent();
}

}  // namespace ui
