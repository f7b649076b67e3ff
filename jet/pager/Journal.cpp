#include "pager/Journal.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_set>

#include "base/Bytes.h"

namespace jet {

namespace {

constexpr uint8_t magic[8] = {0x89, 'S', 'W', 'J', 'R', 'N', 'L', '\n'};
constexpr uint32_t formatVersion = 1;

const std::array<uint32_t, 256>& crcTable() {
    static const std::array<uint32_t, 256> table = [] {
        std::array<uint32_t, 256> t{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    return table;
}

uint32_t recordChecksum(uint32_t salt, uint32_t page, std::span<const uint8_t> bytes) {
    uint8_t prefix[8];
    putLe32(prefix, salt);
    putLe32(prefix + 4, page);
    return crc32(bytes, crc32(prefix));
}

}  // namespace

uint32_t crc32(std::span<const uint8_t> data, uint32_t crc) {
    const auto& table = crcTable();
    crc = ~crc;
    for (uint8_t b : data) crc = table[(crc ^ b) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

bool Journal::supportsPageSize(uint32_t pageSize) {
    return pageSize >= 512 && pageSize <= 65536 && (pageSize & (pageSize - 1)) == 0;
}

std::string Journal::pathFor(const std::string& databasePath) { return databasePath + "-journal"; }

void Journal::write(Env& env, const std::string& path, uint32_t pageSize, uint32_t originalPageCount,
                    uint32_t salt, std::span<const Original> originals) {
    auto file = env.open(path, OpenMode::Create);
    uint8_t header[headerSize];
    std::memcpy(header, magic, sizeof magic);
    putLe32(header + 8, formatVersion);
    putLe32(header + 12, pageSize);
    putLe32(header + 16, originalPageCount);
    putLe32(header + 20, salt);
    putLe32(header + 24, uint32_t(originals.size()));
    putLe32(header + 28, crc32({header, 28}));
    file->writeAt(0, header);

    std::vector<uint8_t> record(recordSize(pageSize));
    uint64_t offset = headerSize;
    for (const Original& o : originals) {
        putLe32(record.data(), o.page);
        std::memcpy(record.data() + 4, o.bytes, pageSize);
        putLe32(record.data() + 4 + pageSize, recordChecksum(salt, o.page, {o.bytes, pageSize}));
        file->writeAt(offset, record);
        offset += record.size();
    }
    file->sync();
    // The journal is new: without this its directory entry could vanish in a power failure
    // while the database pages it protects are already being overwritten.
    env.syncDirectory(directoryOf(path));
}

Journal Journal::read(Env& env, const std::string& path) {
    Journal j;
    {
        auto file = env.open(path, OpenMode::ReadOnly);
        j.bytes_.resize(size_t(file->size()));
        j.bytes_.resize(file->readAt(0, j.bytes_));
    }
    const std::vector<uint8_t>& b = j.bytes_;
    if (b.size() < headerSize) {
        j.defect_ = "it is shorter than its header (" + std::to_string(b.size()) + " bytes)";
        return j;
    }
    if (std::memcmp(b.data(), magic, sizeof magic) != 0) {
        j.defect_ = "it does not start with the journal's signature";
        return j;
    }
    if (crc32({b.data(), 28}) != le32(b.data() + 28)) {
        j.defect_ = "its header is torn (checksum mismatch)";
        return j;
    }
    if (le32(b.data() + 8) != formatVersion) {
        j.defect_ = "it has the unknown format version " + std::to_string(le32(b.data() + 8));
        return j;
    }
    j.pageSize_ = le32(b.data() + 12);
    j.originalPageCount_ = le32(b.data() + 16);
    const uint32_t salt = le32(b.data() + 20);
    const uint32_t count = le32(b.data() + 24);
    if (!supportsPageSize(j.pageSize_)) {
        j.defect_ = "its page size " + std::to_string(j.pageSize_) + " is not a valid page size";
        return j;
    }
    const size_t recSize = recordSize(j.pageSize_);
    if ((b.size() - headerSize) / recSize < count) {
        j.defect_ = "it holds " + std::to_string((b.size() - headerSize) / recSize) + " of its " +
                    std::to_string(count) + " records (it was cut short)";
        return j;
    }
    std::unordered_set<uint32_t> seen;
    j.records_.reserve(count);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* rec = b.data() + headerSize + i * recSize;
        const uint32_t page = le32(rec);
        std::span<const uint8_t> bytes{rec + 4, j.pageSize_};
        if (recordChecksum(salt, page, bytes) != le32(rec + 4 + j.pageSize_)) {
            j.defect_ = "record " + std::to_string(i + 1) + " is torn (checksum mismatch)";
            return j;
        }
        if (page >= j.originalPageCount_) {
            j.defect_ = "record " + std::to_string(i + 1) + " names page " + std::to_string(page) +
                        ", beyond the original " + std::to_string(j.originalPageCount_) + " pages";
            return j;
        }
        if (!seen.insert(page).second) {
            j.defect_ = "page " + std::to_string(page) + " is recorded twice";
            return j;
        }
        j.records_.emplace_back(page, size_t(rec + 4 - b.data()));
    }
    return j;
}

void Journal::remove(Env& env, const std::string& path) {
    env.remove(path);
    env.syncDirectory(directoryOf(path));
}

std::span<const uint8_t> Journal::original(uint32_t page) const {
    for (const auto& [p, offset] : records_)
        if (p == page) return {bytes_.data() + offset, pageSize_};
    return {};
}

void Journal::restore(File& database) const {
    for (const auto& [page, offset] : records_)
        database.writeAt(uint64_t(page) * pageSize_, {bytes_.data() + offset, pageSize_});
    database.truncate(uint64_t(originalPageCount_) * pageSize_);
    database.sync();
}

}  // namespace jet
