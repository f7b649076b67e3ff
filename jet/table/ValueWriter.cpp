#include "table/ValueWriter.h"

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/TextCodec.h"
#include "jet/RuntimeError.h"
#include "table/ValueConverter.h"

namespace jet {

std::vector<uint8_t> encodeValue(const Column& c, const Variant& v, Version version, const CodePage& codePage) {
    std::vector<uint8_t> out(fixedSizeOf(c.typeCode));
    uint8_t* p = out.data();
    switch (c.type()) {
    case ColumnType::Bool: return {};
    case ColumnType::Byte: p[0] = v.asByte(); return out;
    case ColumnType::Int: putLe16(p, uint16_t(v.asInteger())); return out;
    case ColumnType::Long: putLe32(p, uint32_t(v.asLong())); return out;
    case ColumnType::Money: putLe64(p, uint64_t(v.asCurrency())); return out;
    case ColumnType::Float: putLeF32(p, v.asSingle()); return out;
    case ColumnType::Double: putLeF64(p, v.asDouble()); return out;
    case ColumnType::DateTime: putLeF64(p, v.asDate()); return out;
    case ColumnType::Guid:
        if (!guidBytes(v.asString(), p)) throw RuntimeError(err::TypeMismatchVb, "Type mismatch");
        return out;
    case ColumnType::Numeric: {
        out.assign(17, 0);
        const Decimal& d = v.asDecimal();
        out[0] = d.negative ? 0x80 : 0x00;
        // Four 32-bit words, most significant first, each little-endian.
        for (int word = 0; word < 4; ++word) putLe32(out.data() + 1 + 4 * word, uint32_t(d.magnitude >> (32 * (3 - word))));
        return out;
    }
    case ColumnType::Text:
    case ColumnType::Memo: {
        if (version == Version::Jet3) {
            auto bytes = codePage.fromUtf8(v.asString());
            if (!bytes) throw RuntimeError(err::MultipleStepErrors, "The text cannot be stored in code page " +
                                                                         std::to_string(codePage.number()) + ".");
            return {bytes->begin(), bytes->end()};
        }
        // A fixed-length text is padded to its width, which a compressed value could not be.
        return encodeJet4Text(utf8ToUtf16(v.asString()), c.compressedUnicode() && !c.isFixed());
    }
    case ColumnType::Binary:
    case ColumnType::Ole: return v.asBytes();
    }
    throw RuntimeError(err::NotSupported, "The column '" + c.name + "' has a type the engine cannot write.");
}

}  // namespace jet
