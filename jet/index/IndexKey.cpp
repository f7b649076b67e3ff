#include "index/IndexKey.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "index/IndexTextKey.h"

namespace jet {
namespace {

constexpr uint8_t kFlagPresentAscending = 0x7F;
constexpr uint8_t kFlagNullAscending = 0x00;

std::string sizeProblem(const char* typeName, size_t expected, size_t found) {
    char buf[96];
    std::snprintf(buf, sizeof buf, "a %s value must have %zu bytes, the row holds %zu", typeName, expected, found);
    return buf;
}

// Integers: big-endian two's complement with the sign bit flipped, so that negative
// numbers sort before positive ones as unsigned bytes.
void appendInteger(std::vector<uint8_t>& key, std::span<const uint8_t> le, bool ascending) {
    uint8_t be[8];
    const size_t n = le.size();
    for (size_t i = 0; i < n; ++i) be[i] = le[n - 1 - i];
    be[0] ^= 0x80;
    appendKeyBytes(key, {be, n}, !ascending);
}

// IEEE numbers: positive values get the sign bit set, negative ones are inverted, so the
// unsigned byte order follows the numeric order.
void appendFloating(std::vector<uint8_t>& key, std::span<const uint8_t> le, bool ascending) {
    uint8_t be[8];
    const size_t n = le.size();
    for (size_t i = 0; i < n; ++i) be[i] = le[n - 1 - i];
    const bool negative = (be[0] & 0x80) != 0;
    if (negative) {
        for (size_t i = 0; i < n; ++i) be[i] = uint8_t(~be[i]);
    } else {
        be[0] ^= 0x80;
    }
    appendKeyBytes(key, {be, n}, !ascending);
}

// Binary data in segments of eight bytes: every full segment but the last is followed by
// 0x09 ("more follows"), the last one is zero-padded and followed by its real length, which
// makes the encoding self-delimiting and keeps shorter values first.
void appendSegmented(std::vector<uint8_t>& key, std::span<const uint8_t> bytes, bool ascending) {
    const bool invert = !ascending;
    size_t at = 0;
    while (bytes.size() - at > 8) {
        appendKeyBytes(key, bytes.subspan(at, 8), invert);
        key.push_back(0x09);
        at += 8;
    }
    uint8_t last[9] = {};
    const size_t n = bytes.size() - at;
    std::copy(bytes.begin() + ptrdiff_t(at), bytes.end(), last);
    last[8] = uint8_t(n);
    appendKeyBytes(key, last, invert);
}

// GUIDs sort by their textual form: the first three groups are stored little-endian.
void appendGuid(std::vector<uint8_t>& key, std::span<const uint8_t> stored, bool ascending) {
    static constexpr size_t kTextOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    uint8_t text[16];
    for (size_t i = 0; i < 16; ++i) text[i] = stored[kTextOrder[i]];
    appendSegmented(key, text, ascending);
}

// Decimal: sign byte, then the 128-bit magnitude made fully big-endian (it is stored as four
// little-endian words, most significant word first). Negative values are inverted so that
// larger magnitudes sort first, and the sign byte is replaced by 0x00 (negative) or 0xFF.
bool appendNumeric(std::vector<uint8_t>& key, std::span<const uint8_t> stored, bool ascending, std::string& problem) {
    if (!ascending) {
        problem = "descending keys of decimal columns are not known";
        return false;
    }
    uint8_t be[17];
    const bool negative = (stored[0] & 0x80) != 0;
    be[0] = stored[0];
    for (size_t word = 0; word < 4; ++word)
        for (size_t i = 0; i < 4; ++i) be[1 + word * 4 + i] = stored[1 + word * 4 + (3 - i)];
    if (negative)
        for (uint8_t& b : be) b = uint8_t(~b);
    be[0] = negative ? 0x00 : 0xFF;
    key.insert(key.end(), be, be + 17);
    return true;
}

bool textCollationKnown(const IndexKeyColumn& column, std::string& problem) {
    const bool general = column.collation == kGeneralCollation &&
                         (column.version == Version::Jet3 || column.collationVersion == 0);
    if (general) return true;
    char buf[128];
    std::snprintf(buf, sizeof buf,
                  "text in the collating order 0x%04X (version %u) cannot be indexed: only the General order is known",
                  unsigned(column.collation), unsigned(column.collationVersion));
    problem = buf;
    return false;
}

struct FixedType {
    const char* name;
    size_t size;
};

FixedType fixedType(ColumnType type) {
    switch (type) {
    case ColumnType::Byte: return {"Byte", 1};
    case ColumnType::Int: return {"Integer", 2};
    case ColumnType::Long: return {"Long", 4};
    case ColumnType::Money: return {"Currency", 8};
    case ColumnType::Float: return {"Single", 4};
    case ColumnType::Double: return {"Double", 8};
    case ColumnType::DateTime: return {"Date/Time", 8};
    case ColumnType::Guid: return {"GUID", 16};
    case ColumnType::Numeric: return {"Decimal", 17};
    default: return {nullptr, 0};
    }
}

void requireKind(const IndexKeyValue& value, IndexKeyValue::Kind kind) {
    if (value.kind != kind) throw std::invalid_argument("index key value given in the wrong form for its column");
}

}  // namespace

void appendKeyBytes(std::vector<uint8_t>& out, std::span<const uint8_t> bytes, bool invert) {
    if (!invert) {
        out.insert(out.end(), bytes.begin(), bytes.end());
        return;
    }
    for (uint8_t b : bytes) out.push_back(uint8_t(~b));
}

bool appendKeyColumn(std::vector<uint8_t>& key, const IndexKeyColumn& column, const IndexKeyValue& value,
                     std::string& problem) {
    const bool asc = column.ascending;
    const uint8_t present = asc ? kFlagPresentAscending : uint8_t(~kFlagPresentAscending);

    // A Yes/No column is never null: its value is its null-mask bit.
    if (column.type == ColumnType::Bool) {
        const bool v = value.kind == IndexKeyValue::Kind::Boolean && value.boolean;
        key.push_back(present);
        key.push_back(asc == v ? 0x00 : 0xFF);
        return true;
    }
    if (value.isNull()) {
        key.push_back(asc ? kFlagNullAscending : uint8_t(~kFlagNullAscending));
        return true;
    }

    key.push_back(present);
    switch (column.type) {
    case ColumnType::Text:
    case ColumnType::Memo:
        if (!textCollationKnown(column, problem)) return false;
        if (column.version == Version::Jet4) {
            requireKind(value, IndexKeyValue::Kind::Text16);
            return appendJet4TextKey(key, value.text, asc, problem);
        }
        requireKind(value, IndexKeyValue::Kind::Stored);
        return appendJet3TextKey(key, value.stored, column.codePage, asc, problem);
    case ColumnType::Binary:
        requireKind(value, IndexKeyValue::Kind::Stored);
        appendSegmented(key, value.stored, asc);
        return true;
    default:
        break;
    }

    const FixedType fixed = fixedType(column.type);
    if (!fixed.name) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "columns of type 0x%02X cannot be indexed", unsigned(column.type));
        problem = buf;
        return false;
    }
    requireKind(value, IndexKeyValue::Kind::Stored);
    if (value.stored.size() != fixed.size) {
        problem = sizeProblem(fixed.name, fixed.size, value.stored.size());
        return false;
    }
    switch (column.type) {
    case ColumnType::Byte:
        appendKeyBytes(key, value.stored, !asc);
        return true;
    case ColumnType::Int:
    case ColumnType::Long:
    case ColumnType::Money:
        appendInteger(key, value.stored, asc);
        return true;
    case ColumnType::Float:
    case ColumnType::Double:
    case ColumnType::DateTime:
        appendFloating(key, value.stored, asc);
        return true;
    case ColumnType::Guid:
        appendGuid(key, value.stored, asc);
        return true;
    case ColumnType::Numeric:
        return appendNumeric(key, value.stored, asc, problem);
    default:
        throw std::logic_error("fixed key type without an encoder");
    }
}

IndexKey buildIndexKey(std::span<const IndexKeyColumn> columns, std::span<const IndexKeyValue> values) {
    if (columns.size() != values.size()) throw std::invalid_argument("one value per index column is needed");
    IndexKey result;
    for (size_t i = 0; i < columns.size(); ++i)
        if (columns[i].type == ColumnType::Bool || !values[i].isNull()) result.allNull = false;
    for (size_t i = 0; i < columns.size(); ++i)
        if (!appendKeyColumn(result.bytes, columns[i], values[i], result.problem)) break;
    return result;
}

uint32_t maxIndexKeyLength(const Format& format) { return format.maxIndexEntryBytes / 2 - 16; }

}  // namespace jet
