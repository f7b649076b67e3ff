#pragma once
// The rollback journal: the original contents of every page a transaction changes, kept
// in "<database>-journal" beside the database while the transaction is being written.
//
// Layout (little-endian):
//   header, 32 bytes: magic "\x89SWJRNL\n", u32 format version (1), u32 page size,
//     u32 page count of the database before the transaction, u32 salt, u32 record count,
//     u32 CRC-32 of the 28 bytes before it;
//   then per record: u32 page number, the page's original bytes, u32 CRC-32 of the salt,
//     the page number and the bytes.
//
// Invariants:
//  - A journal is written completely and synced (file and folder) before the database is
//    touched. So a journal that fails any check (torn header, a record missing or with a
//    wrong checksum) was never fully written, the database was not changed, and the
//    journal is simply discarded.
//  - The salt is new for every transaction and sealed into every record, so records left
//    over from an older journal in the same disk blocks can never pass for current ones.
//  - Bytes after the last record the header counts are ignored: the header is sealed by
//    its own checksum, so it cannot claim fewer records than were written.
//  - A journal that passes every check is "hot": restoring its originals and cutting the
//    file back to the original page count gives exactly the state before the transaction,
//    whether the database had been written partly, completely or not at all.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "os/Env.h"

namespace jet {

class Journal {
public:
    struct Original {
        uint32_t page;
        const uint8_t* bytes;  // pageSize bytes
    };

    static std::string pathFor(const std::string& databasePath);

    // Creates the journal, writes every record and syncs the file and its folder. Throws
    // IoError; a journal cut short by a failure fails the checks of read().
    static void write(Env& env, const std::string& path, uint32_t pageSize, uint32_t originalPageCount,
                      uint32_t salt, std::span<const Original> originals);

    // Reads and checks the journal at path, which must exist. Throws IoError only when the
    // file cannot be read; every defect of its contents is reported through defect().
    static Journal read(Env& env, const std::string& path);

    // Removes the journal and syncs its folder, so the removal outlives a power failure.
    static void remove(Env& env, const std::string& path);

    // Empty when the journal is hot; otherwise why it cannot be used.
    const std::string& defect() const { return defect_; }
    bool hot() const { return defect_.empty(); }

    uint32_t pageSize() const { return pageSize_; }
    uint32_t originalPageCount() const { return originalPageCount_; }
    size_t recordCount() const { return records_.size(); }
    // The original bytes of page n, or an empty span when the journal has none for it.
    std::span<const uint8_t> original(uint32_t page) const;

    // Puts every original back into the database, cuts it to its original size and syncs it.
    // Only for a hot journal.
    void restore(File& database) const;

    // Marks a hot journal unusable, for a reason its own checks cannot see (it belongs to
    // another database).
    void reject(std::string defect) { defect_ = std::move(defect); }

    // Powers of two from 512 to 65536 bytes.
    static bool supportsPageSize(uint32_t pageSize);

    static constexpr size_t headerSize = 32;
    static size_t recordSize(uint32_t pageSize) { return 8 + size_t(pageSize); }

private:
    Journal() = default;

    std::string defect_;
    uint32_t pageSize_ = 0;
    uint32_t originalPageCount_ = 0;
    std::vector<uint8_t> bytes_;             // the whole file
    std::vector<std::pair<uint32_t, size_t>> records_;  // page number, offset of its bytes
};

// CRC-32 (the polynomial of zip and PNG), continuing from crc; 0 starts a new one.
uint32_t crc32(std::span<const uint8_t> data, uint32_t crc = 0);

}  // namespace jet
