#pragma once
// The run time's conversion of a field's value to text (CStr): numbers in the user's
// locale format, Null is run-time error 94.

#include <QString>

#include "jet/Variant.h"

namespace engine {

inline QString textOf(const jet::Variant& value)
{
    return QString::fromStdString(value.toString());
}

}  // namespace engine
