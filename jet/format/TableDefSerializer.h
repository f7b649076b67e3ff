#pragma once
// Writing a table definition: the stream from the structure (the inverse of
// TableDef::parse) and the TDEF pages that carry it.
//
// Invariants:
//  - Parsing a definition and serializing it again gives back the stream as stored, byte
//    for byte: unknown header bytes, descriptor bytes nobody interprets and the file order
//    of descriptors all come from what was parsed. Only what the structure says is
//    written over them.
//  - Parts made from nothing carry the constants Access writes (Jet 4 magic numbers, the
//    column number repeated, Jet 3's 1 after it) and zeros elsewhere.
//  - The stream's length field always equals its length, and it ends with 0xFFFF.
//  - The first page carries stream bytes 0 up to the page size, each continuation page the
//    next bytes after its own 8-byte header; Jet 3 pages say "VC" where Jet 4 pages keep
//    their free space.

#include <cstdint>
#include <span>
#include <vector>

#include "format/Format.h"
#include "format/TableDef.h"

namespace jet {

class CodePage;

// The definition stream. Throws RuntimeError when a name cannot be stored (a Jet 3 name
// with characters the code page lacks, or longer than a name may be).
std::vector<uint8_t> serializeTableDef(const Format& format, const CodePage& codePage, const TableDef& def);

// How many TDEF pages a stream of this length takes.
uint32_t tableDefPageCount(const Format& format, size_t streamLength);

// The contents of the TDEF pages for the stream, chained in the order given; `pages` has
// exactly tableDefPageCount() entries.
std::vector<std::vector<uint8_t>> tableDefPageImages(const Format& format, std::span<const uint8_t> stream,
                                                     std::span<const uint32_t> pages);

}  // namespace jet
