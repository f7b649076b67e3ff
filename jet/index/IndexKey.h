#pragma once
// Index keys: the byte strings an index sorts its entries by, built from a row's values.
//
// Invariants of every key built here:
//  - A key is the concatenation of one part per index column: a flag byte (present,
//    null) and the value bytes. Every part ends in a terminator, a fixed length or a
//    length byte, so no key is a proper prefix of another and whole entries (key, then
//    the row pointer) sort correctly as plain unsigned bytes.
//  - Descending columns store the bitwise inverse of the ascending form (binary segment
//    markers and the text terminator excepted, as Jet writes them).
//  - A key is exact or reported as not computable, with the reason. Nothing is guessed:
//    a wrong key would make Jet miss the row through the index or reject a valid value
//    as a duplicate.
//
// Values come in as they are stored in a row, so the same code serves the reader
// (rebuilding keys of rows in the file) and the writer (keys of a row about to be written).

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/Format.h"

namespace jet {

// The "General" collating order; the only one whose text keys are known.
inline constexpr uint16_t kGeneralCollation = 0x0409;

// What the key encoder needs to know about one column of an index.
struct IndexKeyColumn {
    ColumnType type = ColumnType::Long;
    bool ascending = true;
    Version version = Version::Jet4;
    uint16_t collation = kGeneralCollation;  // text and memo: the column's sort order (LCID)
    uint8_t collationVersion = 0;            // Jet 4 text and memo: 0 is the Access 2000-2003 order
    uint16_t codePage = 1252;                // Jet 3 text and memo: code page of the stored bytes
};

// One column value, as stored.
struct IndexKeyValue {
    enum class Kind : uint8_t { Null, Boolean, Stored, Text16 };
    Kind kind = Kind::Null;
    bool boolean = false;                // Boolean: the null-mask bit that is a BOOL column's value
    std::span<const uint8_t> stored;     // Stored: fixed value bytes (little-endian as in the row),
                                         // binary bytes, GUID bytes, or Jet 3 text bytes
    std::u16string_view text;            // Text16: Jet 4 text as UTF-16 (compression undone)

    static IndexKeyValue null() { return {}; }
    static IndexKeyValue fromBool(bool v) { return {Kind::Boolean, v, {}, {}}; }
    static IndexKeyValue fromStored(std::span<const uint8_t> bytes) { return {Kind::Stored, false, bytes, {}}; }
    static IndexKeyValue fromText(std::u16string_view t) { return {Kind::Text16, false, {}, t}; }
    bool isNull() const { return kind == Kind::Null; }
};

struct IndexKey {
    std::vector<uint8_t> bytes;  // the key; when not exact, only the bytes known to begin it
    std::string problem;         // why the key cannot be computed; empty when exact
    bool allNull = true;         // every column null: left out of "ignore nulls" indexes, never a duplicate
    bool exact() const { return problem.empty(); }
};

// The key of a row for an index with these columns (one value per column, same order).
IndexKey buildIndexKey(std::span<const IndexKeyColumn> columns, std::span<const IndexKeyValue> values);

// Appends one column's part. False (with the reason in `problem`) when it cannot be
// computed exactly; `key` then ends with the part's known beginning.
bool appendKeyColumn(std::vector<uint8_t>& key, const IndexKeyColumn& column, const IndexKeyValue& value,
                     std::string& problem);

// Appends bytes, each inverted when `invert` (descending columns).
void appendKeyBytes(std::vector<uint8_t>& out, std::span<const uint8_t> bytes, bool invert);

// Longest key the tree accepts: two entries of this size always fit on one page, which
// guarantees that splitting an overfull page succeeds.
uint32_t maxIndexKeyLength(const Format& format);

}  // namespace jet
