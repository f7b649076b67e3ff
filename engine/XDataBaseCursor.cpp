// The record cursor over the current table's record set, and the copy of a selection as
// text. These members arm no handler: an error of the record set reaches the caller.

#include "engine/Table_Selection.h"
#include "engine/XDataBase.h"
#include "host/VbError.h"
#include "jet/Connection.h"
#include "jet/Recordset.h"

namespace engine {

namespace {

QString textOf(const jet::Variant& value)
{
    return QString::fromStdString(value.toString());
}

// A cell as string concatenation takes it: Null adds nothing.
QString concatenated(const jet::Variant& value)
{
    return value.isNull() ? QString() : textOf(value);
}

// Row and column arithmetic is done in the run time's Long: leaving its range is Overflow.
int32_t checkedLong(int64_t value)
{
    if (value < INT32_MIN || value > INT32_MAX)
        throw host::vbError(host::vberr::Overflow);
    return static_cast<int32_t>(value);
}

// The run time's Integer, as the selection's indexes are.
int16_t checkedInteger(int32_t value)
{
    if (value < INT16_MIN || value > INT16_MAX)
        throw host::vbError(host::vberr::Overflow);
    return static_cast<int16_t>(value);
}

}  // namespace

QString XDataBase::SelectFromTable(const Table_Selection& selection, const QString& separator)
{
    QString text;
    if (!recordsetOpen())
        reopenRecordset();
    for (int32_t k = 1; k <= selection.Count(); ++k) {
        const std::shared_ptr<Rows_Selection> area = selection.Item(checkedInteger(k));
        if (!area)
            throw host::vbError(host::vberr::ObjectNotSet);
        for (int64_t c = area->Start().Column(); c <= area->Finish().Column(); ++c) {
            recordset_->MoveFirst();
            recordset_->Move(checkedLong(int64_t(area->Start().Row()) - 2));
            for (int64_t r = area->Start().Row(); r <= area->Finish().Row(); ++r) {
                recordset_->MoveNext();
                text += concatenated(recordset_->Fields()[checkedLong(c - 1)].Value()) + separator;
            }
            // Cut the last separator: shorter than that (a column of no rows first) is
            // the run time's invalid argument to Left.
            if (text.size() < separator.size())
                throw host::vbError(host::vberr::InvalidProcedureCall);
            text.chop(separator.size());
            text += QStringLiteral("\r\n");
        }
    }
    return text;
}

void XDataBase::ReOpen(int32_t cursorType, int32_t lockType)
{
    if (recordsetOpen())
        recordset_->Close();
    openRecordset(queryText_, cursorType, lockType);
}

void XDataBase::MoveFirst()
{
    recordset_->MoveFirst();
}

bool XDataBase::EndOfRecords()
{
    return recordset_->Eof();
}

void XDataBase::Move(int32_t count)
{
    recordset_->Move(count);
}

void XDataBase::MoveNext()
{
    recordset_->MoveNext();
}

QString XDataBase::GetCurrentRecord(const QString& fieldName)
{
    return textOf(recordset_->Fields()[fieldName.toStdString()].Value());
}

int32_t XDataBase::RecordCount()
{
    return recordset_->RecordCount();
}

QString XDataBase::Item(const QString& fieldName, int32_t count)
{
    recordset_->Move(count);
    return textOf(recordset_->Fields()[fieldName.toStdString()].Value());
}

QString XDataBase::CaptionOfField(int32_t index)
{
    return QString::fromStdString(recordset_->Fields()[checkedLong(int64_t(index) - 1)].Name());
}

void XDataBase::setCaptionOfField(int32_t /*index*/, const QString& /*text*/) {}

}  // namespace engine
