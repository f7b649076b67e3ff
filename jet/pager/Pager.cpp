#include "pager/Pager.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/Bytes.h"
#include "base/CorruptError.h"
#include "base/Rc4.h"
#include "os/DatabaseLock.h"
#include "pager/Journal.h"

namespace jet {

namespace {

size_t defaultCacheBytes = Pager::kDefaultCacheBytes;

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
    setCacheBytes(defaultCacheBytes);
    spare_.reserve(5);
}

Pager::Pager(Env& env, std::unique_ptr<File> file, std::string path, uint32_t pageSize)
    : env_(&env), file_(std::move(file)), path_(std::move(path)), pageSize_(pageSize),
      saltSource_(std::random_device{}()) {
    pageCount_ = uint32_t(file_->size() / pageSize_);
    setCacheBytes(defaultCacheBytes);
    spare_.reserve(5);
}

Pager::~Pager() {
    // A transaction never committed leaves no trace: its journal was never sealed.
    if (inTransaction_) removeJournal();
}

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

// The cache.

void Pager::setDefaultCacheBytes(size_t bytes) { defaultCacheBytes = bytes; }

void Pager::setCacheBytes(size_t bytes) {
    capacity_ = std::max<size_t>(1, bytes / pageSize_);
    trim();
}

PageRef Pager::read(uint32_t n) { return PageRef(frame(n)); }

PageFrame* Pager::frame(uint32_t n) {
    requireUsable();
    if (n >= pageCount_)
        throw CorruptError("page " + std::to_string(n) + " lies beyond the end of the file");
    if (last_ && last_->number == n) return last_;
    auto it = frames_.find(n);
    if (it != frames_.end()) return last_ = it->second.get();
    // Pages appended in this transaction are dirty and never leave the cache, so this one
    // is on disk.
    PageFrame* f = newFrame(n);
    try {
        readFromFile(n, f->bytes.get());
    } catch (...) {
        drop(f);
        throw;
    }
    return last_ = f;
}

// A clean, unpinned frame for page n with undefined contents; it makes room first.
PageFrame* Pager::newFrame(uint32_t n) {
    trim();
    if (cleanPages_ >= capacity_ && oldest_) drop(oldest_);
    auto f = std::make_unique<PageFrame>();
    f->pager = this;
    f->number = n;
    if (!spare_.empty()) {
        f->bytes = std::move(spare_.back());
        spare_.pop_back();
    } else {
        f->bytes = std::make_unique_for_overwrite<uint8_t[]>(pageSize_);  // read or zeroed next
    }
    PageFrame* raw = f.get();
    frames_.emplace(n, std::move(f));
    ++cleanPages_;
    linkLruNewest(raw);
    return raw;
}

void Pager::readFromFile(uint32_t n, uint8_t* out) {
    const size_t got = file_->readAt(uint64_t(n) * pageSize_, {out, pageSize_});
    if (got != pageSize_) throw CorruptError("page " + std::to_string(n) + " is cut short");
    if (databaseKey_ != 0 && n != 0) {
        uint8_t key[4];
        putLe32(key, databaseKey_ ^ n);
        rc4Apply(key, 4, out, pageSize_);
    }
}

void Pager::pin(PageFrame* f) {
    if (f->pins++ == 0 && !f->dirty) unlinkLru(f);
}

void Pager::unpin(PageFrame* f) noexcept {
    if (--f->pins == 0 && !f->dirty) {
        linkLruNewest(f);
        if (cleanPages_ > capacity_) trim();
    }
}

void Pager::unlinkLru(PageFrame* f) {
    (f->older ? f->older->newer : oldest_) = f->newer;
    (f->newer ? f->newer->older : newest_) = f->older;
    f->older = f->newer = nullptr;
}

void Pager::linkLruNewest(PageFrame* f) {
    f->older = newest_;
    f->newer = nullptr;
    (newest_ ? newest_->newer : oldest_) = f;
    newest_ = f;
}

void Pager::markDirty(PageFrame* f) {
    if (f->dirty) return;
    if (f->pins == 0) unlinkLru(f);
    f->dirty = true;
    --cleanPages_;
    dirty_.push_back(f);
}

// A dirty frame whose contents match the file again (written, or put back).
void Pager::makeClean(PageFrame* f) {
    f->dirty = false;
    ++cleanPages_;
    if (f->pins == 0) linkLruNewest(f);
}

// Takes an unpinned frame out of the cache, keeping its buffer for the next one.
void Pager::drop(PageFrame* f) {
    if (!f->dirty) {
        unlinkLru(f);
        --cleanPages_;
    }
    if (last_ == f) last_ = nullptr;
    auto it = frames_.find(f->number);
    spare_.push_back(std::move(it->second->bytes));
    if (spare_.size() > 4) spare_.erase(spare_.begin());
    frames_.erase(it);
}

void Pager::trim() {
    while (cleanPages_ > capacity_ && oldest_) drop(oldest_);
}

void Pager::requireUsable() const {
    if (!unusable_.empty())
        throw IoError("The database '" + path_ + "' must be closed and opened again: " + unusable_);
}

// Transactions.

void Pager::begin() {
    if (inTransaction_) throw RuntimeError(err::Unspecified, "A write transaction is already open on '" + path_ + "'.");
    if (needsReopen_)
        throw RuntimeError(err::Unspecified, "The database '" + path_ +
                                                 "' could not be restored after a failed write. Close it and open "
                                                 "it again to roll the interrupted change back.");
    if (readOnly())
        throw RuntimeError(err::ReadOnly,
                           "Cannot update. Database or object is read-only ('" + path_ + "' " + readOnlyReason() + ").");
    requireUsable();
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
    PageFrame* f = frame(n);
    if (!f->dirty && n < originalPageCount_) {
        startJournal();
        journal_->append(n, f->bytes.get());
    }
    markDirty(f);
    return f->bytes.get();
}

uint32_t Pager::append() {
    requireTransaction("add a page");
    requireUsable();
    if (pageCount_ == UINT32_MAX)
        throw RuntimeError(err::Unspecified, "The database '" + path_ + "' cannot grow any further.");
    const uint32_t n = pageCount_;
    // A page appended before by a transaction that rolled back may still be pinned; it
    // starts over as zeros.
    auto it = frames_.find(n);
    PageFrame* f = it != frames_.end() ? it->second.get() : newFrame(n);
    std::memset(f->bytes.get(), 0, pageSize_);
    markDirty(f);
    ++pageCount_;
    return n;
}

std::vector<PageFrame*> Pager::dirtyInPageOrder() const {
    std::vector<PageFrame*> pages = dirty_;
    std::sort(pages.begin(), pages.end(), [](const PageFrame* a, const PageFrame* b) { return a->number < b->number; });
    return pages;
}

void Pager::rollback() {
    requireTransaction("roll back");
    restoreMemory(true);
    removeJournal();
    endTransaction();
}

void Pager::startJournal() {
    if (journal_) return;
    journalStarted_ = true;
    journal_ = std::make_unique<JournalWriter>(*env_, Journal::pathFor(path_), pageSize_, originalPageCount_,
                                               saltSource_());
}

void Pager::endTransaction() {
    journal_.reset();
    journalStarted_ = false;
    inTransaction_ = false;
    trim();
}

// Drops the journal of a transaction that never reached the database: unsealed, it is
// discarded at the next open anyway, so a failure to remove it is harmless.
void Pager::removeJournal() noexcept {
    if (!journalStarted_) return;
    try {
        env_->remove(Journal::pathFor(path_));
    } catch (...) {
    }
}

// Memory shows the state before the transaction again. Pages nobody pins simply leave the
// cache (the file holds them as they were, or will after the next open's rollback when
// `fileRestored` is false: then their originals are kept in memory from the journal);
// pinned pages get their original contents back in the same buffer.
void Pager::restoreMemory(bool fileRestored) noexcept {
    const std::vector<PageFrame*> changed = std::move(dirty_);
    dirty_.clear();
    pageCount_ = originalPageCount_;
    for (PageFrame* f : changed) {
        try {
            if (f->number >= originalPageCount_) {
                std::memset(f->bytes.get(), 0, pageSize_);
            } else if (!fileRestored) {
                if (!journal_ || !journal_->readOriginalOf(f->number, f->bytes.get()))
                    throw IoError("the original of page " + std::to_string(f->number) + " is lost");
                ++f->pins;  // kept until the pager closes: the file cannot be trusted for it
            } else if (f->pins > 0) {
                readFromFile(f->number, f->bytes.get());
            }
        } catch (const std::exception& e) {
            if (unusable_.empty()) unusable_ = e.what();
        }
        makeClean(f);
        if (f->pins == 0) drop(f);
    }
}

void Pager::commit() {
    requireTransaction("commit");
    if (dirty_.empty() && pageCount_ == originalPageCount_) {
        endTransaction();
        return;
    }
    const std::string journalPath = Journal::pathFor(path_);
    const std::vector<PageFrame*> pages = dirtyInPageOrder();
    enum class Step { Journal, Database, RemoveJournal, SyncRemoval } step = Step::Journal;
    try {
        startJournal();
        journal_->seal();
        step = Step::Database;
        writePages(pages);
        file_->sync();
        step = Step::RemoveJournal;
        env_->remove(journalPath);
        step = Step::SyncRemoval;
        env_->syncDirectory(directoryOf(journalPath));
    } catch (...) {
        bool fileRestored = true;
        if (step == Step::Journal) {
            // The database is untouched. Whatever part of the journal reached the disk is
            // either incomplete (discarded at the next open) or holds the pages as they
            // still are; remove it if we can, it is harmless if we cannot.
            removeJournal();
        } else {
            restoreFile(step != Step::SyncRemoval);
            fileRestored = !needsReopen_;
        }
        restoreMemory(fileRestored);
        endTransaction();
        throw;
    }
    for (PageFrame* f : dirty_) makeClean(f);
    dirty_.clear();
    endTransaction();
}

// Writes pages (in page order) to the database, runs of neighbours in one write each.
void Pager::writePages(const std::vector<PageFrame*>& pages) {
    constexpr size_t maxRun = 64;
    std::vector<uint8_t> run;
    for (size_t i = 0; i < pages.size();) {
        size_t n = 1;
        while (i + n < pages.size() && n < maxRun && pages[i + n]->number == pages[i]->number + n) ++n;
        const uint64_t offset = uint64_t(pages[i]->number) * pageSize_;
        if (n == 1) {
            file_->writeAt(offset, {pages[i]->bytes.get(), pageSize_});
        } else {
            run.resize(n * pageSize_);
            for (size_t k = 0; k < n; ++k) std::memcpy(run.data() + k * pageSize_, pages[i + k]->bytes.get(), pageSize_);
            file_->writeAt(offset, run);
        }
        i += n;
    }
}

void Pager::restoreFile(bool journalOnDisk) {
    const std::string journalPath = Journal::pathFor(path_);
    try {
        std::vector<uint8_t> original(pageSize_);
        // Without its journal on disk the file must not be touched: a crash in the middle
        // of the restore would leave a mix with nothing to repair it. The removed journal
        // is still open, so it is written again from itself.
        if (!journalOnDisk) {
            JournalWriter again(*env_, journalPath, pageSize_, originalPageCount_, saltSource_());
            for (size_t i = 0; i < journal_->recordCount(); ++i) {
                journal_->readOriginal(i, original.data());
                again.append(journal_->pageOf(i), original.data());
            }
            again.seal();
        }
        for (size_t i = 0; i < journal_->recordCount(); ++i) {
            journal_->readOriginal(i, original.data());
            file_->writeAt(uint64_t(journal_->pageOf(i)) * pageSize_, original);
        }
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
