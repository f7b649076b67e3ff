#include "CrashLoop.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <poll.h>
#include <random>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace jet::testkit {

namespace {

// Commit reports travel as 8-byte numbers, which a pipe delivers whole.
void report(int fd, uint64_t transaction) {
    const char* p = reinterpret_cast<const char*>(&transaction);
    size_t left = sizeof transaction;
    while (left > 0) {
        ssize_t n = ::write(fd, p, left);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) ::_exit(4);
        p += n;
        left -= size_t(n);
    }
}

[[noreturn]] void runChild(CrashWorkload& workload, const std::string& path, uint64_t next, int reportFd) {
    try {
        workload.runTransactions(path, next, [reportFd](uint64_t k) { report(reportFd, k); });
        std::fprintf(stderr, "crash child: the workload ended before it was killed\n");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "crash child: %s\n", e.what());
    }
    // _exit: the parent's atexit handlers and buffers are not the child's to run.
    ::_exit(3);
}

// Reads what is in the pipe now (or, with a timeout, what arrives until then).
bool drain(int fd, std::vector<uint8_t>& into, int timeoutMs) {
    pollfd pfd{fd, POLLIN, 0};
    int ready = ::poll(&pfd, 1, timeoutMs);
    if (ready <= 0) return true;
    uint8_t buf[4096];
    ssize_t n = ::read(fd, buf, sizeof buf);
    if (n < 0) return errno == EINTR;
    if (n == 0) return false;  // the child is gone and everything is read
    into.insert(into.end(), buf, buf + n);
    return true;
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

    for (int i = 0; i < options.kills; ++i) {
        int fds[2];
        if (::pipe(fds) != 0) {
            result.failures.push_back(std::string("pipe: ") + std::strerror(errno));
            break;
        }
        std::fflush(nullptr);
        const pid_t pid = ::fork();
        if (pid < 0) {
            result.failures.push_back(std::string("fork: ") + std::strerror(errno));
            ::close(fds[0]);
            ::close(fds[1]);
            break;
        }
        if (pid == 0) {
            ::close(fds[0]);
            runChild(workload, path, next, fds[1]);
        }
        ::close(fds[1]);

        const auto lifetime = std::chrono::microseconds(
            std::uniform_int_distribution<int64_t>(0, options.maxLifetime.count())(rng));
        const auto deadline = std::chrono::steady_clock::now() + lifetime;
        std::vector<uint8_t> reports;
        bool open = true;
        while (open) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) break;
            open = drain(fds[0], reports, int(left.count()));
        }
        ::kill(pid, SIGKILL);
        int status = 0;
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        // The write end died with the child: read to the end.
        while (drain(fds[0], reports, -1)) {
        }
        ::close(fds[0]);

        if (!(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)) {
            result.failures.push_back("kill " + std::to_string(i + 1) + ": the child stopped by itself (status " +
                                      std::to_string(status) + ")");
            break;
        }
        uint64_t lastReported = next - 1;
        for (size_t at = 0; at + 8 <= reports.size(); at += 8) {
            uint64_t k;
            std::memcpy(&k, reports.data() + at, 8);
            if (k != lastReported + 1) {
                result.failures.push_back("kill " + std::to_string(i + 1) + ": the child reported transaction " +
                                          std::to_string(k) + " after " + std::to_string(lastReported));
                return result;
            }
            lastReported = k;
        }

        CommittedState state;
        try {
            state = workload.committedState(path);
        } catch (const std::exception& e) {
            result.failures.push_back("kill " + std::to_string(i + 1) + " (child had reported transaction " +
                                      std::to_string(lastReported) + "): " + e.what());
            break;
        }
        ++result.kills;
        if (state.rolledBack) ++result.rolledBack;
        if (state.transaction == lastReported + 1) {
            ++result.committedUnreported;
        } else if (state.transaction != lastReported) {
            result.failures.push_back("kill " + std::to_string(i + 1) + ": the file holds transaction " +
                                      std::to_string(state.transaction) + " but the child had reported " +
                                      std::to_string(lastReported));
            break;
        }
        next = state.transaction + 1;
        result.transactions = state.transaction;
    }
    return result;
}

}  // namespace jet::testkit
