#include "format/Header.h"

#include <cmath>
#include <cstring>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/CodePage.h"
#include "pager/Pager.h"

namespace jet {

namespace {

constexpr uint32_t maskStart = 0x18;
constexpr uint32_t versionOffset = 0x14;
constexpr uint32_t engineNameOffset = 0x04;
constexpr uint32_t jet3SortOrderOffset = 0x3A;
constexpr uint32_t codePageOffset = 0x3C;
constexpr uint32_t databaseKeyOffset = 0x3E;
constexpr uint32_t passwordOffset = 0x42;
constexpr uint32_t jet4SortOrderOffset = 0x6E;
constexpr uint32_t creationDateOffset = 0x72;

// What a new file carries where Access files hold constants of unknown meaning.
constexpr uint8_t fixedRun[24] = {0x00, 0x01, 0x00, 0x00, 0x01, 0x01, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00,
                                  0x03, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00};
constexpr uint32_t fixedRunOffset = 0x18;
constexpr uint32_t jet3FlagOffset = 0x38;
constexpr uint32_t jet3ObservedOffset = 0x56;
constexpr uint32_t jet4ObservedOffset = 0x6A;
constexpr uint32_t jet4VersionTextOffset = 0x98;
constexpr uint8_t jet4VersionText[8] = {0x54, 0x06, 0x00, 0x00, '4', '.', '0', 0x00};
constexpr uint32_t trailerWords = 256;
// The creation date of the engine-written file whose SIDs new Jet 4 files reuse
// (42850.48..., April 2017).
constexpr uint64_t referenceCreationDate = 0x40E4EC4F6BD4AF81ull;
constexpr uint16_t generalSortOrder = 0x0409;

RuntimeError unrecognized(const std::string& path) {
    return RuntimeError(err::Unspecified, "Unrecognized database format '" + path + "'.");
}

// The 4-byte pattern that hides a Jet 4 password: the creation date's whole days as i32.
void jet4PasswordMask(double date, uint8_t out[4]) {
    int32_t days = 0;
    if (std::isfinite(date) && date > -2147483648.0 && date < 2147483648.0) days = int32_t(date);
    putLe32(out, uint32_t(days));
}

}  // namespace

void Header::applyMask(Version version, uint8_t* page0) {
    static const uint8_t key[4] = {0xC7, 0xDA, 0x39, 0x6B};
    rc4Apply(key, 4, page0 + maskStart, Format::of(version).headerMaskLength());
}

std::vector<uint8_t> Header::newPage(Version version, uint16_t codePage) {
    const Format& f = Format::of(version);
    std::vector<uint8_t> page(f.pageSize, 0);
    uint8_t* b = page.data();
    b[1] = 0x01;
    std::memcpy(b + engineNameOffset, "Standard Jet DB", 15);
    b[versionOffset] = version == Version::Jet3 ? 0x00 : 0x01;
    std::memcpy(b + fixedRunOffset, fixedRun, sizeof fixedRun);
    putLe16(b + codePageOffset, codePage);
    if (version == Version::Jet3) {
        b[jet3FlagOffset] = 0x01;
        putLe16(b + jet3SortOrderOffset, generalSortOrder);
        putLe16(b + jet3ObservedOffset, 0x251E);
    } else {
        putLe16(b + jet4ObservedOffset, 0x11A6);
        putLe16(b + jet4SortOrderOffset, generalSortOrder);
        putLe64(b + creationDateOffset, referenceCreationDate);
        // An empty password is stored as the mask itself.
        uint8_t mask[4];
        jet4PasswordMask(lef64(b + creationDateOffset), mask);
        for (uint32_t i = 0; i < f.passwordLength(); ++i) b[passwordOffset + i] = mask[i % 4];
        std::memcpy(b + jet4VersionTextOffset, jet4VersionText, sizeof jet4VersionText);
    }
    uint8_t* trailer = b + f.pageSize - 2 * trailerWords;
    for (uint32_t i = 0; i < trailerWords; ++i) putLe16(trailer + 2 * i, i == 0 ? 0x0101 : 0x0100);
    applyMask(version, b);
    return page;
}

Version Header::detectVersion(std::span<const uint8_t> first, const std::string& path) {
    if (first.size() < 0x20 || first[0] != 0x00 || first[1] != 0x01) throw unrecognized(path);
    const char* name = reinterpret_cast<const char*>(first.data() + engineNameOffset);
    if (std::memcmp(name, "Standard Jet DB", 15) != 0) throw unrecognized(path);
    switch (first[versionOffset]) {
    case 0x00: return Version::Jet3;
    case 0x01: return Version::Jet4;
    default: throw unrecognized(path);  // Access 2007 and later, or unknown
    }
}

Header Header::parse(Version version, std::span<const uint8_t> page0) {
    const Format& f = Format::of(version);
    if (page0.size() < f.pageSize) throw CorruptError("the file header is cut short");
    Header h;
    h.version_ = version;
    h.bytes_.assign(page0.begin(), page0.begin() + f.pageSize);
    uint8_t* b = h.bytes_.data();
    applyMask(version, b);
    h.codePage_ = le16(b + codePageOffset);
    h.databaseKey_ = le32(b + databaseKeyOffset);
    if (version == Version::Jet3) {
        h.sortOrder_ = le16(b + jet3SortOrderOffset);
        std::span<const uint8_t> raw(b + passwordOffset, f.passwordLength());
        size_t n = 0;
        while (n < raw.size() && raw[n] != 0) ++n;
        // A password in a code page the system cannot convert can never be matched anyway.
        try {
            h.password_ = CodePage::get(h.codePage_ ? h.codePage_ : 1252)->toUtf8(raw.first(n));
        } catch (const RuntimeError&) {
            h.password_ = std::string(reinterpret_cast<const char*>(raw.data()), n);
        }
    } else {
        h.sortOrder_ = le16(b + jet4SortOrderOffset);
        h.sortOrderVersion_ = b[jet4SortOrderOffset + 3];
        h.creationDate_ = lef64(b + creationDateOffset);
        uint8_t mask[4];
        jet4PasswordMask(h.creationDate_, mask);
        std::u16string pw;
        for (uint32_t i = 0; i + 1 < f.passwordLength(); i += 2) {
            char16_t c = char16_t((b[passwordOffset + i] ^ mask[i % 4]) | ((b[passwordOffset + i + 1] ^ mask[(i + 1) % 4]) << 8));
            if (c == 0) break;
            pw += c;
        }
        h.password_ = utf16ToUtf8(pw);
    }
    return h;
}

}  // namespace jet
