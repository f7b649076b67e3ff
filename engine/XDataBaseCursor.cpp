// The record cursor over the current table's record set, and the copy of a selection as
// text. These members arm no handler: an error of the record set reaches the caller.

#include "engine/Table_Selection.h"
#include "engine/XDataBase.h"
#include "jet/Recordset.h"
#include "rt/VariantText.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"

namespace engine {

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
        const std::shared_ptr<Rows_Selection> area = selection.Item(rt::CInt(k));
        if (!area)
            throw rt::vbError(rt::vberr::ObjectNotSet);
        for (int64_t c = area->Start().Column(); c <= area->Finish().Column(); ++c) {
            recordset_->MoveFirst();
            recordset_->Move(rt::CLng(double(area->Start().Row()) - 2));
            for (int64_t r = area->Start().Row(); r <= area->Finish().Row(); ++r) {
                recordset_->MoveNext();
                text += rt::concatenationText(recordset_->Fields()[rt::CLng(double(c) - 1)].Value()) + separator;
            }
            // Cut the last separator: shorter than that (a column of no rows first) is
            // the run time's invalid argument to Left.
            if (text.size() < separator.size())
                throw rt::vbError(rt::vberr::InvalidProcedureCall);
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
    return rt::CStr(field(fieldName).Value());
}

int32_t XDataBase::RecordCount()
{
    return recordset_->RecordCount();
}

QString XDataBase::Item(const QString& fieldName, int32_t count)
{
    recordset_->Move(count);
    return rt::CStr(field(fieldName).Value());
}

QString XDataBase::CaptionOfField(int32_t index)
{
    return QString::fromStdString(recordset_->Fields()[rt::CLng(double(index) - 1)].Name());
}

void XDataBase::setCaptionOfField(int32_t /*index*/, const QString& /*text*/) {}

int32_t XDataBase::fieldCount() const
{
    return recordset_->Fields().Count();
}

QString XDataBase::cellText(int32_t column)
{
    return rt::concatenationText(field(CaptionOfField(column)).Value());
}

}  // namespace engine
