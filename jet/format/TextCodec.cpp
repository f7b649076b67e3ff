#include "format/TextCodec.h"

#include <cstring>

#include "base/Bytes.h"
#include "base/CorruptError.h"
#include "base/Utf.h"

namespace jet {

std::u16string decodeJet4Text(std::span<const uint8_t> bytes) {
    std::u16string out;
    if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
        out.reserve(bytes.size());
        bool compressed = true;
        size_t i = 2;
        while (i < bytes.size()) {
            if (bytes[i] == 0) {
                compressed = !compressed;
                ++i;
            } else if (compressed) {
                out += char16_t(bytes[i++]);
            } else {
                if (i + 1 >= bytes.size()) throw CorruptError("a compressed text value ends inside a character");
                out += char16_t(bytes[i] | (bytes[i + 1] << 8));
                i += 2;
            }
        }
        return out;
    }
    if (bytes.size() % 2 != 0) throw CorruptError("a text value has an odd number of bytes");
    out.resize(bytes.size() / 2);
    for (size_t k = 0; k < out.size(); ++k) out[k] = char16_t(bytes[2 * k] | (bytes[2 * k + 1] << 8));
    return out;
}

std::string decodeText(Version version, const CodePage& codePage, std::span<const uint8_t> bytes) {
    if (version == Version::Jet3) return codePage.toUtf8(bytes);
    // Text of ASCII characters alone, the most common kind, takes a short way.
    if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
        bool ascii = true;
        for (size_t i = 2; i < bytes.size() && ascii; ++i) ascii = bytes[i] != 0 && bytes[i] < 0x80;
        if (ascii) return std::string(bytes.begin() + 2, bytes.end());
    } else if (bytes.size() % 2 == 0) {
        std::string out(bytes.size() / 2, '\0');
        bool ascii = true;
        for (size_t k = 0; k < out.size() && ascii; ++k) {
            ascii = bytes[2 * k + 1] == 0 && bytes[2 * k] < 0x80;
            out[k] = char(bytes[2 * k]);
        }
        if (ascii) return out;
    }
    return utf16ToUtf8(decodeJet4Text(bytes));
}

namespace {

bool compressedForm(bool compress, size_t units, bool allOneByte) {
    return compress && allOneByte && units >= 3 && units <= 1024;
}

}  // namespace

void encodeJet4Text(std::string_view utf8, bool compress, std::vector<uint8_t>& out) {
    // Text of ASCII characters alone, the most common kind, takes a short way.
    bool ascii = true;
    for (const char ch : utf8) ascii = ascii && ch > 0;
    if (ascii) {
        const size_t units = utf8.size();
        if (compressedForm(compress, units, true)) {
            out.resize(2 + units);
            out[0] = 0xFF;
            out[1] = 0xFE;
            std::memcpy(out.data() + 2, utf8.data(), units);
        } else {
            out.assign(2 * units, 0);
            for (size_t k = 0; k < units; ++k) out[2 * k] = uint8_t(utf8[k]);
        }
        return;
    }
    // One pass to count the UTF-16 units and see whether all fit one byte, one to write.
    size_t units = 0;
    bool oneByte = true;
    for (size_t pos = 0; pos < utf8.size();) {
        const auto b = static_cast<unsigned char>(utf8[pos]);
        const char32_t c = b < 0x80 ? (++pos, b) : nextCodePoint(utf8, pos);
        units += c >= 0x10000 ? 2 : 1;
        oneByte = oneByte && c != 0 && c <= 0xFF;
    }
    const bool compressed = compressedForm(compress, units, oneByte);
    out.resize(compressed ? 2 + units : 2 * units);
    uint8_t* p = out.data();
    if (compressed) {
        *p++ = 0xFF;
        *p++ = 0xFE;
    }
    for (size_t pos = 0; pos < utf8.size();) {
        const auto b = static_cast<unsigned char>(utf8[pos]);
        char32_t c = b < 0x80 ? (++pos, b) : nextCodePoint(utf8, pos);
        if (compressed) {
            *p++ = uint8_t(c);
            continue;
        }
        if (c >= 0x10000) {
            c -= 0x10000;
            putLe16(p, uint16_t(0xD800 + (c >> 10)));
            p += 2;
            c = 0xDC00 + (c & 0x3FF);
        }
        putLe16(p, uint16_t(c));
        p += 2;
    }
}

std::vector<uint8_t> encodeJet4Text(std::u16string_view text, bool compress) {
    std::vector<uint8_t> out;
    bool oneByte = compressedForm(compress, text.size(), true);
    for (char16_t c : text)
        if (c == 0 || c > 0xFF) oneByte = false;
    if (oneByte) {
        out.reserve(2 + text.size());
        out.push_back(0xFF);
        out.push_back(0xFE);
        for (char16_t c : text) out.push_back(uint8_t(c));
        return out;
    }
    out.resize(2 * text.size());
    for (size_t k = 0; k < text.size(); ++k) {
        out[2 * k] = uint8_t(text[k]);
        out[2 * k + 1] = uint8_t(text[k] >> 8);
    }
    return out;
}

}  // namespace jet
