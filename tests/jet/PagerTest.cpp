// The pager's transactions: what memory and the file show before and after commit and
// rollback, refusals, and writer processes killed at random (the long run is
// jet_crash_marathon). The order of a commit's writes and syncs is proved by the fault
// sweeps (PagerFaultTest.cpp): any order that is wrong leaves a mix after some fault.
#include <gtest/gtest.h>

#include <filesystem>

#include "pager/Journal.h"
#include "testkit/CrashLoop.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PageWorkload.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Env;
using jet::OpenMode;
using jet::Pager;
constexpr uint32_t P = PageWorkload::pageSize;

std::string pageOf(Pager& pager, uint32_t n) { return {reinterpret_cast<const char*>(pager.read(n)), P}; }

class PagerTransaction : public ::testing::Test {
protected:
    void SetUp() override {
        PageWorkload(6).create(Env::posix(), path);
        original = readAll(path);
    }
    TempDir dir{TempDir::Place::InMemory};
    std::string path = dir.file("pages.db");
    std::string journal = jet::Journal::pathFor(path);
    std::string original;
};

TEST_F(PagerTransaction, ChangesShowAtOnceAndReachTheFileOnlyAtCommit) {
    auto pager = PageWorkload::open(Env::posix(), path);
    const uint8_t* view = pager->read(2);
    pager->begin();
    uint8_t* page = pager->writable(2);
    EXPECT_EQ(view, page) << "writable() hands out the buffer read() returned";
    std::memset(page, 0x5A, 100);
    EXPECT_EQ(0x5A, pager->read(2)[99]);
    EXPECT_EQ(original, readAll(path)) << "nothing reaches the file before commit";
    pager->commit();
    EXPECT_FALSE(pager->inTransaction());
    EXPECT_FALSE(std::filesystem::exists(journal));
    std::string expected = original;
    std::memset(expected.data() + 2 * P, 0x5A, 100);
    EXPECT_EQ(expected, readAll(path));
    EXPECT_EQ(view, pager->read(2)) << "a page stays at one address";
    EXPECT_THROW(pager->read(6), jet::CorruptError);
}

TEST_F(PagerTransaction, RollbackPutsBackTheOriginalsInTheSameBuffersAndForgetsAppendedPages) {
    auto pager = PageWorkload::open(Env::posix(), path);
    const uint8_t* one = pager->read(1);
    pager->begin();
    std::memset(pager->writable(1), 0x11, P);
    std::memset(pager->writable(1), 0x22, 10);  // a second change must not replace the original kept
    std::memset(pager->writable(4), 0x44, P);
    const uint32_t added = pager->append();
    uint8_t* addedBuffer = pager->writable(added);
    std::memset(addedBuffer, 0xAA, P);
    EXPECT_EQ(7u, pager->pageCount());
    pager->rollback();
    EXPECT_EQ(one, pager->read(1));
    EXPECT_EQ(PageWorkload::page(0, 1), pageOf(*pager, 1));
    EXPECT_EQ(PageWorkload::page(0, 4), pageOf(*pager, 4));
    EXPECT_EQ(6u, pager->pageCount());
    EXPECT_THROW(pager->read(added), jet::CorruptError) << "a rolled-back append is not readable";
    EXPECT_EQ(original, readAll(path));

    // The next append gets the same buffer (views may still point into it), zeroed.
    pager->begin();
    EXPECT_EQ(added, pager->append());
    EXPECT_EQ(addedBuffer, pager->read(added));
    EXPECT_EQ(std::string(P, '\0'), pageOf(*pager, added));
    pager->commit();
    EXPECT_EQ(original + std::string(P, '\0'), readAll(path));
}

TEST_F(PagerTransaction, MisuseAndReadOnlyPagersAreRefused) {
    {
        auto pager = PageWorkload::open(Env::posix(), path);
        EXPECT_THROW(pager->writable(1), jet::RuntimeError);
        EXPECT_THROW(pager->append(), jet::RuntimeError);
        EXPECT_THROW(pager->commit(), jet::RuntimeError);
        pager->begin();
        EXPECT_THROW(pager->begin(), jet::RuntimeError) << "no nested transactions";
        EXPECT_THROW(pager->writable(6), jet::CorruptError);
        pager->rollback();
        EXPECT_THROW(Pager::open(Env::posix(), path, OpenMode::Create, PageWorkload::probe), jet::RuntimeError);
    }
    auto expectReadOnly = [](Pager& pager, const std::string& because) {
        EXPECT_TRUE(pager.readOnly());
        try {
            pager.begin();
            ADD_FAILURE() << "begin() succeeded";
        } catch (const jet::RuntimeError& e) {
            EXPECT_EQ(jet::err::ReadOnly, e.number());
            EXPECT_NE(std::string::npos, e.description().find("Cannot update. Database or object is read-only"));
            EXPECT_NE(std::string::npos, e.description().find(because)) << e.description();
        }
        EXPECT_FALSE(pager.inTransaction());
    };
    expectReadOnly(*PageWorkload::open(Env::posix(), path, OpenMode::ReadOnly), "reading only");
    Pager bare(Env::posix().open(path, OpenMode::ReadOnly), path, P);
    expectReadOnly(bare, "reading only");
    {
        auto encoded = PageWorkload::open(Env::posix(), path);
        encoded->setDatabaseKey(0x1234);
        expectReadOnly(*encoded, "encoded");
    }
    FaultInjectionEnv readOnlyDisk;
    readOnlyDisk.setReadOnly(true);
    auto fallback = PageWorkload::open(readOnlyDisk, path);
    expectReadOnly(*fallback, "read-only");
    EXPECT_EQ(PageWorkload::page(0, 3), pageOf(*fallback, 3)) << "a read-only database still reads";
    EXPECT_EQ(0u, readOnlyDisk.opCount());
    writeAll(path, std::string(4096, 'x'));
    EXPECT_THROW(PageWorkload::open(Env::posix(), path), jet::RuntimeError) << "the probe refuses a stranger";
}

TEST_F(PagerTransaction, CreateReplacesAnUnusedFileAndDropsItsOldJournal) {
    writeAll(journal, "a journal of the file being replaced");
    {
        auto pager = Pager::create(Env::posix(), path, P);
        EXPECT_EQ(0u, pager->pageCount());
        EXPECT_FALSE(std::filesystem::exists(journal));
        pager->begin();
        for (uint32_t n = 0; n < 3; ++n) std::memcpy(pager->writable(pager->append()), PageWorkload::page(9, n).data(), P);
        pager->commit();
        EXPECT_THROW(Pager::create(Env::posix(), path, P), jet::RuntimeError) << "the file is in use";
    }
    EXPECT_EQ(PageWorkload::page(9, 0) + PageWorkload::page(9, 1) + PageWorkload::page(9, 2), readAll(path));
    EXPECT_THROW(Pager::create(Env::posix(), dir.file("odd.db"), 1000), jet::RuntimeError);
}

TEST(PagerCrash, KilledWritersLeaveExactlyTheLastCommittedState) {
    TempDir dir;
    const std::string path = dir.file("pages.db");
    PageWorkload workload;
    workload.create(Env::posix(), path);
    CrashLoopOptions options;
    options.kills = 40;
    options.seed = 20240601;
    options.maxLifetime = std::chrono::milliseconds(50);
    options.writePause = std::chrono::microseconds(200);
    const CrashLoopResult result = runCrashLoop(workload, path, options);
    for (const std::string& failure : result.failures) ADD_FAILURE() << failure;
    EXPECT_EQ(options.kills, result.kills);
}

}  // namespace
