#pragma once
// What the table grids show: the record set the engine hands out as a data source, seen
// as a table. Nothing of it is copied. The record count and the field names are taken
// when the grid is bound; a cell is read from the record set when the view paints it, and
// only the texts of the rows painted last are kept, so a table of a million rows costs
// the grid no more than its row locations already cost the record set.
//
// Coordinates are those of the read-only flex grid, which the selection commands use:
// row 0 is the header row (the field names) and column 0 the fixed column (the record
// numbers); records and fields count from 1. The grids hide row 0 and column 0 and show
// the same texts in their frozen headers.
//
// Reading never leaves the record set's cursor anywhere else: every read or write puts
// it back where it was, because the engine's own loops (saving a table yields to the
// event loop between records) rely on the position they left.
//
// The editable model writes what the user types into the record set, where it stays
// pending (the engine opens tables in batch mode) until sendEdits() sends it; the grid
// calls that when the user leaves the row or the table.

#include <cstdint>
#include <memory>
#include <vector>
#include <QAbstractTableModel>
#include <QCache>
#include <QStringList>

namespace jet {
class Recordset;
}

namespace ui {

class RecordsetModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum class Access { ReadOnly, Editable };

    explicit RecordsetModel(Access access, QObject* parent = nullptr);
    ~RecordsetModel() override;

    // Shows the record set as it now is (nullptr or a closed one: an empty grid). Edits
    // not sent yet are dropped with the old binding: send them first.
    void bind(std::shared_ptr<jet::Recordset> recordset);
    const std::shared_ptr<jet::Recordset>& recordset() const { return recordset_; }
    int32_t recordCount() const { return recordCount_; }
    QString fieldName(int column) const;

    // Sends every value typed since the last send. A value the database refuses is
    // reported ("Error of editing!" and the reason) and stays in the grid, pending, so
    // the user can correct it; returns false then.
    bool sendEdits();
    bool hasEdits() const { return edited_; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Writes the text into the field of that record, converted to the field's type at
    // once; a value that does not fit is reported and refused.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    // How many rows of texts are kept for repainting.
    static constexpr int rowsKept = 512;

private:
    struct Column {
        QString name;
        bool alignRight = false;
    };
    bool isCell(const QModelIndex& index) const;
    // The texts of a record (1-based), read through the cursor and put back; cells that
    // cannot be read show "#Error".
    const QStringList* rowTexts(int record) const;
    QString cellText(int record, int column, bool whole) const;
    void reportRefusal(const QString& reason) const;

    Access access_;
    std::shared_ptr<jet::Recordset> recordset_;
    int32_t recordCount_ = 0;
    std::vector<Column> columns_;
    mutable QCache<int, QStringList> rows_{rowsKept};
    bool edited_ = false;
};

}  // namespace ui
