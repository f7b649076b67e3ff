#include "jet/Field.h"

#include "ado/RecordSource.h"
#include "base/Utf.h"
#include "jet/Recordset.h"
#include "jet/RuntimeError.h"

namespace jet {

namespace {

RuntimeError notFound() {
    return RuntimeError(err::ItemNotFound,
                        "Item cannot be found in the collection corresponding to the requested name or ordinal.");
}

}  // namespace

const std::string& Field::Name() const { return rs_->source().fields()[index_].name; }
int32_t Field::Type() const { return rs_->source().fields()[index_].type; }
int32_t Field::DefinedSize() const { return rs_->source().fields()[index_].definedSize; }
Variant Field::Value() const { return rs_->valueAt(index_); }
void Field::setValue(const Variant& value) const { rs_->setValueAt(index_, value); }

int32_t Fields::Count() const { return int32_t(rs_.source().fields().size()); }

Field Fields::Item(int32_t index) const {
    if (index < 0 || index >= Count()) throw notFound();
    return Field(rs_, size_t(index));
}

Field Fields::Item(std::string_view name) const {
    const auto& fields = rs_.source().fields();
    for (size_t i = 0; i < fields.size(); ++i)
        if (equalsIgnoreCase(fields[i].name, name)) return Field(rs_, i);
    throw notFound();
}

}  // namespace jet
