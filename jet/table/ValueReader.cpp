#include "table/ValueReader.h"

#include <cstdio>

#include "base/Bytes.h"
#include "format/TextCodec.h"
#include "table/Database.h"
#include "table/LongValue.h"

namespace jet {

namespace {

void needBytes(const Column& c, std::span<const uint8_t> b, size_t n) {
    if (b.size() < n)
        throw CorruptError("column '" + c.name + "' holds " + std::to_string(b.size()) + " bytes, too few for its type");
}

}  // namespace

int32_t adoTypeOf(const Column& c) {
    switch (c.type()) {
    case ColumnType::Bool: return ado_type::Boolean;
    case ColumnType::Byte: return ado_type::UnsignedTinyInt;
    case ColumnType::Int: return ado_type::SmallInt;
    case ColumnType::Long: return ado_type::Integer;
    case ColumnType::Money: return ado_type::Currency;
    case ColumnType::Float: return ado_type::Single;
    case ColumnType::Double: return ado_type::Double;
    case ColumnType::DateTime: return ado_type::Date;
    case ColumnType::Text: return ado_type::VarWChar;
    case ColumnType::Memo: return ado_type::LongVarWChar;
    case ColumnType::Guid: return ado_type::Guid;
    case ColumnType::Numeric: return ado_type::Numeric;
    case ColumnType::Ole: return ado_type::LongVarBinary;
    case ColumnType::Binary: return ado_type::VarBinary;
    }
    return ado_type::LongVarBinary;  // Access's own opaque types
}

std::string guidText(std::span<const uint8_t> b) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", le32(b.data()),
                  le16(b.data() + 4), le16(b.data() + 6), b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
    return buf;
}

Decimal decimalFromBytes(std::span<const uint8_t> b, uint8_t scale) {
    Decimal d;
    d.negative = b[0] & 0x80;
    for (int word = 0; word < 4; ++word) d.magnitude = (d.magnitude << 32) | le32(b.data() + 1 + 4 * word);
    d.scale = scale;
    return d;
}

Variant readValue(const Database& db, const Column& c, const ColumnBytes& stored) {
    if (c.type() == ColumnType::Bool) return Variant::boolean(stored.present);
    if (!stored.present) return Variant::null();
    auto b = stored.bytes;
    // Variable-stored numbers of length 0 occur in Access's own tables: nothing stored.
    if (b.empty() && fixedSizeOf(c.typeCode) != 0) return Variant::null();
    switch (c.type()) {
    case ColumnType::Bool: break;
    case ColumnType::Byte: needBytes(c, b, 1); return Variant::byte(b[0]);
    case ColumnType::Int: needBytes(c, b, 2); return Variant::integer(lei16(b.data()));
    case ColumnType::Long: needBytes(c, b, 4); return Variant::longValue(lei32(b.data()));
    case ColumnType::Money: needBytes(c, b, 8); return Variant::currency(lei64(b.data()));
    case ColumnType::Float: needBytes(c, b, 4); return Variant::single(lef32(b.data()));
    case ColumnType::Double: needBytes(c, b, 8); return Variant::doubleValue(lef64(b.data()));
    case ColumnType::DateTime: needBytes(c, b, 8); return Variant::date(lef64(b.data()));
    case ColumnType::Guid: needBytes(c, b, 16); return Variant::string(guidText(b));
    case ColumnType::Numeric: needBytes(c, b, 17); return Variant::decimal(decimalFromBytes(b, c.scale));
    case ColumnType::Text: return Variant::string(decodeText(db.version(), db.codePageOf(c), b));
    case ColumnType::Memo: {
        auto data = readLongValue(db, b);
        return Variant::string(decodeText(db.version(), db.codePageOf(c), data));
    }
    case ColumnType::Ole: return Variant::bytes(readLongValue(db, b));
    case ColumnType::Binary: break;
    }
    return Variant::bytes({b.begin(), b.end()});
}

}  // namespace jet
