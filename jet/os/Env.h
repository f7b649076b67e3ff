#pragma once
// All file access of the engine goes through these two small interfaces, so that tests
// can put a fault-injecting implementation underneath (short writes, I/O errors, a
// "crash" that drops everything not yet synced) without the engine knowing.
//
// Contract every implementation keeps:
//  - readAt returns fewer bytes than asked only at the end of the file;
//  - writeAt writes all bytes or throws IoError (a partial write may have happened);
//  - data is durable only after sync() returned; directory entries (create, remove)
//    are durable only after syncDirectory() on the folder that holds them;
//  - locks are advisory, per open file, and released when the File is destroyed.

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "jet/RuntimeError.h"

namespace jet {

// An operating-system failure on a file; the description names the path and the cause.
class IoError : public RuntimeError {
public:
    explicit IoError(const std::string& description) : RuntimeError(err::Unspecified, description) {}
};

enum class OpenMode {
    ReadOnly,    // the file must exist
    ReadWrite,   // the file must exist
    Create,      // create or truncate, read and write
};

class File {
public:
    virtual ~File() = default;
    virtual size_t readAt(uint64_t offset, std::span<uint8_t> out) = 0;
    virtual void writeAt(uint64_t offset, std::span<const uint8_t> data) = 0;
    virtual void sync() = 0;
    virtual uint64_t size() = 0;
    virtual void truncate(uint64_t size) = 0;
    // Non-blocking advisory locks on the whole file; false when another holder conflicts.
    virtual bool tryLockShared() = 0;
    virtual bool tryLockExclusive() = 0;
    virtual void unlock() = 0;
};

class Env {
public:
    virtual ~Env() = default;
    // Throws IoError when the file cannot be opened in that mode.
    virtual std::unique_ptr<File> open(const std::string& path, OpenMode mode) = 0;
    virtual bool exists(const std::string& path) = 0;
    // Removing a file that does not exist is not an error.
    virtual void remove(const std::string& path) = 0;
    virtual void syncDirectory(const std::string& dirPath) = 0;
    // True when the process may write the file (and, for a new file, create it there).
    virtual bool writable(const std::string& path) = 0;

    // The real file system.
    static Env& posix();
};

// The folder part of a path ("." when it has none).
std::string directoryOf(const std::string& path);

}  // namespace jet
