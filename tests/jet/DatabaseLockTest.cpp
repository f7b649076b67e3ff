// Who may open a database while someone else has it, what the lock file looks like, and
// how read-only files and folders open.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "jet/DatabaseLock.h"
#include "jet/Journal.h"
#include "testkit/PlainDatabase.h"
#include "testkit/TempDir.h"

namespace {

using namespace jet::testkit;
using jet::DatabaseLock;
using jet::Env;
using jet::OpenMode;

void expectInUse(const std::function<void()>& open, const std::string& path) {
    try {
        open();
        ADD_FAILURE() << "the second opener got in";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::Unspecified, e.number());
        EXPECT_EQ("Could not use '" + path + "'; file already in use.", e.description());
    }
}

TEST(DatabaseLockFile, SitsBesideTheDatabaseWithTheExtensionReplaced) {
    EXPECT_EQ("/data/Sales.ldb", DatabaseLock::pathFor("/data/Sales.mdb"));
    EXPECT_EQ("/data/Sales.ldb", DatabaseLock::pathFor("/data/Sales.MDB"));
    EXPECT_EQ("/data/Sales.ldb", DatabaseLock::pathFor("/data/Sales"));
    EXPECT_EQ("/data.v2/Sales.ldb", DatabaseLock::pathFor("/data.v2/Sales"));
    EXPECT_EQ("/data/.hidden.ldb", DatabaseLock::pathFor("/data/.hidden"));
    EXPECT_EQ("a.b.ldb", DatabaseLock::pathFor("a.b.mdb"));
}

class DatabaseLocking : public ::testing::Test {
protected:
    void SetUp() override { makePlainDatabase(path, 4); }
    TempDir dir;
    std::string path = dir.file("shop.mdb");
    std::string lockFile = dir.file("shop.ldb");
};

TEST_F(DatabaseLocking, AWriterKeepsALockFileWithItsEntryAndRemovesItOnClose) {
    {
        auto writer = openPlain(Env::posix(), path);
        ASSERT_FALSE(writer->readOnly());
        const std::string entry = readAll(lockFile);
        ASSERT_EQ(DatabaseLock::entrySize, entry.size());
        char host[256] = {};
        ::gethostname(host, sizeof host - 1);
        EXPECT_EQ(std::string(host).substr(0, 31), std::string(entry.c_str()));
        EXPECT_EQ("Admin", std::string(entry.c_str() + 32));
        EXPECT_EQ(std::string(32 - 5, '\0'), entry.substr(37));
    }
    EXPECT_FALSE(std::filesystem::exists(lockFile));
    {
        auto reader = openPlain(Env::posix(), path, OpenMode::ReadOnly);
        EXPECT_FALSE(std::filesystem::exists(lockFile)) << "readers make no lock file";
    }
}

TEST_F(DatabaseLocking, WhileOneWritesEveryOtherOpenerIsToldTheFileIsInUse) {
    auto writer = openPlain(Env::posix(), path);
    expectInUse([&] { openPlain(Env::posix(), path, OpenMode::ReadWrite); }, path);
    expectInUse([&] { openPlain(Env::posix(), path, OpenMode::ReadOnly); }, path);
    expectInUse([&] { jet::Pager::create(Env::posix(), path, 2048); }, path);
    EXPECT_TRUE(std::filesystem::exists(lockFile)) << "a refused opener leaves the writer's lock file alone";
}

TEST_F(DatabaseLocking, AWriterThatFindsOnlyReadersReadsAlong) {
    auto reader = openPlain(Env::posix(), path, OpenMode::ReadOnly);
    auto another = openPlain(Env::posix(), path, OpenMode::ReadOnly);
    auto wouldBeWriter = openPlain(Env::posix(), path, OpenMode::ReadWrite);
    EXPECT_TRUE(wouldBeWriter->readOnly());
    EXPECT_EQ("is open in another program", wouldBeWriter->readOnlyReason());
    EXPECT_FALSE(std::filesystem::exists(lockFile));
    EXPECT_EQ(plainPage(2), std::string(reinterpret_cast<const char*>(wouldBeWriter->read(2)), plainPageSize));
}

TEST_F(DatabaseLocking, ALeftoverLockFileDoesNotBlockAndIsNotOursToRemove) {
    writeAll(lockFile, std::string(64, 'x'));
    {
        auto writer = openPlain(Env::posix(), path);
        EXPECT_FALSE(writer->readOnly());
    }
    EXPECT_EQ(std::string(64, 'x'), readAll(lockFile));
}

TEST_F(DatabaseLocking, ALockFileHeldByAnotherProgramBlocksWriters) {
    writeAll(lockFile, "");
    auto held = Env::posix().open(lockFile, OpenMode::ReadWrite);
    ASSERT_TRUE(held->tryLockExclusive());
    expectInUse([&] { openPlain(Env::posix(), path); }, path);
    held.reset();
    EXPECT_NO_THROW(openPlain(Env::posix(), path));
}

