#pragma once
// What the engine's tests share about files: a fresh folder per test, writable copies of
// the read-only fixtures, whole-file reads and writes past every Env, a database held in
// memory (so damaged copies never touch the disk), byte strings written as hex, and
// shell commands for the independent readers.

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "os/Env.h"

namespace jet {
class Database;
}

namespace jet::testkit {

class TempDir {
public:
    // InMemory puts the folder on a RAM file system where there is one: for tests whose
    // durability is modelled by the fault-injecting Env, real syncs only cost time.
    enum class Place { Disk, InMemory };
    explicit TempDir(Place place = Place::Disk);
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// A fixture copied into a fresh temporary folder, so a test may write it.
class WritableCopy {
public:
    explicit WritableCopy(const std::string& fixtureName, TempDir::Place place = TempDir::Place::Disk);
    const std::string& path() const { return path_; }
    const TempDir& dir() const { return dir_; }
    // With the provider that opens both formats.
    std::string connectionString() const { return "Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path_; }

private:
    TempDir dir_;
    std::string path_;
};

std::string fixturePath(const std::string& name);
// Every database of the corpus, by file name, sorted.
std::vector<std::string> fixtureNames();

std::string readAll(const std::string& path);
std::vector<uint8_t> readBytes(const std::string& path);
void writeAll(const std::string& path, const std::string& bytes);

class MemoryFile final : public File {
public:
    explicit MemoryFile(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
    size_t readAt(uint64_t offset, std::span<uint8_t> out) override {
        if (offset >= bytes_.size()) return 0;
        const size_t n = std::min<size_t>(out.size(), bytes_.size() - offset);
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

std::unique_ptr<Database> openInMemory(std::vector<uint8_t> bytes);

// "7F 80 | 00 01": blanks and bars only separate.
std::vector<uint8_t> hex(std::string_view text);

// What a shell command prints on standard output.
std::string runCommand(const std::string& command);

}  // namespace jet::testkit
