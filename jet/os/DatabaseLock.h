#pragma once
// The ".ldb" lock file that tells other programs a database is open for writing.
//
// A writer creates "<name>.ldb" beside "<name>.mdb" (the extension replaced, or ".ldb"
// added to a name without one), writes one 64-byte entry into it the way Access does (the
// computer's name and the user "Admin", each NUL-padded to 32 bytes), and holds an
// exclusive advisory lock on it until it closes, when it removes the file again.
//  - A lock file that nobody holds locked was left behind by a writer that crashed: it
//    does not block, and it is left in place on close since it is not ours.
//  - A lock file another process holds locked means the database is being written: the
//    opener gets inUseError(), the error Access gives for a database opened elsewhere.
// The lock file is a courtesy to other programs; what keeps two of our own processes from
// writing at once is the advisory lock the pager holds on the database file itself.

#include <memory>
#include <string>

#include "os/Env.h"

namespace jet {

class DatabaseLock {
public:
    static std::string pathFor(const std::string& databasePath);

    // Takes the lock file of the database. Throws inUseError() when another process holds
    // it, IoError when it can be neither created nor opened.
    static std::unique_ptr<DatabaseLock> acquire(Env& env, const std::string& databasePath);

    // Error -2147467259 "Could not use '<path>'; file already in use."
    static RuntimeError inUseError(const std::string& databasePath);

    ~DatabaseLock();
    DatabaseLock(const DatabaseLock&) = delete;
    DatabaseLock& operator=(const DatabaseLock&) = delete;

    const std::string& path() const { return path_; }

    static constexpr size_t entrySize = 64;

private:
    DatabaseLock(Env& env, std::string path, std::unique_ptr<File> file, bool created)
        : env_(env), path_(std::move(path)), file_(std::move(file)), created_(created) {}

    Env& env_;
    std::string path_;
    std::unique_ptr<File> file_;
    bool created_;
};

}  // namespace jet
