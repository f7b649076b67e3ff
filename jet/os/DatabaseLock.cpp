#include "os/DatabaseLock.h"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace jet {

namespace {

// Computer name, then user name, each in a 32-byte NUL-padded field. Without user-level
// security every Access user is "Admin".
void fillEntry(uint8_t (&entry)[DatabaseLock::entrySize]) {
    std::memset(entry, 0, sizeof entry);
    char host[256] = {};
    if (::gethostname(host, sizeof host - 1) != 0 || host[0] == '\0') std::strcpy(host, "localhost");
    std::memcpy(entry, host, std::min<size_t>(std::strlen(host), 31));
    std::memcpy(entry + 32, "Admin", 5);
}

}  // namespace

std::string DatabaseLock::pathFor(const std::string& databasePath) {
    const auto slash = databasePath.find_last_of('/');
    const auto dot = databasePath.find_last_of('.');
    const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return (hasExtension ? databasePath.substr(0, dot) : databasePath) + ".ldb";
}

RuntimeError DatabaseLock::inUseError(const std::string& databasePath) {
    return RuntimeError(err::Unspecified, "Could not use '" + databasePath + "'; file already in use.");
}

std::unique_ptr<DatabaseLock> DatabaseLock::acquire(Env& env, const std::string& databasePath) {
    const std::string path = pathFor(databasePath);
    const bool created = !env.exists(path);
    std::unique_ptr<File> file;
    if (created) {
        file = env.open(path, OpenMode::Create);
    } else {
        // A leftover we may not write is still good enough to lock.
        try {
            file = env.open(path, OpenMode::ReadWrite);
        } catch (const IoError&) {
            file = env.open(path, OpenMode::ReadOnly);
        }
    }
    if (!file->tryLockExclusive()) throw inUseError(databasePath);
    if (created) {
        uint8_t entry[entrySize];
        fillEntry(entry);
        try {
            file->writeAt(0, entry);
        } catch (const IoError&) {
            file.reset();
            try { env.remove(path); } catch (const IoError&) {}
            throw;
        }
    }
    return std::unique_ptr<DatabaseLock>(new DatabaseLock(env, path, std::move(file), created));
}

DatabaseLock::~DatabaseLock() {
    // Removed while still locked, so nobody can lock the dying file in between. A failure
    // leaves a stale lock file, which blocks nobody.
    if (created_) {
        try {
            env_.remove(path_);
        } catch (const IoError&) {
        }
    }
}

}  // namespace jet
