// Writing cells, adding and deleting rows, and the column statements. Written values
// stay pending in the record set (it is opened batch-optimistic) until AddValue sends the
// whole batch or a row update sends its row.

#include "engine/XDataBase.h"
#include "jet/Recordset.h"
#include "rt/ErrorTrap.h"
#include "rt/UiServices.h"
#include "rt/VariantText.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"

namespace engine {

namespace {

constexpr int32_t adAffectCurrent = 1;
constexpr int32_t adAffectAll = 3;

// Row arithmetic in the run time's Long: leaving its range is Overflow.
int32_t rowOffset(int32_t row)
{
    return rt::CLng(double(row) - 1);
}

}  // namespace

void XDataBase::setItem(const QString& fieldName, int32_t count, const QString& value)
{
    recordset_->Move(count);
    field(fieldName).setValue(rt::stringVariant(value));
}

void XDataBase::setCell(int32_t column, const QString& value)
{
    field(CaptionOfField(column)).setValue(rt::stringVariant(value));
}

bool XDataBase::AddValue(const QString& fieldName, int32_t row, const QString& value)
{
    const auto error = rt::trapError([&] {
        reopenIfClosed();
        recordset_->MoveFirst();
        recordset_->Move(rowOffset(row));
        field(fieldName).setValue(rt::stringVariant(value));
        recordset_->UpdateBatch(adAffectAll);
    });
    if (!error)
        return true;
    rt::UiServices::current().messageBox(QStringLiteral("Error of editing!"), rt::vbOKOnly | rt::vbCritical);
    return false;
}

bool XDataBase::AddNewLine()
{
    return !rt::trapError([&] {
        recordset_->AddNew();
        recordset_->Fields()[0].setValue(jet::Variant::longValue(recordset_->RecordCount()));
        recordset_->Update();
    });
}

bool XDataBase::DeleteRecord(int32_t row)
{
    rt::UiServices& services = rt::UiServices::current();
    const auto error = rt::trapError([&] {
        reopenIfClosed();
        recordset_->MoveFirst();
        // Shown before every deletion, whatever row goes; a Null shows as an empty box.
        const jet::Variant first = recordset_->Fields()[0].Value();
        services.messageBox(rt::concatenationText(first), rt::vbOKOnly);
        recordset_->Move(rowOffset(row));
        recordset_->Delete(adAffectCurrent);
        recordset_->MoveFirst();
        recordset_->Close();
    });
    if (!error)
        return true;
    services.messageBox(rt::descriptionOf(*error), rt::vbCritical, QStringLiteral("Number:") + QString::number(error->number()));
    return false;
}

bool XDataBase::alterCurrentTable(const QString& change)
{
    closeRecordset();
    lastAlterError_ = rt::trapError([&] {
        execute(QStringLiteral("ALTER TABLE ") + currentTable_ + change);
        reopenRecordset();
    });
    return !lastAlterError_;
}

bool XDataBase::AddField(const QString& name, const QString& type)
{
    if (!alterCurrentTable(QStringLiteral(" ADD ") + name + QStringLiteral(" ") + type))
        return false;
    Columns().Add(name);
    columnsChanged_ = true;
    return true;
}

bool XDataBase::DeleteField(const QString& name)
{
    return alterCurrentTable(QStringLiteral(" DROP ") + name);
}

bool XDataBase::ReNameField(const QString& oldName, const QString& newName, const QString& /*unused*/)
{
    return alterCurrentTable(QStringLiteral(" RENAME ") + oldName + QStringLiteral(" TO ") + newName);
}

}  // namespace engine
