#pragma once
// Index entries: a key followed by the row pointer in index form (page as three bytes
// big-endian, then the row number), and on node pages the child page as a big-endian u32.
// Entries compare as unsigned byte strings, the shorter first when one is a prefix of the
// other; since keys are self-delimiting that is key order, then page, then row.

#include <algorithm>
#include <compare>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "base/Bytes.h"

namespace jet {

inline constexpr size_t kIndexRowPointerSize = 4;
inline constexpr size_t kIndexChildSize = 4;

// The row an index entry refers to: a data page and a slot on it.
struct IndexRowPointer {
    uint32_t page = 0;
    uint8_t row = 0;
    auto operator<=>(const IndexRowPointer&) const = default;
};

inline void appendIndexRowPointer(std::vector<uint8_t>& out, IndexRowPointer p) {
    const uint8_t b[4] = {uint8_t(p.page >> 16), uint8_t(p.page >> 8), uint8_t(p.page), p.row};
    out.insert(out.end(), b, b + 4);
}

inline IndexRowPointer indexRowPointerAt(const uint8_t* p) { return {be24(p), p[3]}; }

// A leaf entry built from a key and a row.
inline std::vector<uint8_t> makeIndexEntry(std::span<const uint8_t> key, IndexRowPointer row) {
    std::vector<uint8_t> e(key.begin(), key.end());
    appendIndexRowPointer(e, row);
    return e;
}

inline std::strong_ordering compareIndexBytes(std::span<const uint8_t> a, std::span<const uint8_t> b) {
    const size_t n = std::min(a.size(), b.size());
    if (n > 0) {
        const int c = std::memcmp(a.data(), b.data(), n);
        if (c != 0) return c < 0 ? std::strong_ordering::less : std::strong_ordering::greater;
    }
    return a.size() <=> b.size();
}

// Parts of an entry (leaf entries have no child; node entries end in one).
inline std::span<const uint8_t> entryKey(std::span<const uint8_t> leafEntry) {
    return leafEntry.first(leafEntry.size() - kIndexRowPointerSize);
}
inline IndexRowPointer entryRow(std::span<const uint8_t> leafEntry) {
    return indexRowPointerAt(leafEntry.data() + leafEntry.size() - kIndexRowPointerSize);
}
inline std::span<const uint8_t> withoutChild(std::span<const uint8_t> nodeEntry) {
    return nodeEntry.first(nodeEntry.size() - kIndexChildSize);
}
inline uint32_t entryChild(std::span<const uint8_t> nodeEntry) {
    return be32(nodeEntry.data() + nodeEntry.size() - kIndexChildSize);
}

}  // namespace jet
