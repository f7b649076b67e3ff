#include "BenchKit.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "jet/Connection.h"
#include "table/Database.h"
#include "jet/NewDatabase.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

Run waitFor(pid_t pid, Clock::time_point start, int outFd) {
    Run run;
    if (outFd >= 0) {
        char buf[4096];
        for (ssize_t n; (n = ::read(outFd, buf, sizeof buf)) > 0;) run.output.append(buf, size_t(n));
        ::close(outFd);
    }
    int status = 0;
    struct rusage usage {};
    if (::wait4(pid, &status, 0, &usage) < 0) throw std::runtime_error("wait4 failed");
    run.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    run.peakMb = double(usage.ru_maxrss) / 1024.0;
    run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return run;
}

const char* const kWords[] = {"north", "harbour", "mill",  "stone", "river", "garden", "old",    "market",
                              "bridge", "castle", "field", "lane",  "green", "hill",   "church", "station"};

}  // namespace

Run runProcess(const std::vector<std::string>& argv) {
    int pipeFds[2];
    if (::pipe(pipeFds) != 0) throw std::runtime_error("pipe failed");
    const auto start = Clock::now();
    const pid_t pid = ::fork();
    if (pid < 0) throw std::runtime_error("fork failed");
    if (pid == 0) {
        ::dup2(pipeFds[1], 1);
        ::close(pipeFds[0]);
        ::close(pipeFds[1]);
        std::vector<char*> args;
        for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
        args.push_back(nullptr);
        ::execv(args[0], args.data());
        ::_exit(127);
    }
    ::close(pipeFds[1]);
    return waitFor(pid, start, pipeFds[0]);
}

Run runShell(const std::string& commandLine) {
    const auto start = Clock::now();
    const pid_t pid = ::fork();
    if (pid < 0) throw std::runtime_error("fork failed");
    if (pid == 0) {
        // exec replaces the shell by the last command, so the peak memory is the command's.
        ::execl("/bin/sh", "sh", "-c", ("exec " + commandLine).c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    return waitFor(pid, start, -1);
}

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

std::string selfPath() {
    char buf[4096];
    const ssize_t n = ::readlink("/proc/self/exe", buf, sizeof buf - 1);
    if (n <= 0) throw std::runtime_error("cannot find the benchmark's own path");
    return std::string(buf, size_t(n));
}

bool haveProgram(const std::string& name) {
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

const char* const kBigTable = "Customers";
const char* const kBigTableSql =
    "CREATE TABLE Customers (Id LONG, Name TEXT(100), Balance DOUBLE, Since DATETIME, Active YESNO, "
    "Credit CURRENCY)";

std::vector<jet::Variant> bigRow(uint64_t k) {
    // A name of two to six words and a number: 20 to 75 characters, 47 on average.
    std::string name;
    uint64_t h = k * 0x9E3779B97F4A7C15ull;
    const int words = 2 + int((h >> 60) % 5);
    for (int w = 0; w < words; ++w) {
        if (w) name += ' ';
        name += kWords[(h >> (4 * w)) & 15];
    }
    name += " " + std::to_string(k);
    const double balance = double(int64_t(h % 20000000) - 10000000) / 100.0 + 1.0 / 3.0;
    const double since = 36526.0 + double(k % 9000) + double(k % 86400) / 86400.0;
    return {jet::Variant::longValue(int32_t(k + 1)),
            jet::Variant::string(std::move(name)),
            jet::Variant::doubleValue(balance),
            jet::Variant::date(since),
            jet::Variant::boolean(k % 3 == 0),
            jet::Variant::currency(int64_t(h % 1000000000) - 500000000)};
}

void createBigTableFile(const std::string& path) {
    std::remove(path.c_str());
    jet::createDatabase(path, jet::Version::Jet4, 1252);
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path);
    cn.Execute(kBigTableSql, nullptr, -1);
}

void insertBigRows(const std::string& path, uint64_t first, uint64_t count) {
    auto db = jet::Database::open(path);
    jet::Transaction tx(*db);
    jet::TableWriter& writer = tx.table(kBigTable);
    for (uint64_t k = first; k < first + count; ++k) writer.insert(bigRow(k));
    tx.commit();
}

void printHeader() {
    std::printf("%-52s %9s %9s %7s %9s %9s\n", "work", "ours s", "ref s", "ref/us", "ours MB", "ref MB");
}

void printLine(const std::string& what, double ours, double reference, double oursMb, double referenceMb) {
    if (reference > 0)
        std::printf("%-52s %9.3f %9.3f %7.2f %9.1f %9.1f\n", what.c_str(), ours, reference, reference / ours, oursMb,
                    referenceMb);
    else
        std::printf("%-52s %9.3f %9s %7s %9.1f %9s\n", what.c_str(), ours, "-", "-", oursMb, "-");
    std::fflush(stdout);
}

}  // namespace bench
