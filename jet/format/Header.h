#pragma once
// The file header (page 0): which of the two formats a file has, its code page and
// collating order, the database key, the database password and the creation date.
//
// Invariants:
//  - A Header exists only for a file whose first bytes name a supported format; every
//    other file (later Access formats, Money files, anything else) is refused while the
//    version is detected, before a page size is chosen.
//  - bytes() holds page 0 with the RC4 mask removed, so a writer can change a field and
//    mask it again without losing the bytes nobody understands.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "format/Format.h"

namespace jet {

class Header {
public:
    // The version named by the first bytes of a file (at least 0x20 of them). Throws
    // RuntimeError (-2147467259, "Unrecognized database format") for anything else.
    static Version detectVersion(std::span<const uint8_t> firstBytes, const std::string& path);

    // Parses a whole page 0 of a file whose version was detected.
    static Header parse(Version version, std::span<const uint8_t> page0);

    Version version() const { return version_; }
    const Format& format() const { return Format::of(version_); }
    uint16_t codePage() const { return codePage_; }
    // Default collating order (LCID), 0x0409 for "General".
    uint16_t sortOrder() const { return sortOrder_; }
    uint8_t sortOrderVersion() const { return sortOrderVersion_; }
    // Non-zero: every page after page 0 is RC4-encrypted with this key.
    uint32_t databaseKey() const { return databaseKey_; }
    // Days since 1899-12-30 (Jet 4 only; 0 in Jet 3 files).
    double creationDate() const { return creationDate_; }
    // The database password in UTF-8; empty when the file has none.
    const std::string& password() const { return password_; }
    // Jet compares the database password case-sensitively.
    bool passwordMatches(const std::string& given) const { return given == password_; }

    const std::vector<uint8_t>& bytes() const { return bytes_; }

    // The RC4 mask over the header's masked region (applying it twice restores the bytes).
    static void applyMask(Version version, uint8_t* page0);

    // Page 0 of a new database, masked and ready to write: no password, no database key,
    // the "General" sort order and `codePage` (Jet 3 text is stored in it; Jet 4 files say
    // 1252 whatever text they hold). Jet 4 files get the creation date and the observed
    // constants of the engine's own new files, whose permission SIDs go with that date.
    static std::vector<uint8_t> newPage(Version version, uint16_t codePage);

private:
    Version version_ = Version::Jet4;
    uint16_t codePage_ = 0;
    uint16_t sortOrder_ = 0;
    uint8_t sortOrderVersion_ = 0;
    uint32_t databaseKey_ = 0;
    double creationDate_ = 0;
    std::string password_;
    std::vector<uint8_t> bytes_;
};

}  // namespace jet
