// The calculation front end: the statistics over the selected cells, which the function
// library computes, and the two column scans the engine does itself.

#include "engine/Calculation.h"
#include "engine/XDataBase.h"
#include "host/FunctionLibrary.h"
#include "rt/VbConvert.h"
#include "rt/VariantText.h"
#include "jet/Recordset.h"
#include "jet/RuntimeError.h"

namespace engine {

namespace {

constexpr int32_t adOpenForwardOnly = 0;
constexpr int32_t adLockReadOnly = 1;

}  // namespace

QString XDataBase::Calculate(const Table_Selection& selection, int32_t index)
{
    if (currentTable_.isEmpty())
        return QString();
    const int32_t mode = library_->TypeNum();
    rt::StringList values;
    reopenIfClosed();
    gatherSelectedCells(*recordset_, selection, values);
    return calculateWithLibrary(*library_, index, mode, values);
}

QString XDataBase::MaxValueOfField(const QString& fieldName)
{
    return scanColumn(fieldName, [](const jet::Variant& value, const QString& best) {
        return rt::Val(best) < rt::Val(rt::CStr(value));
    });
}

QString XDataBase::MinValueOfField(const QString& fieldName)
{
    // The run time compares a Variant with a String as texts, the value written by CStr;
    // a Null compares as Null, which is never less.
    return scanColumn(fieldName, [](const jet::Variant& value, const QString& best) {
        return !value.isNull() && rt::CStr(value) < best;
    });
}

QString XDataBase::scanColumn(const QString& fieldName,
                              const std::function<bool(const jet::Variant& value, const QString& best)>& better)
{
    // An error ends the scan and gives "": a best value of part of the column would pass
    // for the column's own.
    QString best;
    try {
        closeRecordset();
        openQuery(adOpenForwardOnly, adLockReadOnly);
        recordset_->MoveFirst();
        best = rt::CStr(field(fieldName).Value());
        while (!recordset_->Eof()) {
            recordset_->MoveNext();
            if (recordset_->Eof())
                break;
            const jet::Variant value = field(fieldName).Value();
            if (better(value, best))
                best = rt::CStr(value);
        }
    } catch (const jet::RuntimeError&) {
        best.clear();
    }
    try {
        closeRecordset();
    } catch (const jet::RuntimeError&) {
    }
    return best;
}

}  // namespace engine
