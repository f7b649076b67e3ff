#pragma once
// The pager: the only object that touches the database file. Everything above it sees
// the file as an array of fixed-size pages.
//
// Invariants:
//  - A page is read from the file at most once; the buffer handed out by read() stays
//    at the same address for the pager's whole life, so decoded views into it (rows,
//    names) never dangle. Its contents change only through this pager's own writes.
//  - Pages of an encrypted database are decrypted right after reading; nothing above
//    the pager ever sees cipher text.
//  - A page number at or beyond pageCount() is never read: it is reported as a
//    corrupt-file error, never as a crash.

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Env.h"

namespace jet {

class Pager {
public:
    // Takes the open file; its size must be a whole number of pages (checked by the caller).
    Pager(std::unique_ptr<File> file, std::string path, uint32_t pageSize);
    ~Pager();
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    uint32_t pageSize() const { return pageSize_; }
    uint32_t pageCount() const { return pageCount_; }
    const std::string& path() const { return path_; }

    // The contents of page n. Throws a corrupt-file error when n is out of range.
    const uint8_t* read(uint32_t n);

    // Pages n >= 1 of a database with a non-zero database key are RC4-encrypted.
    void setDatabaseKey(uint32_t key) { databaseKey_ = key; }

    File& file() { return *file_; }

private:
    std::unique_ptr<File> file_;
    std::string path_;
    uint32_t pageSize_;
    uint32_t pageCount_;
    uint32_t databaseKey_ = 0;
    std::unordered_map<uint32_t, std::unique_ptr<uint8_t[]>> cache_;
};

// Raised for anything in the file that contradicts the format: the file cannot be trusted.
class CorruptError : public RuntimeError {
public:
    explicit CorruptError(const std::string& detail)
        : RuntimeError(err::Unspecified, "The database file is damaged: " + detail) {}
};

// RC4 as the file format uses it (header mask, page encryption).
void rc4Apply(const uint8_t* key, size_t keyLen, uint8_t* data, size_t len);

}  // namespace jet
