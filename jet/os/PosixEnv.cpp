#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "os/Env.h"

namespace jet {

namespace {

std::string osError(const std::string& what, const std::string& path) {
    return what + " '" + path + "': " + std::strerror(errno);
}

class PosixFile final : public File {
public:
    PosixFile(int fd, std::string path) : fd_(fd), path_(std::move(path)) {}
    ~PosixFile() override { ::close(fd_); }

    size_t readAt(uint64_t offset, std::span<uint8_t> out) override {
        size_t done = 0;
        while (done < out.size()) {
            ssize_t n = ::pread(fd_, out.data() + done, out.size() - done, off_t(offset + done));
            if (n < 0) {
                if (errno == EINTR) continue;
                throw IoError(osError("Cannot read", path_));
            }
            if (n == 0) break;
            done += size_t(n);
        }
        return done;
    }

    void writeAt(uint64_t offset, std::span<const uint8_t> data) override {
        size_t done = 0;
        while (done < data.size()) {
            ssize_t n = ::pwrite(fd_, data.data() + done, data.size() - done, off_t(offset + done));
            if (n < 0) {
                if (errno == EINTR) continue;
                throw IoError(osError("Cannot write", path_));
            }
            done += size_t(n);
        }
    }

    void sync() override {
        if (::fdatasync(fd_) != 0) throw IoError(osError("Cannot flush", path_));
    }

    uint64_t size() override {
        struct stat st;
        if (::fstat(fd_, &st) != 0) throw IoError(osError("Cannot examine", path_));
        return uint64_t(st.st_size);
    }

    void truncate(uint64_t size) override {
        if (::ftruncate(fd_, off_t(size)) != 0) throw IoError(osError("Cannot resize", path_));
    }

    bool tryLockShared() override { return lock(LOCK_SH); }
    bool tryLockExclusive() override { return lock(LOCK_EX); }
    void unlock() override { ::flock(fd_, LOCK_UN); }

private:
    bool lock(int kind) {
        while (::flock(fd_, kind | LOCK_NB) != 0) {
            if (errno == EINTR) continue;
            if (errno == EWOULDBLOCK) return false;
            throw IoError(osError("Cannot lock", path_));
        }
        return true;
    }

    int fd_;
    std::string path_;
};

class PosixEnv final : public Env {
public:
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override {
        int flags = O_CLOEXEC;
        switch (mode) {
        case OpenMode::ReadOnly: flags |= O_RDONLY; break;
        case OpenMode::ReadWrite: flags |= O_RDWR; break;
        case OpenMode::Create: flags |= O_RDWR | O_CREAT | O_TRUNC; break;
        }
        int fd;
        do {
            fd = ::open(path.c_str(), flags, 0666);
        } while (fd < 0 && errno == EINTR);
        if (fd < 0) throw IoError(osError("Cannot open", path));
        struct stat st;
        if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
            ::close(fd);
            errno = EISDIR;
            throw IoError(osError("Cannot open", path));
        }
        return std::make_unique<PosixFile>(fd, path);
    }

    bool exists(const std::string& path) override {
        struct stat st;
        return ::stat(path.c_str(), &st) == 0;
    }

    void remove(const std::string& path) override {
        if (::unlink(path.c_str()) != 0 && errno != ENOENT) throw IoError(osError("Cannot delete", path));
    }

    void syncDirectory(const std::string& dirPath) override {
        int fd = ::open(dirPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0) throw IoError(osError("Cannot open folder", dirPath));
        int rc = ::fsync(fd);
        int saved = errno;
        ::close(fd);
        errno = saved;
        if (rc != 0 && errno != EINVAL) throw IoError(osError("Cannot flush folder", dirPath));
    }

    bool writable(const std::string& path) override {
        if (::access(path.c_str(), F_OK) == 0) return ::access(path.c_str(), W_OK) == 0;
        return ::access(directoryOf(path).c_str(), W_OK) == 0;
    }
};

}  // namespace

Env& Env::posix() {
    static PosixEnv env;
    return env;
}

std::string directoryOf(const std::string& path) {
    auto slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

}  // namespace jet
