#pragma once
// A table's design properties (captions, formats, "Required" and the like) are kept in the
// LvProp long value of its catalogue row: a signature ("KKD\0" Jet 3, "MR2\0" Jet 4), then
// blocks of a u32 length (the block's own six header bytes included) and a u16 type. A
// block of type 1 holds one column's properties and starts with that column's name, so a
// renamed column must take its block along and a dropped one leaves it behind.
//
// A blob that does not have this shape is left alone (nullopt): properties are for Access's
// user interface, and a design change is never refused because of them.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "format/Format.h"

namespace jet {

class CodePage;

// The blob with the column's block renamed; nullopt when there is nothing to change.
std::optional<std::vector<uint8_t>> renameColumnProperties(const std::vector<uint8_t>& blob, Version version,
                                                           const CodePage& codePage, const std::string& from,
                                                           const std::string& to);
// The blob without the column's block; nullopt when there is nothing to change.
std::optional<std::vector<uint8_t>> removeColumnProperties(const std::vector<uint8_t>& blob, Version version,
                                                           const CodePage& codePage, const std::string& column);

}  // namespace jet
