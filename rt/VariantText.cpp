#include "rt/VariantText.h"

namespace rt {

QString CStr(const jet::Variant& value)
{
    return QString::fromStdString(value.toString());
}

QString concatenationText(const jet::Variant& value)
{
    return value.isNull() ? QString() : CStr(value);
}

jet::Variant stringVariant(const QString& text)
{
    return jet::Variant::string(text.toStdString());
}

}  // namespace rt
