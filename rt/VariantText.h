#pragma once
// The engine's values as the program's text and back: what VB's CStr makes of a Variant,
// what a value adds to a string concatenation, and the String Variant a text becomes when
// it is assigned to a field.

#include <QString>

#include "jet/Variant.h"

namespace rt {

// Numbers and dates in the regional settings of jet::Locale; Null is run-time error 94.
QString CStr(const jet::Variant& value);
// As CStr, but Null adds nothing ("" & Null is "").
QString concatenationText(const jet::Variant& value);
jet::Variant stringVariant(const QString& text);

}  // namespace rt
