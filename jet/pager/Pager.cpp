#include "pager/Pager.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/Bytes.h"
#include "os/DatabaseLock.h"
#include "pager/Journal.h"

namespace jet {

void rc4Apply(const uint8_t* key, size_t keyLen, uint8_t* data, size_t len) {
    uint8_t s[256];
    for (int i = 0; i < 256; ++i) s[i] = uint8_t(i);
    uint8_t j = 0;
    for (int i = 0; i < 256; ++i) {
        j = uint8_t(j + s[i] + key[size_t(i) % keyLen]);
        std::swap(s[i], s[j]);
    }
    uint8_t a = 0, b = 0;
    for (size_t k = 0; k < len; ++k) {
        a = uint8_t(a + 1);
        b = uint8_t(b + s[a]);
        std::swap(s[a], s[b]);
        data[k] ^= s[uint8_t(s[a] + s[b])];
    }
}

namespace {

std::vector<uint8_t> readHead(File& file) {
    std::vector<uint8_t> head(Pager::headerProbeBytes);
    head.resize(file.readAt(0, head));
    return head;
}

// Undoes the transaction a crashed writer left half-done, or drops a journal that never
// protected anything. Runs under the exclusive lock, before anything reads the file.
JournalRecovery recoverJournal(Env& env, const std::string& path, File& database, bool mayWrite,
                               const Pager::PageSizeProbe& pageSizeOf) {
    const std::string journalPath = Journal::pathFor(path);
    Journal journal = Journal::read(env, journalPath);
    // A journal names no database, so check that it fits this one: the page size of the
    // database as it was before the transaction (its first page is either in the journal
    // or still untouched on disk) must be the journal's.
    if (journal.hot() && journal.originalPageCount() > 0) {
        std::span<const uint8_t> original = journal.original(0);
        std::vector<uint8_t> head = original.empty()
                                        ? readHead(database)
                                        : std::vector<uint8_t>(original.begin(), original.begin() + std::min(
                                              original.size(), Pager::headerProbeBytes));
        try {
            const uint32_t pageSize = pageSizeOf(head);
            if (pageSize != journal.pageSize())
                journal.reject("it was written for pages of " + std::to_string(journal.pageSize()) +
                               " bytes, but the database has pages of " + std::to_string(pageSize) + " bytes");
        } catch (const RuntimeError& e) {
            journal.reject("the file it was written for was not a database (" + e.description() + ")");
        }
    }

    JournalRecovery result;
    if (!journal.hot()) {
        result.outcome = JournalRecovery::Outcome::Discarded;
        result.detail = "the journal '" + journalPath + "' was discarded: " + journal.defect();
        if (mayWrite)
            Journal::remove(env, journalPath);
        else
            result.detail += " (it was left in place: the folder is read-only)";
        return result;
    }
    if (!mayWrite)
        throw RuntimeError(err::ReadOnly,
                           "The database '" + path + "' was left half-written by an interrupted change, and its "
                           "rollback journal '" + journalPath + "' cannot be applied because the file or its folder "
                           "is read-only. Make both writable and open the database again.");
    journal.restore(database);
    Journal::remove(env, journalPath);
    result.outcome = JournalRecovery::Outcome::RolledBack;
    result.pagesRestored = journal.recordCount();
    return result;
}

}  // namespace

Pager::Pager(std::unique_ptr<File> file, std::string path, uint32_t pageSize)
    : file_(std::move(file)), path_(std::move(path)), pageSize_(pageSize),
      readOnlyReason_("was opened for reading only") {
    pageCount_ = uint32_t(file_->size() / pageSize_);
}

Pager::Pager(Env& env, std::unique_ptr<File> file, std::string path, uint32_t pageSize)
    : env_(&env), file_(std::move(file)), path_(std::move(path)), pageSize_(pageSize),
      saltSource_(std::random_device{}()) {
    pageCount_ = uint32_t(file_->size() / pageSize_);
}

Pager::~Pager() = default;

std::unique_ptr<Pager> Pager::open(Env& env, const std::string& path, OpenMode mode,
                                   const PageSizeProbe& pageSizeOf) {
    if (mode == OpenMode::Create)
        throw RuntimeError(err::Unspecified, "Cannot open '" + path + "' for creation; create it instead.");

    // Writing needs the file, and the folder for the journal and the lock file. A file we
    // may write is opened for writing even when only reading was asked for, so that a hot
    // journal can be rolled back.
    bool mayWrite = env.writable(path) && env.writable(directoryOf(path));
    std::string readOnlyReason;
    if (mode == OpenMode::ReadOnly) readOnlyReason = "was opened for reading only";
    if (!mayWrite) readOnlyReason = "or its folder is read-only";
    std::unique_ptr<File> file;
    if (mayWrite) {
        try {
            file = env.open(path, OpenMode::ReadWrite);
        } catch (const IoError& e) {
            mayWrite = false;
            readOnlyReason = "cannot be opened for writing (" + e.description() + ")";
        }
    }
    if (!file) file = env.open(path, OpenMode::ReadOnly);

    // A second opener sees "file already in use" when another process writes the file (or
    // is rolling back its journal), whatever it asked for; a writer that finds only
    // readers opens for reading too.
    bool writer = mode == OpenMode::ReadWrite && mayWrite;
    bool exclusive = false;
    if (writer && file->tryLockExclusive()) {
        exclusive = true;
    } else if (file->tryLockShared()) {
        if (writer) readOnlyReason = "is open in another program";
        writer = false;
    } else {
        throw DatabaseLock::inUseError(path);
    }

    JournalRecovery recovery;
    if (env.exists(Journal::pathFor(path))) {
        // Another holder of the shared lock may be reading, or about to roll the journal
        // back itself: either way the file is not ours to repair now.
        if (!exclusive && !file->tryLockExclusive()) throw DatabaseLock::inUseError(path);
        exclusive = true;
        recovery = recoverJournal(env, path, *file, mayWrite, pageSizeOf);
    }

    std::unique_ptr<DatabaseLock> lock;
    if (writer) {
        try {
            lock = DatabaseLock::acquire(env, path);
        } catch (const IoError& e) {
            writer = false;
            readOnlyReason = "has a lock file that cannot be created (" + e.description() + ")";
        }
    }
    if (exclusive && !writer && !file->tryLockShared()) throw DatabaseLock::inUseError(path);

    const uint32_t pageSize = pageSizeOf(readHead(*file));
    if (!Journal::supportsPageSize(pageSize))
        throw CorruptError("its page size " + std::to_string(pageSize) + " is not supported");
    std::unique_ptr<Pager> pager(new Pager(env, std::move(file), path, pageSize));
    pager->lock_ = std::move(lock);
    pager->recovery_ = std::move(recovery);
    if (!writer) pager->readOnlyReason_ = readOnlyReason.empty() ? "was opened for reading only" : readOnlyReason;
    pager->upgradable_ = !writer && mode == OpenMode::ReadOnly && mayWrite;
    return pager;
}

std::unique_ptr<Pager> Pager::create(Env& env, const std::string& path, uint32_t pageSize) {
    if (!Journal::supportsPageSize(pageSize))
        throw RuntimeError(err::Unspecified, "Cannot create '" + path + "' with pages of " +
                                                 std::to_string(pageSize) + " bytes.");
    auto file = env.open(path, env.exists(path) ? OpenMode::ReadWrite : OpenMode::Create);
    if (!file->tryLockExclusive()) throw DatabaseLock::inUseError(path);
    auto lock = DatabaseLock::acquire(env, path);
    // A journal of the file being replaced must never be applied to the new one.
    const std::string journalPath = Journal::pathFor(path);
    if (env.exists(journalPath)) Journal::remove(env, journalPath);
    file->truncate(0);
    file->sync();
    env.syncDirectory(directoryOf(path));
    std::unique_ptr<Pager> pager(new Pager(env, std::move(file), path, pageSize));
    pager->lock_ = std::move(lock);
    return pager;
}

void Pager::acquireWriteAccess() {
    if (!readOnly()) return;
    if (!upgradable_ || databaseKey_ != 0)
        throw RuntimeError(err::ReadOnly,
                           "Cannot update. Database or object is read-only ('" + path_ + "' " + readOnlyReason() + ").");
    // Converting the shared lock may drop it before failing: take it back so reading goes on.
    if (!file_->tryLockExclusive()) {
        file_->tryLockShared();
        throw DatabaseLock::inUseError(path_);
    }
    try {
        lock_ = DatabaseLock::acquire(*env_, path_);
    } catch (const IoError& e) {
        file_->tryLockShared();
        throw RuntimeError(err::ReadOnly, "Cannot update. Database or object is read-only ('" + path_ +
                                              "' has a lock file that cannot be created: " + e.description() + ").");
    } catch (...) {
        file_->tryLockShared();
        throw;
    }
    readOnlyReason_.clear();
    upgradable_ = false;
}

std::string Pager::readOnlyReason() const {
    if (!readOnlyReason_.empty()) return readOnlyReason_;
    if (databaseKey_ != 0) return "is encoded, and encoded databases are opened for reading only";
    return {};
}

const uint8_t* Pager::read(uint32_t n) { return page(n); }

uint8_t* Pager::page(uint32_t n) {
    if (n >= pageCount_)
        throw CorruptError("page " + std::to_string(n) + " lies beyond the end of the file");
    auto it = cache_.find(n);
    if (it != cache_.end()) return it->second.get();
    // Pages appended in this pager's life are always cached, so this one is on disk.
    auto buf = std::make_unique<uint8_t[]>(pageSize_);
    size_t got = file_->readAt(uint64_t(n) * pageSize_, {buf.get(), pageSize_});
    if (got != pageSize_) throw CorruptError("page " + std::to_string(n) + " is cut short");
    if (databaseKey_ != 0 && n != 0) {
        uint8_t key[4];
        putLe32(key, databaseKey_ ^ n);
        rc4Apply(key, 4, buf.get(), pageSize_);
    }
    return cache_.emplace(n, std::move(buf)).first->second.get();
}

void Pager::begin() {
    if (inTransaction_) throw RuntimeError(err::Unspecified, "A write transaction is already open on '" + path_ + "'.");
    if (needsReopen_)
        throw RuntimeError(err::Unspecified, "The database '" + path_ +
                                                 "' could not be restored after a failed write. Close it and open "
                                                 "it again to roll the interrupted change back.");
    if (readOnly())
        throw RuntimeError(err::ReadOnly,
                           "Cannot update. Database or object is read-only ('" + path_ + "' " + readOnlyReason() + ").");
    inTransaction_ = true;
    originalPageCount_ = pageCount_;
}

void Pager::requireTransaction(const char* action) const {
    if (!inTransaction_)
        throw RuntimeError(err::Unspecified,
                           std::string("Cannot ") + action + " outside a write transaction on '" + path_ + "'.");
}

uint8_t* Pager::writable(uint32_t n) {
    requireTransaction("change a page");
    uint8_t* p = page(n);
    if (n < originalPageCount_ && !originals_.contains(n)) {
        auto copy = std::make_unique<uint8_t[]>(pageSize_);
        std::memcpy(copy.get(), p, pageSize_);
        originals_.emplace(n, std::move(copy));
    }
    return p;
}

uint32_t Pager::append() {
    requireTransaction("add a page");
    if (pageCount_ == UINT32_MAX)
        throw RuntimeError(err::Unspecified, "The database '" + path_ + "' cannot grow any further.");
    const uint32_t n = pageCount_;
    // A page appended before by a transaction that rolled back keeps its buffer (someone
    // may still hold a view into it); it starts over as zeros.
    auto& buf = cache_[n];
    if (!buf) buf = std::make_unique<uint8_t[]>(pageSize_);
    std::memset(buf.get(), 0, pageSize_);
    ++pageCount_;
    return n;
}

void Pager::rollback() {
    requireTransaction("roll back");
    restoreMemory();
}

void Pager::restoreMemory() {
    for (const auto& [n, original] : originals_) std::memcpy(cache_.at(n).get(), original.get(), pageSize_);
    originals_.clear();
    pageCount_ = originalPageCount_;
    inTransaction_ = false;
}

std::vector<Journal::Original> Pager::journalRecords() const {
    std::vector<Journal::Original> records;
    records.reserve(originals_.size());
    for (const auto& [n, original] : originals_) records.push_back({n, original.get()});
    std::sort(records.begin(), records.end(), [](const auto& a, const auto& b) { return a.page < b.page; });
    return records;
}

void Pager::commit() {
    requireTransaction("commit");
    if (originals_.empty() && pageCount_ == originalPageCount_) {
        inTransaction_ = false;
        return;
    }
    const std::vector<Journal::Original> records = journalRecords();
    const std::string journalPath = Journal::pathFor(path_);
    enum class Step { Journal, Database, RemoveJournal, SyncRemoval } step = Step::Journal;
    try {
        Journal::write(*env_, journalPath, pageSize_, originalPageCount_, saltSource_(), records);
        step = Step::Database;
        for (const Journal::Original& r : records) file_->writeAt(uint64_t(r.page) * pageSize_, {cache_.at(r.page).get(), pageSize_});
        for (uint32_t n = originalPageCount_; n < pageCount_; ++n)
            file_->writeAt(uint64_t(n) * pageSize_, {cache_.at(n).get(), pageSize_});
        file_->sync();
        step = Step::RemoveJournal;
        env_->remove(journalPath);
        step = Step::SyncRemoval;
        env_->syncDirectory(directoryOf(journalPath));
    } catch (...) {
        if (step == Step::Journal) {
            // The database is untouched. Whatever part of the journal reached the disk is
            // either incomplete (discarded at the next open) or holds the pages as they
            // still are; remove it if we can, it is harmless if we cannot.
            try {
                env_->remove(journalPath);
            } catch (const IoError&) {
            }
        } else {
            restoreFile(records, step != Step::SyncRemoval);
        }
        restoreMemory();
        throw;
    }
    originals_.clear();
    inTransaction_ = false;
}

void Pager::restoreFile(const std::vector<Journal::Original>& records, bool journalOnDisk) {
    const std::string journalPath = Journal::pathFor(path_);
    try {
        // Without its journal on disk the file must not be touched: a crash in the middle
        // of the restore would leave a mix with nothing to repair it.
        if (!journalOnDisk) Journal::write(*env_, journalPath, pageSize_, originalPageCount_, saltSource_(), records);
        for (const Journal::Original& r : records) file_->writeAt(uint64_t(r.page) * pageSize_, {r.bytes, pageSize_});
        file_->truncate(uint64_t(originalPageCount_) * pageSize_);
        file_->sync();
        Journal::remove(*env_, journalPath);
    } catch (...) {
        // The disk stopped taking writes. The file and what reached the journal still
        // describe the state before or the state after the transaction, and the next open
        // settles which; this pager must not write on top of that.
        needsReopen_ = true;
    }
}

}  // namespace jet
