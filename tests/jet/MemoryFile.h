#pragma once
// A database file held in memory, so tests and the fuzzer can hand the engine damaged
// copies of real files without touching the disk.

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "jet/Env.h"

namespace jet::testing {

class MemoryFile final : public File {
public:
    explicit MemoryFile(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

    size_t readAt(uint64_t offset, std::span<uint8_t> out) override {
        if (offset >= bytes_.size()) return 0;
        size_t n = std::min<size_t>(out.size(), bytes_.size() - offset);
        std::memcpy(out.data(), bytes_.data() + offset, n);
        return n;
    }
    void writeAt(uint64_t offset, std::span<const uint8_t> data) override {
        if (offset + data.size() > bytes_.size()) bytes_.resize(offset + data.size());
        std::memcpy(bytes_.data() + offset, data.data(), data.size());
    }
    void sync() override {}
    uint64_t size() override { return bytes_.size(); }
    void truncate(uint64_t size) override { bytes_.resize(size); }
    bool tryLockShared() override { return true; }
    bool tryLockExclusive() override { return true; }
    void unlock() override {}

private:
    std::vector<uint8_t> bytes_;
};

inline std::vector<uint8_t> readFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

#ifdef SHEETWRIGHT_MDB_FIXTURES
inline std::string fixture(const std::string& name) { return std::string(SHEETWRIGHT_MDB_FIXTURES) + "/" + name; }
#endif

}  // namespace jet::testing
