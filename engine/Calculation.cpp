#include "engine/Calculation.h"

#include "engine/Table_Selection.h"
#include "host/FunctionLibrary.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"
#include "rt/VariantText.h"
#include "jet/Recordset.h"

namespace engine {

namespace {

// The run time's For loop over an Integer counter: stepping past 32767 overflows, even
// after the last pass.
template <class Body>
void forInteger(int16_t first, int16_t last, Body&& body)
{
    for (int32_t i = first; i <= last; ++i) {
        body(int16_t(i));
        if (i == INT16_MAX)
            throw rt::vbError(rt::vberr::Overflow);
    }
}

int16_t integerOf(int32_t value)
{
    return rt::CInt(double(value));
}

}  // namespace

void gatherSelectedCells(jet::Recordset& records, const Table_Selection& selection, rt::StringList& values)
{
    forInteger(1, integerOf(selection.Count()), [&](int16_t k) {
        const std::shared_ptr<Rows_Selection> area = selection.Item(k);
        if (!area)
            throw rt::vbError(rt::vberr::ObjectNotSet);
        forInteger(integerOf(area->Start().Column()), integerOf(area->Finish().Column()), [&](int16_t c) {
            const int16_t firstRow = integerOf(area->Start().Row());
            records.MoveFirst();
            records.Move(rt::CInt(double(firstRow) - 2));
            const int16_t field = rt::CInt(double(c) - 1);
            forInteger(firstRow, integerOf(area->Finish().Row()), [&](int16_t) {
                records.MoveNext();
                values.Add(rt::CStr(records.Fields()[field].Value()));
            });
        });
    });
}

QString calculateWithLibrary(host::FunctionLibrary& library, int32_t index, int32_t mode, rt::StringList& values)
{
    const bool extended = mode != 0;
    int32_t unused = 0;
    QString result;
    switch (index) {
    case 1:
        extended ? library.MinDevCratExt(values, unused, result) : library.MinDevCrat(values, unused, result);
        return result;
    case 2:
        extended ? library.MaxCratExt(values, unused, result) : library.MaxCrat(values, unused, result);
        return result;
    case 3:
        extended ? library.MidGeoExt(values, unused, result) : library.MidGeo(values, unused, result);
        return result;
    case 4: return QString::number(extended ? library.MaxExt(values, unused) : library.Max(values, unused));
    case 5: library.Mid(values, result); return result;
    case 6: return QString::number(extended ? library.MinExt(values, unused) : library.Min(values, unused));
    case 7: library.Much(values, unused, result); return result;
    case 8:
        extended ? library.MultunomialExt(values, unused, result) : library.Multunomial(values, unused, result);
        return result;
    case 9: library.Summ(values, unused, result); return result;
    case 10: return library.Dispersion(values);
    case 11: return library.Median(values);
    case 12: return library.MidHarmonic(values);
    case 13: return library.SquareDivisor(values);
    case 14: return library.Divisor(values);
    default: return QString();
    }
}

}  // namespace engine
