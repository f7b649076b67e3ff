#include "table/ValueWriter.h"

#include "base/Bytes.h"
#include "format/TextCodec.h"
#include "jet/RuntimeError.h"
#include "table/ValueConverter.h"

namespace jet {

void encodeValue(const Column& c, const Variant& v, Version version, const CodePage& codePage,
                 std::vector<uint8_t>& out) {
    out.assign(fixedSizeOf(c.typeCode), 0);
    uint8_t* p = out.data();
    switch (c.type()) {
    case ColumnType::Bool: out.clear(); return;
    case ColumnType::Byte: p[0] = v.asByte(); return;
    case ColumnType::Int: putLe16(p, uint16_t(v.asInteger())); return;
    case ColumnType::Long: putLe32(p, uint32_t(v.asLong())); return;
    case ColumnType::Money: putLe64(p, uint64_t(v.asCurrency())); return;
    case ColumnType::Float: putLeF32(p, v.asSingle()); return;
    case ColumnType::Double: putLeF64(p, v.asDouble()); return;
    case ColumnType::DateTime: putLeF64(p, v.asDate()); return;
    case ColumnType::Guid:
        if (!guidBytes(v.asString(), p)) throw RuntimeError(err::TypeMismatchVb, "Type mismatch");
        return;
    case ColumnType::Numeric: {
        out.assign(17, 0);
        const Decimal& d = v.asDecimal();
        out[0] = d.negative ? 0x80 : 0x00;
        // Four 32-bit words, most significant first, each little-endian.
        for (int word = 0; word < 4; ++word) putLe32(out.data() + 1 + 4 * word, uint32_t(d.magnitude >> (32 * (3 - word))));
        return;
    }
    case ColumnType::Text:
    case ColumnType::Memo: {
        if (version == Version::Jet3) {
            auto bytes = codePage.fromUtf8(v.asString());
            if (!bytes) throw RuntimeError(err::MultipleStepErrors, "The text cannot be stored in code page " +
                                                                         std::to_string(codePage.number()) + ".");
            out.assign(bytes->begin(), bytes->end());
            return;
        }
        // A fixed-length text is padded to its width, which a compressed value could not be.
        encodeJet4Text(v.asString(), c.compressedUnicode() && !c.isFixed(), out);
        return;
    }
    case ColumnType::Binary:
    case ColumnType::Ole: out = v.asBytes(); return;
    }
    throw RuntimeError(err::NotSupported, "The column '" + c.name + "' has a type the engine cannot write.");
}

}  // namespace jet
