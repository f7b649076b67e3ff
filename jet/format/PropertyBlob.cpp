#include "format/PropertyBlob.h"

#include <cstring>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/CodePage.h"
#include "format/TextCodec.h"

namespace jet {

namespace {

constexpr size_t signatureSize = 4;
constexpr size_t blockHeader = 6;        // u32 length, u16 type
constexpr uint16_t columnBlock = 0x0001;
constexpr size_t nameAt = blockHeader + 6;  // after the u32 header length and the u16 name length

struct Block {
    size_t start;
    size_t length;
};

// The blocks, or nothing when the blob is not one this format knows.
std::optional<std::vector<Block>> blocksOf(const std::vector<uint8_t>& blob, Version version) {
    const char* signature = version == Version::Jet3 ? "KKD" : "MR2";
    if (blob.size() < signatureSize || std::memcmp(blob.data(), signature, signatureSize) != 0) return std::nullopt;
    std::vector<Block> blocks;
    for (size_t pos = signatureSize; pos < blob.size();) {
        if (blob.size() - pos < blockHeader) return std::nullopt;
        const size_t length = le32(blob.data() + pos);
        if (length < blockHeader || length > blob.size() - pos) return std::nullopt;
        blocks.push_back({pos, length});
        pos += length;
    }
    return blocks;
}

// The column a block of type 1 belongs to, as UTF-8.
std::optional<std::string> blockColumn(const std::vector<uint8_t>& blob, const Block& b, Version version,
                                       const CodePage& codePage) {
    if (le16(blob.data() + b.start + 4) != columnBlock || b.length < nameAt) return std::nullopt;
    const size_t nameLength = le16(blob.data() + b.start + blockHeader + 4);
    if (nameAt + nameLength > b.length) return std::nullopt;
    return decodeText(version, codePage, {blob.data() + b.start + nameAt, nameLength});
}

std::optional<std::vector<uint8_t>> encodeName(const std::string& name, Version version, const CodePage& codePage) {
    if (version == Version::Jet4) return encodeJet4Text(utf8ToUtf16(name), false);
    std::optional<std::string> bytes = codePage.fromUtf8(name);
    if (!bytes) return std::nullopt;
    return std::vector<uint8_t>(bytes->begin(), bytes->end());
}

template <typename Change>
std::optional<std::vector<uint8_t>> rewrite(const std::vector<uint8_t>& blob, Version version,
                                            const CodePage& codePage, const std::string& column, Change change) {
    auto blocks = blocksOf(blob, version);
    if (!blocks) return std::nullopt;
    std::vector<uint8_t> out(blob.begin(), blob.begin() + signatureSize);
    bool changed = false;
    for (const Block& b : *blocks) {
        std::optional<std::string> name = blockColumn(blob, b, version, codePage);
        if (name && equalsIgnoreCase(*name, column)) {
            changed = change(blob, b, out) || changed;
            continue;
        }
        out.insert(out.end(), blob.begin() + b.start, blob.begin() + b.start + b.length);
    }
    if (!changed) return std::nullopt;
    return out;
}

}  // namespace

std::optional<std::vector<uint8_t>> renameColumnProperties(const std::vector<uint8_t>& blob, Version version,
                                                           const CodePage& codePage, const std::string& from,
                                                           const std::string& to) {
    const std::optional<std::vector<uint8_t>> newName = encodeName(to, version, codePage);
    if (!newName) return std::nullopt;
    return rewrite(blob, version, codePage, from, [&](const std::vector<uint8_t>& in, const Block& b, std::vector<uint8_t>& out) {
        const uint8_t* block = in.data() + b.start;
        const size_t oldLength = le16(block + blockHeader + 4);
        const size_t headerLength = le32(block + blockHeader);
        std::vector<uint8_t> renamed(block, block + nameAt);
        renamed.insert(renamed.end(), newName->begin(), newName->end());
        renamed.insert(renamed.end(), block + nameAt + oldLength, block + b.length);
        putLe32(renamed.data(), uint32_t(renamed.size()));
        putLe32(renamed.data() + blockHeader, uint32_t(headerLength - oldLength + newName->size()));
        putLe16(renamed.data() + blockHeader + 4, uint16_t(newName->size()));
        out.insert(out.end(), renamed.begin(), renamed.end());
        return true;
    });
}

std::optional<std::vector<uint8_t>> removeColumnProperties(const std::vector<uint8_t>& blob, Version version,
                                                           const CodePage& codePage, const std::string& column) {
    return rewrite(blob, version, codePage, column,
                   [](const std::vector<uint8_t>&, const Block&, std::vector<uint8_t>&) { return true; });
}

}  // namespace jet
