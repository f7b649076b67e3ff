#include "ui/main/RecordsetModel.h"

#include "jet/Recordset.h"
#include "jet/RuntimeError.h"
#include "rt/UiServices.h"

namespace ui {

namespace {

// A long memo shows its beginning in the cell; the editor gets all of it.
constexpr int shownCharacters = 255;

// ADO types the grid aligns right, as numbers and dates are aligned in a datasheet.
bool isNumberOrDate(int32_t adoType)
{
    switch (adoType) {
    case 2: case 3: case 4: case 5: case 6: case 7: case 14: case 17: case 20: case 131:
        return true;
    default:
        return false;
    }
}

// Moves the record set to a record and back to where it was when it goes out of scope.
// Positions count from 0; -1 is BOF and RecordCount is EOF.
class CursorVisit {
public:
    explicit CursorVisit(jet::Recordset& rs) : rs_(rs), home_(position(rs)), at_(home_) {}
    ~CursorVisit()
    {
        try {
            moveTo(home_);
        } catch (const jet::RuntimeError&) {
            // The record set was closed or emptied under us; there is no place to go back to.
        }
    }
    CursorVisit(const CursorVisit&) = delete;
    CursorVisit& operator=(const CursorVisit&) = delete;

    void moveTo(int64_t target)
    {
        if (target == at_)
            return;
        rs_.Move(static_cast<int32_t>(target - at_));
        at_ = target;
    }

private:
    static int64_t position(const jet::Recordset& rs)
    {
        const int32_t absolute = rs.AbsolutePosition();
        if (absolute > 0)
            return absolute - 1;
        return absolute == -3 ? rs.RecordCount() : -1;
    }

    jet::Recordset& rs_;
    const int64_t home_;
    int64_t at_;
};

QString textOf(const jet::Variant& value)
{
    if (value.isNull() || value.isEmpty())
        return QString();
    if (value.type() == jet::Variant::Type::ByteArray)
        return QStringLiteral("(%1 bytes)").arg(value.asBytes().size());
    return QString::fromStdString(value.toString());
}

QString shortened(const QString& text)
{
    qsizetype end = text.indexOf(QLatin1Char('\r'));
    const qsizetype lineFeed = text.indexOf(QLatin1Char('\n'));
    if (end < 0 || (lineFeed >= 0 && lineFeed < end))
        end = lineFeed;
    if (end < 0 && text.size() <= shownCharacters)
        return text;
    const qsizetype kept = qMin<qsizetype>(end < 0 ? text.size() : end, shownCharacters);
    return text.left(kept) + QChar(0x2026);
}

}  // namespace

RecordsetModel::RecordsetModel(Access access, QObject* parent) : QAbstractTableModel(parent), access_(access) {}

RecordsetModel::~RecordsetModel() = default;

void RecordsetModel::bind(std::shared_ptr<jet::Recordset> recordset)
{
    beginResetModel();
    recordset_ = std::move(recordset);
    recordCount_ = 0;
    columns_.clear();
    rows_.clear();
    edited_ = false;
    if (recordset_ && recordset_->State() != 0) {
        recordCount_ = recordset_->RecordCount();
        const jet::Fields& fields = recordset_->Fields();
        for (int32_t i = 0; i < fields.Count(); ++i)
            columns_.push_back({QString::fromStdString(fields[i].Name()), isNumberOrDate(fields[i].Type())});
    }
    endResetModel();
}

QString RecordsetModel::fieldName(int column) const
{
    return column >= 1 && column <= int(columns_.size()) ? columns_[column - 1].name : QString();
}

bool RecordsetModel::sendEdits()
{
    if (!edited_)
        return true;
    try {
        recordset_->UpdateBatch(3);
    } catch (const jet::RuntimeError& e) {
        reportRefusal(QString::fromStdString(e.description()));
        return false;
    }
    edited_ = false;
    return true;
}

int RecordsetModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : recordCount_ + 1;
}

int RecordsetModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(columns_.size()) + 1;
}

bool RecordsetModel::isCell(const QModelIndex& index) const
{
    return index.isValid() && index.row() >= 1 && index.column() >= 1 && index.row() <= recordCount_ &&
           index.column() <= int(columns_.size());
}

const QStringList* RecordsetModel::rowTexts(int record) const
{
    if (const QStringList* kept = rows_.object(record))
        return kept;
    auto texts = std::make_unique<QStringList>();
    // Closed or shrunk under the grid (a command changed it and the grid is not rebound
    // yet): nothing to show until it is.
    if (recordset_->State() == 0 || record > recordset_->RecordCount())
        return nullptr;
    CursorVisit visit(*recordset_);
    visit.moveTo(record - 1);
    const jet::Fields& fields = recordset_->Fields();
    for (size_t c = 0; c < columns_.size(); ++c) {
        try {
            *texts << shortened(textOf(fields[int32_t(c)].Value()));
        } catch (const jet::RuntimeError&) {
            *texts << QStringLiteral("#Error");
        }
    }
    QStringList* result = texts.get();
    rows_.insert(record, texts.release());
    return result;
}

QString RecordsetModel::cellText(int record, int column, bool whole) const
{
    if (!whole) {
        const QStringList* texts = rowTexts(record);
        return texts && column <= texts->size() ? texts->at(column - 1) : QString();
    }
    if (recordset_->State() == 0 || record > recordset_->RecordCount())
        return QString();
    CursorVisit visit(*recordset_);
    visit.moveTo(record - 1);
    return textOf(recordset_->Fields()[column - 1].Value());
}

QVariant RecordsetModel::data(const QModelIndex& index, int role) const
{
    if (!isCell(index))
        return QVariant();
    try {
        switch (role) {
        case Qt::DisplayRole:
            return cellText(index.row(), index.column(), false);
        case Qt::EditRole:
            return cellText(index.row(), index.column(), true);
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(Qt::AlignVCenter |
                                       (columns_[index.column() - 1].alignRight ? Qt::AlignRight : Qt::AlignLeft));
        default:
            return QVariant();
        }
    } catch (const jet::RuntimeError&) {
        return role == Qt::DisplayRole ? QVariant(QStringLiteral("#Error")) : QVariant();
    }
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || section < 1)
        return QVariant();
    if (orientation == Qt::Horizontal)
        return fieldName(section);
    return section <= recordCount_ ? QVariant(section) : QVariant();
}

Qt::ItemFlags RecordsetModel::flags(const QModelIndex& index) const
{
    if (!isCell(index))
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return access_ == Access::Editable ? flags | Qt::ItemIsEditable : flags;
}

bool RecordsetModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (access_ != Access::Editable || role != Qt::EditRole || !isCell(index) || recordset_->State() == 0)
        return false;
    const QString text = value.toString();
    try {
        // An editor closed without a change would otherwise write the row back as it was.
        if (text == cellText(index.row(), index.column(), true))
            return false;
        CursorVisit visit(*recordset_);
        visit.moveTo(index.row() - 1);
        recordset_->Fields()[index.column() - 1].setValue(jet::Variant::string(text.toStdString()));
    } catch (const jet::RuntimeError& e) {
        reportRefusal(QString::fromStdString(e.description()));
        return false;
    }
    edited_ = true;
    rows_.remove(index.row());
    emit dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
    return true;
}

void RecordsetModel::reportRefusal(const QString& reason) const
{
    rt::UiServices::current().messageBox(QStringLiteral("Error of editing!\r\n") + reason, rt::vbCritical);
}

}  // namespace ui
