#pragma once
// The pager: the only object that touches the database file. Everything above it sees
// the file as an array of fixed-size pages, read through a cache and changed only inside
// write transactions that a rollback journal makes atomic and durable.
//
// Invariants:
//  - A page is read from the file at most once; the buffer handed out by read() stays
//    at the same address for the pager's whole life, so decoded views into it (rows,
//    names) never dangle. Its contents change only through this pager: writable() hands
//    out that same buffer, and a rollback copies the originals back into it.
//  - Pages of an encrypted database are decrypted right after reading; nothing above
//    the pager ever sees cipher text. Such a database is never written.
//  - A page number at or beyond pageCount() is never read: it is reported as a
//    corrupt-file error, never as a crash. Pages appended by a transaction that rolled
//    back are beyond pageCount() again.
//  - A page may be changed only between begin() and commit() or rollback(), through the
//    buffer writable() returns; the first writable() of a page in a transaction keeps a
//    copy of its original. Nothing reaches the database file before commit().
//  - commit() writes the journal of originals and syncs it and its folder before it
//    overwrites any page of the database; it syncs the database before it removes the
//    journal, and syncs the folder after the removal, which is the moment the transaction
//    becomes durable. At every instant the file and its journal therefore describe either
//    the state before the transaction or the state after it.
//  - When commit() throws, memory shows the state before the transaction again, and so
//    does the file: restored at once while the disk still takes writes (the journal is
//    written again first if it was already removed), or else by the next open, which
//    rolls back the hot journal left behind; in that case the pager refuses to begin
//    another transaction until it is reopened. The one case no order of writes can
//    settle: a folder sync that fails after the journal's removal did reach the disk,
//    followed by a disk that takes no more writes; the transaction is then durable
//    although commit() reported the failure.
//  - The journal is "<database>-journal" beside the database. Opening, for reading or for
//    writing, rolls back a hot journal before the first page is read, and discards a
//    journal that was never completely written (the database was not touched then). A
//    hot journal that cannot be applied because the file or its folder is read-only makes
//    the open fail with err::ReadOnly rather than show a half-written file.
//  - A pager that may write holds an exclusive advisory lock on the database file and its
//    ".ldb" lock file for its whole life; one that only reads holds a shared lock. No other
//    process of ours changes the file under the cache, and a second opener gets the
//    "file already in use" error instead of a file that changes under it.

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "os/Env.h"
#include "pager/Journal.h"

namespace jet {

class DatabaseLock;

// What opening found beside the database.
struct JournalRecovery {
    enum class Outcome {
        None,        // no journal
        RolledBack,  // a hot journal: the interrupted transaction was undone
        Discarded,   // a journal that was never completely written, or not for this file
    };
    Outcome outcome = Outcome::None;
    size_t pagesRestored = 0;
    std::string detail;  // why a journal was discarded
};

class Pager {
public:
    // Tells the page size from the first bytes of a database (up to headerProbeBytes), or
    // throws when they are not a database the caller can handle. It also sees the first
    // page as it was before an interrupted transaction, to check that a journal fits.
    using PageSizeProbe = std::function<uint32_t(std::span<const uint8_t> head)>;
    static constexpr size_t headerProbeBytes = 512;

    // Opens a database file: takes the locks, rolls back a hot journal, then reads the page
    // size. OpenMode::ReadWrite means "read-write if possible": a file or folder we may not
    // write, or a database another program is reading, opens for reading only (see
    // readOnly()). Throws IoError when the file cannot be opened, the "file already in use"
    // error when another process writes it, and err::ReadOnly when it has a hot journal
    // that cannot be rolled back because the file or folder is read-only. The Env must
    // outlive the pager.
    static std::unique_ptr<Pager> open(Env& env, const std::string& path, OpenMode mode,
                                       const PageSizeProbe& pageSizeOf);

    // Creates an empty database file (no pages; append them in a transaction), replacing
    // any file of that name that nobody has open.
    static std::unique_ptr<Pager> create(Env& env, const std::string& path, uint32_t pageSize);

    // A pager that only reads a file the caller opened; it takes no locks and never writes.
    // The file's size must be a whole number of pages (checked by the caller).
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

    // The open file, for reading what lies outside the page array; writes go through
    // transactions only.
    File& file() { return *file_; }

    // True when begin() will refuse; readOnlyReason() says why, as a clause that follows
    // the file's name ("was opened for reading only").
    bool readOnly() const { return !readOnlyReason_.empty() || databaseKey_ != 0; }
    std::string readOnlyReason() const;
    const JournalRecovery& recovery() const { return recovery_; }

    // Turns a pager opened for reading a file it may write into a writer: the exclusive
    // lock on the file and the ".ldb" lock file, as open(ReadWrite) would have taken. A
    // program that only reads therefore never blocks others; the first write does. Throws
    // the "file already in use" error when another process has the file open, and
    // err::ReadOnly when the file or its folder cannot be written. Nothing to do for a
    // pager that may already write.
    void acquireWriteAccess();

    // Starts a write transaction. Throws err::ReadOnly on a read-only or encrypted database,
    // and an error when a transaction is already open or an earlier commit left the file
    // to be restored by reopening.
    void begin();
    bool inTransaction() const { return inTransaction_; }
    // The buffer of page n (the one read() returns), to be changed in place.
    uint8_t* writable(uint32_t n);
    // Adds a zeroed page at the end of the file and returns its number.
    uint32_t append();
    // Makes the transaction's changes durable; throws, with everything as before, when it
    // cannot (full disk, I/O error).
    void commit();
    // Drops the transaction's changes.
    void rollback();

private:
    Pager(Env& env, std::unique_ptr<File> file, std::string path, uint32_t pageSize);
    uint8_t* page(uint32_t n);
    void requireTransaction(const char* action) const;
    std::vector<Journal::Original> journalRecords() const;
    void restoreFile(const std::vector<Journal::Original>& records, bool journalOnDisk);
    void restoreMemory();

    Env* env_ = nullptr;  // null for a pager over a bare file
    std::unique_ptr<File> file_;
    std::unique_ptr<DatabaseLock> lock_;  // declared after file_: removed before the file closes
    std::string path_;
    uint32_t pageSize_;
    uint32_t pageCount_;
    uint32_t databaseKey_ = 0;
    std::string readOnlyReason_;
    JournalRecovery recovery_;
    std::unordered_map<uint32_t, std::unique_ptr<uint8_t[]>> cache_;

    bool upgradable_ = false;  // opened for reading a file it could write
    bool inTransaction_ = false;
    bool needsReopen_ = false;
    uint32_t originalPageCount_ = 0;
    std::unordered_map<uint32_t, std::unique_ptr<uint8_t[]>> originals_;
    std::mt19937 saltSource_;
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
