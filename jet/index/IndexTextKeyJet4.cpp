#include <cstdio>

#include "index/IndexKey.h"
#include "index/IndexTextCodes.h"
#include "index/IndexTextKey.h"

// A Jet 4 text key is the primary codes, then the extra (accent) bytes, positioned by
// "no accent" fillers for the characters before them, then the unprintable records, each
// naming the position it occurred at. Trailing fillers are dropped, so text without
// accents has no extra section at all and compares by its primary codes alone.

namespace jet {
namespace {

std::string codePointName(char16_t ch) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "U+%04X", unsigned(ch));
    return buf;
}

}  // namespace

bool appendJet4TextKey(std::vector<uint8_t>& out, std::u16string_view text, bool ascending, std::string& problem) {
    text = text.substr(0, kMaxKeyCharacters);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);

    std::vector<uint8_t> primary, extra, unprintable;
    size_t pos = 0;            // characters that produced primary codes so far
    size_t extraChars = 0;     // characters the extra section accounts for
    bool anyInternational = false;

    for (char16_t ch : text) {
        const TextSortCode& code = jet4SortCode(ch);
        const size_t p = pos;
        switch (code.kind) {
        case TextSortCode::Kind::Unknown:
            problem = "the character " + codePointName(ch) + " has no known sort code";
            appendKeyBytes(out, primary, !ascending);
            return false;
        case TextSortCode::Kind::Ignored:
            break;
        case TextSortCode::Kind::Simple:
        case TextSortCode::Kind::Significant:
            primary.insert(primary.end(), code.primary, code.primary + code.primaryLength);
            ++pos;
            break;
        case TextSortCode::Kind::International:
            primary.insert(primary.end(), code.primary, code.primary + code.primaryLength);
            if (extraChars < p) {
                extra.insert(extra.end(), p - extraChars, uint8_t(0x02));
                extraChars = p;
            }
            extra.push_back(code.extra);
            ++extraChars;
            ++pos;
            anyInternational = true;
            break;
        case TextSortCode::Kind::Unprintable: {
            const size_t q = anyInternational ? extra.size() + (p - extraChars) : p;
            const uint16_t where = uint16_t(0x8000 | (7 + 4 * q));
            unprintable.push_back(uint8_t(where >> 8));
            unprintable.push_back(uint8_t(where));
            unprintable.push_back(0x06);
            unprintable.push_back(code.extra);
            break;
        }
        }
    }

    primary.push_back(0x01);
    while (!extra.empty() && extra.back() <= 0x02) extra.pop_back();

    std::vector<uint8_t> key = std::move(primary);
    key.insert(key.end(), extra.begin(), extra.end());
    if (!unprintable.empty()) {
        key.insert(key.end(), {0x01, 0x01, 0x01});
        key.insert(key.end(), unprintable.begin(), unprintable.end());
    }
    if (!ascending) key.push_back(0x00);
    appendKeyBytes(out, key, !ascending);
    out.push_back(0x00);
    return true;
}

}  // namespace jet
