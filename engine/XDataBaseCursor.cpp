// The record cursor over the current table's record set, and the copy of a selection as
// text. These members arm no handler: an error of the record set reaches the caller.

#include "engine/Table_Selection.h"
#include "engine/XDataBase.h"
#include "host/VbConvert.h"
#include "host/VbError.h"
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

}  // namespace

jet::Field XDataBase::field(const QString& name) const
{
    return recordset_->Fields()[name.toStdString()];
}

// Row and column arithmetic is done in the run time's Long (selection indexes in its
// Integer): leaving the range is Overflow.
QString XDataBase::SelectFromTable(const Table_Selection& selection, const QString& separator)
{
    QString text;
    reopenIfClosed();
    for (int32_t k = 1; k <= selection.Count(); ++k) {
        const std::shared_ptr<Rows_Selection> area = selection.Item(host::CInt(k));
        if (!area)
            throw host::vbError(host::vberr::ObjectNotSet);
        for (int64_t c = area->Start().Column(); c <= area->Finish().Column(); ++c) {
            recordset_->MoveFirst();
            recordset_->Move(host::CLng(double(area->Start().Row()) - 2));
            for (int64_t r = area->Start().Row(); r <= area->Finish().Row(); ++r) {
                recordset_->MoveNext();
                text += concatenated(recordset_->Fields()[host::CLng(double(c) - 1)].Value()) + separator;
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
    closeRecordset();
    openQuery(cursorType, lockType);
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
    return textOf(field(fieldName).Value());
}

int32_t XDataBase::RecordCount()
{
    return recordset_->RecordCount();
}

QString XDataBase::Item(const QString& fieldName, int32_t count)
{
    recordset_->Move(count);
    return textOf(field(fieldName).Value());
}

QString XDataBase::CaptionOfField(int32_t index)
{
    return QString::fromStdString(recordset_->Fields()[host::CLng(double(index) - 1)].Name());
}

void XDataBase::setCaptionOfField(int32_t /*index*/, const QString& /*text*/) {}

int32_t XDataBase::fieldCount() const
{
    return recordset_->Fields().Count();
}

QString XDataBase::cellText(int32_t column)
{
    return concatenated(field(CaptionOfField(column)).Value());
}

}  // namespace engine
