#include <cstdio>

#include "index/IndexKey.h"
#include "index/IndexTextCodes.h"
#include "index/IndexTextKey.h"

// A Jet 4 text key is, in this order:
//  - the primary codes of the characters, then 01;
//  - the accent section E: one byte per character position up to the last accent, a 02
//    ("no accent") for each plain character, the accent byte(s) for each accented one;
//    combining marks add their amount to the accent byte before them;
//  - when kana or unprintable characters occurred, 01 01, then the kana section (the small
//    and voiced forms, packed three to a byte, and a fixed marker), then 01 and one
//    record per unprintable character naming the position where it stood.
// Characters the order ignores leave no trace, so text that differs only in them shares a
// key, as it does in Jet.

namespace jet {
namespace {

using Kind = Jet4SortCode::Kind;

std::string codePointName(char16_t ch) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "U+%04X", unsigned(ch));
    return buf;
}

// The working parts of one key, kept between calls so that building a key allocates
// nothing once they have grown to the longest text seen.
struct KeyParts {
    std::vector<uint8_t> extra, unprintable, kana;
    size_t pos = 0;          // characters that produced primary codes so far
    size_t extraChars = 0;   // character positions the accent section accounts for
    bool started = false;    // anything written to the accent section yet
    size_t lead = 0;         // 1 when a combining mark came before any character

    void reset() {
        extra.clear();
        unprintable.clear();
        kana.clear();
        pos = extraChars = lead = 0;
        started = false;
    }

    // Fills the accent section with "no accent" up to the character at position p.
    void padTo(size_t p) {
        if (extraChars < p) {
            extra.insert(extra.end(), p - extraChars, uint8_t(0x02));
            extraChars = p;
        }
    }

    void addAccent(const Jet4SortCode& code, size_t p) {
        padTo(p);
        extra.insert(extra.end(), code.extra, code.extra + code.extraLength);
        ++extraChars;  // one position, whether its accent takes one byte or two
        started = true;
    }

    void addUnprintable(const Jet4SortCode& code, size_t p) {
        // Before any accent the record names the character position; after one, the place
        // in the accent section that position would take.
        const size_t q = started ? extra.size() + (p - extraChars) - lead : p;
        const uint16_t where = uint16_t(0x8000 | (7 + 4 * q));
        unprintable.insert(unprintable.end(), {uint8_t(where >> 8), uint8_t(where), uint8_t(0x06), code.unprintable});
    }

    void addModifier(const Jet4SortCode& code, size_t p) {
        padTo(p);
        if (!extra.empty()) {
            extra.back() = uint8_t(extra.back() + code.extra[0]);
        } else {
            extra.push_back(code.extra[0]);
            lead = 1;
        }
        started = true;
    }

    // Appends what follows the primary codes.
    void finish(std::vector<uint8_t>& out) {
        out.push_back(0x01);
        while (!extra.empty() && extra.back() <= 0x02) extra.pop_back();
        out.insert(out.end(), extra.begin(), extra.end());
        if (kana.empty() && unprintable.empty()) return;
        out.insert(out.end(), {0x01, 0x01});
        if (!kana.empty()) {
            // Kana of value 3 at the end say nothing; the rest go three to a byte.
            while (!kana.empty() && kana.back() == 3) kana.pop_back();
            for (size_t i = 0; i < kana.size(); i += 3) {
                uint8_t b = 0x80;
                for (size_t k = 0; k < 3; ++k)
                    if (i + k < kana.size()) b = uint8_t(b | kana[i + k] << (4 - 2 * k));
                out.push_back(b);
            }
            out.insert(out.end(), {0xFF, 0x02, 0x80, 0xFF, 0x80});
            if (!unprintable.empty()) out.push_back(0xFF);
        }
        if (!unprintable.empty()) {
            out.push_back(0x01);
            out.insert(out.end(), unprintable.begin(), unprintable.end());
        }
    }
};

void invert(std::vector<uint8_t>& out, size_t from) {
    for (size_t i = from; i < out.size(); ++i) out[i] = uint8_t(~out[i]);
}

}  // namespace

bool appendJet4TextKey(std::vector<uint8_t>& out, std::u16string_view text, bool ascending, std::string& problem) {
    text = text.substr(0, kMaxKeyCharacters);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);

    thread_local KeyParts parts;
    parts.reset();
    const size_t start = out.size();
    for (char16_t ch : text) {
        const Jet4SortCode code = jet4SortCode(ch);
        const size_t p = parts.pos;
        switch (code.kind) {
        case Kind::Ignored:
            break;
        case Kind::Simple:
            out.insert(out.end(), code.primary, code.primary + code.primaryLength);
            ++parts.pos;
            break;
        case Kind::International:
            out.insert(out.end(), code.primary, code.primary + code.primaryLength);
            parts.addAccent(code, p);
            ++parts.pos;
            break;
        case Kind::Kana:
            out.insert(out.end(), code.primary, code.primary + code.primaryLength);
            if (code.extraLength) parts.addAccent(code, p);
            parts.kana.push_back(code.kana);
            ++parts.pos;
            break;
        case Kind::Unprintable:
            parts.addUnprintable(code, p);
            break;
        case Kind::Modifier:
            parts.addModifier(code, p);
            break;
        case Kind::Surrogate:
            // Their codes follow a rule never seen at work in a file of this order: a key
            // Jet does not expect would hide the row from it.
            problem = "the character " + codePointName(ch) +
                      " (half of a character beyond U+FFFF) has no known sort code";
            if (!ascending) invert(out, start);
            return false;
        }
    }
    parts.finish(out);
    if (!ascending) {
        out.push_back(0x00);
        invert(out, start);
    }
    out.push_back(0x00);
    return true;
}

}  // namespace jet
