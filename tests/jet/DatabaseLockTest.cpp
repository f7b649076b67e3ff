// Who may open a database while someone else has it, what the lock file looks like, and
// how read-only files and folders open.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "os/DatabaseLock.h"
#include "pager/Journal.h"
#include "testkit/PageWorkload.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::DatabaseLock;
using jet::Env;
using jet::OpenMode;
namespace fs = std::filesystem;

void expectInUse(const std::function<void()>& open, const std::string& path) {
    try {
        open();
        ADD_FAILURE() << "the second opener got in";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::Unspecified, e.number());
        EXPECT_EQ("Could not use '" + path + "'; file already in use.", e.description());
    }
}

class DatabaseLocking : public ::testing::Test {
protected:
    void SetUp() override { PageWorkload(4).create(Env::posix(), path); }
    std::unique_ptr<jet::Pager> open(OpenMode mode = OpenMode::ReadWrite) { return PageWorkload::open(Env::posix(), path, mode); }
    TempDir dir;
    std::string path = dir.file("shop.mdb");
    std::string lockFile = dir.file("shop.ldb");
};

TEST_F(DatabaseLocking, AWriterKeepsALockFileBesideTheDatabaseWithItsEntry) {
    EXPECT_EQ("/data/Sales.ldb", DatabaseLock::pathFor("/data/Sales.MDB"));
    EXPECT_EQ("/data.v2/Sales.ldb", DatabaseLock::pathFor("/data.v2/Sales"));
    EXPECT_EQ("/data/.hidden.ldb", DatabaseLock::pathFor("/data/.hidden"));
    {
        auto writer = open();
        ASSERT_FALSE(writer->readOnly());
        const std::string entry = readAll(lockFile);
        ASSERT_EQ(DatabaseLock::entrySize, entry.size());
        char host[256] = {};
        ::gethostname(host, sizeof host - 1);
        EXPECT_EQ(std::string(host).substr(0, 31), std::string(entry.c_str()));
        EXPECT_EQ("Admin", std::string(entry.c_str() + 32));
        EXPECT_EQ(std::string(32 - 5, '\0'), entry.substr(37));
        // While one writes, every other opener is told the file is in use.
        expectInUse([&] { open(); }, path);
        expectInUse([&] { open(OpenMode::ReadOnly); }, path);
        expectInUse([&] { jet::Pager::create(Env::posix(), path, PageWorkload::pageSize); }, path);
        EXPECT_TRUE(fs::exists(lockFile)) << "a refused opener leaves the writer's lock file alone";
    }
    EXPECT_FALSE(fs::exists(lockFile));
    auto reader = open(OpenMode::ReadOnly);
    EXPECT_FALSE(fs::exists(lockFile)) << "readers make no lock file";
    auto wouldBeWriter = open();
    EXPECT_TRUE(wouldBeWriter->readOnly()) << "a writer that finds a reader reads along";
    EXPECT_EQ("is open in another program", wouldBeWriter->readOnlyReason());
    EXPECT_EQ(PageWorkload::page(0, 2), std::string(reinterpret_cast<const char*>(wouldBeWriter->read(2)), PageWorkload::pageSize));
}

TEST_F(DatabaseLocking, ALeftoverLockFileDoesNotBlockButOneHeldByAnotherProgramDoes) {
    writeAll(lockFile, std::string(64, 'x'));
    EXPECT_FALSE(open()->readOnly());
    EXPECT_EQ(std::string(64, 'x'), readAll(lockFile)) << "not ours to remove";
    auto held = Env::posix().open(lockFile, OpenMode::ReadWrite);
    ASSERT_TRUE(held->tryLockExclusive());
    expectInUse([&] { open(); }, path);
    held.reset();
    EXPECT_NO_THROW(open());
}

TEST_F(DatabaseLocking, AnotherProcessWritingIsDetectedAndItsCrashFreesTheFile) {
    int ready[2];
    ASSERT_EQ(0, ::pipe(ready));
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto writer = open();
        const char ok = writer->readOnly() ? 'r' : 'w';
        if (::write(ready[1], &ok, 1) != 1) ::_exit(2);
        ::pause();
        ::_exit(0);
    }
    ::close(ready[1]);
    char state = 0;
    ASSERT_EQ(1, ::read(ready[0], &state, 1));
    ::close(ready[0]);
    EXPECT_EQ('w', state);
    expectInUse([&] { open(); }, path);
    expectInUse([&] { open(OpenMode::ReadOnly); }, path);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(fs::exists(lockFile)) << "a killed writer leaves its lock file";
    EXPECT_FALSE(open()->readOnly()) << "but the stale lock file does not block";
}

// Real permissions, checked in a child process that runs as an ordinary user (root may
// write anything), so the file system itself says no.
TEST_F(DatabaseLocking, ReadOnlyFilesAndFoldersOpenForReadingAndAHotJournalThereIsRefused) {
    using P = fs::perms;
    constexpr uid_t nobody = 65534;
    struct Case {
        const char* name;
        P folder, file;
        bool hotJournal;
    } cases[] = {{"a read-only file", P(0755), P(0444), false},
                 {"a read-only folder", P(0555), P(0644), false},
                 {"a hot journal in a read-only folder", P(0555), P(0644), true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string folder = dir.file(std::to_string(&c - cases));
        fs::create_directory(folder);
        const std::string db = folder + "/shop.mdb";
        PageWorkload(4).create(Env::posix(), db);
        if (c.hotJournal) {
            const std::string page2 = PageWorkload::page(0, 2);
            const jet::Journal::Original original{2, reinterpret_cast<const uint8_t*>(page2.data())};
            jet::Journal::write(Env::posix(), jet::Journal::pathFor(db), PageWorkload::pageSize, 4, 1, {&original, 1});
        }
        if (::geteuid() == 0) {
            fs::permissions(dir.path(), P(0755));
            ASSERT_EQ(0, ::chown(folder.c_str(), nobody, nobody));
            ASSERT_EQ(0, ::chown(db.c_str(), nobody, nobody));
        }
        fs::permissions(db, c.file);
        fs::permissions(folder, c.folder);
        auto body = [&]() -> std::string {
            std::unique_ptr<jet::Pager> pager;
            try {
                pager = PageWorkload::open(Env::posix(), db);
            } catch (const jet::RuntimeError& e) {
                return c.hotJournal && e.number() == jet::err::ReadOnly ? "" : "open: " + e.description();
            }
            if (c.hotJournal) return "opened a half-written file";
            if (pager->readOnlyReason() != "or its folder is read-only") return "reason: " + pager->readOnlyReason();
            if (std::memcmp(pager->read(3), PageWorkload::page(0, 3).data(), PageWorkload::pageSize) != 0)
                return "page 3 reads wrong";
            try {
                pager->begin();
                return "begin() succeeded";
            } catch (const jet::RuntimeError& e) {
                if (e.number() != jet::err::ReadOnly) return e.description();
            }
            return fs::exists(DatabaseLock::pathFor(db)) ? "made a lock file" : "";
        };
        EXPECT_EXIT(
            {
                if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) std::_Exit(2);
                const std::string failure = body();
                std::fprintf(stderr, "%s\n", failure.empty() ? "ok" : failure.c_str());
                std::_Exit(failure.empty() ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "ok");
    }
}

}  // namespace