TEST_F(DatabaseLocking, AnotherProcessWritingIsDetectedAndItsCrashFreesTheFile) {
    int ready[2];
    ASSERT_EQ(0, ::pipe(ready));
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto writer = openPlain(Env::posix(), path);
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
    expectInUse([&] { openPlain(Env::posix(), path); }, path);
    expectInUse([&] { openPlain(Env::posix(), path, OpenMode::ReadOnly); }, path);

    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(std::filesystem::exists(lockFile)) << "a killed writer leaves its lock file";
    auto writer = openPlain(Env::posix(), path);
    EXPECT_FALSE(writer->readOnly()) << "but the stale lock file does not block";
}

// Real permissions, checked in a child process that runs as an ordinary user (root may write
// anything), so the file system itself says no.
class ReadOnlyPermissions : public DatabaseLocking {
protected:
    static constexpr uid_t nobody = 65534;

    // Gives the folder (and file) to the user the child runs as, with the given modes.
    void prepare(const std::string& folder, std::filesystem::perms folderMode, std::filesystem::perms fileMode) {
        std::filesystem::create_directory(folder);
        dbPath = folder + "/shop.mdb";
        makePlainDatabase(dbPath, 4);
        if (::geteuid() == 0) {
            std::filesystem::permissions(dir.path(), std::filesystem::perms(0755));
            if (::chown(folder.c_str(), nobody, nobody) != 0 || ::chown(dbPath.c_str(), nobody, nobody) != 0)
                FAIL() << "chown";
        }
        std::filesystem::permissions(dbPath, fileMode);
        std::filesystem::permissions(folder, folderMode);
    }

    static void runAsOrdinaryUser(const std::function<std::string()>& body) {
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) {
            std::fprintf(stderr, "cannot become an ordinary user\n");
            std::_Exit(2);
        }
        std::string failure;
        try {
            failure = body();
        } catch (const std::exception& e) {
            failure = std::string("unexpected error: ") + e.what();
        }
        std::fprintf(stderr, "%s\n", failure.empty() ? "ok" : failure.c_str());
        std::_Exit(failure.empty() ? 0 : 1);
    }

    // Opens for read-write and expects reading to work and writing to be refused.
    std::string opensReadOnly() const {
        auto pager = openPlain(Env::posix(), dbPath, OpenMode::ReadWrite);
        if (!pager->readOnly()) return "opened for writing";
        if (pager->readOnlyReason() != "or its folder is read-only") return "reason: " + pager->readOnlyReason();
        if (std::memcmp(pager->read(3), plainPage(3).data(), plainPageSize) != 0) return "page 3 reads wrong";
        try {
            pager->begin();
            return "begin() succeeded";
        } catch (const jet::RuntimeError& e) {
            if (e.number() != jet::err::ReadOnly) return "begin() failed with " + std::to_string(e.number());
        }
        if (std::filesystem::exists(DatabaseLock::pathFor(dbPath))) return "made a lock file";
        return {};
    }

    std::string dbPath;
};

TEST_F(ReadOnlyPermissions, AReadOnlyFileOpensForReading) {
    using P = std::filesystem::perms;
    prepare(dir.file("writable-folder"), P(0755), P(0444));
    EXPECT_EXIT(runAsOrdinaryUser([&] { return opensReadOnly(); }), ::testing::ExitedWithCode(0), "ok");
}

TEST_F(ReadOnlyPermissions, AWritableFileInAReadOnlyFolderOpensForReading) {
    using P = std::filesystem::perms;
    prepare(dir.file("read-only-folder"), P(0555), P(0644));
    EXPECT_EXIT(runAsOrdinaryUser([&] { return opensReadOnly(); }), ::testing::ExitedWithCode(0), "ok");
}

TEST_F(ReadOnlyPermissions, AHotJournalInAReadOnlyFolderIsRefused) {
    using P = std::filesystem::perms;
    const std::string folder = dir.file("read-only-folder");
    prepare(folder, P(0755), P(0644));
    // A journal that restores page 2: the file is "half-written".
    const std::string page2 = plainPage(2);
    const jet::Journal::Original original{2, reinterpret_cast<const uint8_t*>(page2.data())};
    jet::Journal::write(Env::posix(), jet::Journal::pathFor(dbPath), plainPageSize, 4, 1, {&original, 1});
    std::filesystem::permissions(folder, P(0555));
    EXPECT_EXIT(runAsOrdinaryUser([&]() -> std::string {
                    try {
                        openPlain(Env::posix(), dbPath, OpenMode::ReadOnly);
                        return "opened a half-written file";
                    } catch (const jet::RuntimeError& e) {
                        if (e.number() != jet::err::ReadOnly) return e.description();
                    }
                    return {};
                }),
                ::testing::ExitedWithCode(0), "ok");
}

}  // namespace
