#include "CrashLoop.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <random>
#include <thread>

namespace jet::testkit {

namespace {

class PacedFile final : public File {
public:
    PacedFile(std::unique_ptr<File> base, std::chrono::microseconds pause) : base_(std::move(base)), pause_(pause) {}
    size_t readAt(uint64_t offset, std::span<uint8_t> out) override { return base_->readAt(offset, out); }
    void writeAt(uint64_t offset, std::span<const uint8_t> data) override {
        base_->writeAt(offset, data);
        std::this_thread::sleep_for(pause_);
    }
    void sync() override { base_->sync(); }
    uint64_t size() override { return base_->size(); }
    void truncate(uint64_t size) override { base_->truncate(size); }
    bool tryLockShared() override { return base_->tryLockShared(); }
    bool tryLockExclusive() override { return base_->tryLockExclusive(); }
    void unlock() override { base_->unlock(); }

private:
    std::unique_ptr<File> base_;
    std::chrono::microseconds pause_;
};

class PacedEnv final : public Env {
public:
    explicit PacedEnv(std::chrono::microseconds pause) : pause_(pause) {}
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override {
        return std::make_unique<PacedFile>(posix().open(path, mode), pause_);
    }
    bool exists(const std::string& path) override { return posix().exists(path); }
    void remove(const std::string& path) override { posix().remove(path); }
    void syncDirectory(const std::string& dirPath) override { posix().syncDirectory(dirPath); }
    bool writable(const std::string& path) override { return posix().writable(path); }

private:
    std::chrono::microseconds pause_;
};

// Commit reports travel as 8-byte numbers, which a pipe delivers whole; the child is
// killed long before it could fill the pipe.
[[noreturn]] void runChild(CrashWorkload& workload, const std::string& path, uint64_t next, int reportFd,
                           std::chrono::microseconds pause) {
    try {
        PacedEnv env(pause);
        workload.runTransactions(env, path, next, [reportFd](uint64_t k) {
            if (::write(reportFd, &k, sizeof k) != sizeof k) ::_exit(4);
        });
        std::fprintf(stderr, "crash child: the workload ended before it was killed\n");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "crash child: %s\n", e.what());
    }
    ::_exit(3);  // not exit(): the parent's atexit handlers and buffers are not the child's
}

}  // namespace

CrashLoopResult runCrashLoop(CrashWorkload& workload, const std::string& path, const CrashLoopOptions& options) {
    CrashLoopResult result;
    std::mt19937 rng(options.seed);
    uint64_t next;
    try {
        next = workload.committedState(path).transaction + 1;
    } catch (const std::exception& e) {
        result.failures.push_back(std::string("the database is not in a known state before the first kill: ") + e.what());
        return result;
    }
    for (int i = 1; i <= options.kills; ++i) {
        const std::string kill = "kill " + std::to_string(i);
        int fds[2];
        if (::pipe(fds) != 0) {
            result.failures.push_back(kill + ": pipe: " + std::strerror(errno));
            break;
        }
        std::fflush(nullptr);
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(fds[0]);
            runChild(workload, path, next, fds[1], options.writePause);
        }
        ::close(fds[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(
            std::uniform_int_distribution<int64_t>(0, options.maxLifetime.count())(rng)));
        int status = 0;
        if (pid > 0) {
            ::kill(pid, SIGKILL);
            while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
            }
        }
        uint64_t lastReported = next - 1, k;
        while (::read(fds[0], &k, sizeof k) == sizeof k) lastReported = k;
        ::close(fds[0]);
        if (pid < 0 || !(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)) {
            result.failures.push_back(kill + ": the child did not run until it was killed (status " +
                                      std::to_string(status) + ")");
            break;
        }
        CommittedState state;
        try {
            state = workload.committedState(path);
        } catch (const std::exception& e) {
            result.failures.push_back(kill + " (child had reported transaction " + std::to_string(lastReported) +
                                      "): " + e.what());
            break;
        }
        ++result.kills;
        result.rolledBack += state.rolledBack;
        if (state.transaction == lastReported + 1) {
            ++result.committedUnreported;
        } else if (state.transaction != lastReported) {
            result.failures.push_back(kill + ": the file holds transaction " + std::to_string(state.transaction) +
                                      " but the child had reported " + std::to_string(lastReported));
            break;
        }
        next = state.transaction + 1;
        result.transactions = state.transaction;
    }
    return result;
}

}  // namespace jet::testkit
