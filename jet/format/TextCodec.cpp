#include "format/TextCodec.h"

#include "base/Utf.h"
#include "pager/Pager.h"

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
    return utf16ToUtf8(decodeJet4Text(bytes));
}

std::vector<uint8_t> encodeJet4Text(std::u16string_view text, bool compress) {
    std::vector<uint8_t> out;
    bool oneByte = compress && text.size() >= 3 && text.size() <= 1024;
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
