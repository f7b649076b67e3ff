#include <algorithm>
#include <cstdio>

#include "index/IndexKey.h"
#include "index/IndexTextCodes.h"
#include "index/IndexTextKey.h"

// A Jet 3 text key is the primary codes followed by an accent section of nibbles: one
// per accented letter, preceded by a "2" for every significant (accentable) letter since
// the previous accented one. Without accents the key simply ends in 0x00.

namespace jet {
namespace {

std::string unknownByteProblem(uint8_t byte, uint16_t codePage) {
    if (codePage == 1251)
        return "Cyrillic text cannot be indexed in an Access 97 database (the sort codes Jet 3 uses for it are not "
               "known)";
    char buf[96];
    std::snprintf(buf, sizeof buf, "the byte 0x%02X of code page %u has no known sort code", unsigned(byte),
                  unsigned(codePage));
    return buf;
}

}  // namespace

bool appendJet3TextKey(std::vector<uint8_t>& out, std::span<const uint8_t> bytes, uint16_t codePage, bool ascending,
                       std::string& problem) {
    bytes = bytes.first(std::min(bytes.size(), kMaxKeyCharacters));
    while (!bytes.empty() && bytes.back() == ' ') bytes = bytes.first(bytes.size() - 1);

    std::vector<uint8_t> primary;
    std::vector<uint8_t> nibbles;  // empty until the first accented letter
    size_t pendingLetters = 0;

    for (uint8_t b : bytes) {
        if (codePage != 1252 && b >= 0x80) {
            problem = unknownByteProblem(b, codePage);
            appendKeyBytes(out, primary, !ascending);
            return false;
        }
        const TextSortCode& code = jet3SortCode(b);
        switch (code.kind) {
        case TextSortCode::Kind::Ignored:
            break;
        case TextSortCode::Kind::Significant:
            ++pendingLetters;
            [[fallthrough]];
        case TextSortCode::Kind::Simple:
            primary.insert(primary.end(), code.primary, code.primary + code.primaryLength);
            break;
        case TextSortCode::Kind::International:
            primary.insert(primary.end(), code.primary, code.primary + code.primaryLength);
            if (nibbles.empty()) nibbles.push_back(0);
            nibbles.insert(nibbles.end(), pendingLetters, uint8_t(2));
            pendingLetters = 0;
            nibbles.push_back(code.extra);
            break;
        case TextSortCode::Kind::Unknown:
        case TextSortCode::Kind::Unprintable:
            problem = unknownByteProblem(b, codePage);
            appendKeyBytes(out, primary, !ascending);
            return false;
        }
    }

    if (nibbles.empty()) {
        primary.push_back(0x00);
    } else {
        nibbles.push_back(0);
        for (size_t i = 0; i < nibbles.size(); i += 2)
            primary.push_back(uint8_t((nibbles[i] << 4) | (i + 1 < nibbles.size() ? nibbles[i + 1] : 0)));
    }
    appendKeyBytes(out, primary, !ascending);
    return true;
}

}  // namespace jet
