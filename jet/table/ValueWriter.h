#pragma once
// The stored bytes of a value already converted to its column's kind (ValueConverter):
// the inverse of ValueReader. Long values (memo, OLE) get the bytes of their data here;
// where those bytes go (inline, one long-value row, a chain) is LongValueWriter's choice.

#include <cstdint>
#include <vector>

#include "format/CodePage.h"
#include "format/Format.h"
#include "format/TableDef.h"
#include "jet/Variant.h"

namespace jet {

// The bytes of a non-null value; for a fixed column exactly its fixed size.
std::vector<uint8_t> encodeValue(const Column& column, const Variant& value, Version version, const CodePage& codePage);

}  // namespace jet
