#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "jet/Journal.h"
#include "jet/Pager.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PageWorkload.h"
#include "testkit/PlainDatabase.h"
#include "testkit/TempDir.h"

namespace {

using namespace jet::testkit;
using jet::Env;
using jet::OpenMode;
using jet::Pager;

std::string pageOf(Pager& pager, uint32_t n) {
    return {reinterpret_cast<const char*>(pager.read(n)), pager.pageSize()};
}

TEST(Rc4, HeaderMaskKeyStreamStartsAsPublished) {
    // The header mask is RC4 with the fixed key C7 DA 39 6B applied to zeros.
    const uint8_t key[4] = {0xC7, 0xDA, 0x39, 0x6B};
    uint8_t stream[8] = {};
    jet::rc4Apply(key, 4, stream, sizeof stream);
    const uint8_t expected[8] = {0xb5, 0x6f, 0x03, 0x62, 0x61, 0x08, 0xc2, 0x55};
    EXPECT_EQ(0, memcmp(stream, expected, 8));
}

TEST(Pager, ReadsPagesAndRefusesPagesPastTheEnd) {
    auto path = std::filesystem::temp_directory_path() / "pager_test.bin";
    {
        std::ofstream out(path, std::ios::binary);
        for (int page = 0; page < 3; ++page)
            for (int i = 0; i < 2048; ++i) out.put(char(page * 10 + (i & 1)));
    }
    jet::Pager pager(jet::Env::posix().open(path, jet::OpenMode::ReadOnly), path, 2048);
    ASSERT_EQ(3u, pager.pageCount());
    const uint8_t* p2 = pager.read(2);
    EXPECT_EQ(20, p2[0]);
    EXPECT_EQ(21, p2[1]);
    EXPECT_EQ(p2, pager.read(2)) << "a page stays at one address";
    EXPECT_THROW(pager.read(3), jet::CorruptError);
    std::filesystem::remove(path);
}

class PagerTransaction : public ::testing::Test {
protected:
    void SetUp() override { makePlainDatabase(path, 6); }
    TempDir dir;
    std::string path = dir.file("plain.db");
};

TEST_F(PagerTransaction, ChangesShowAtOnceAndReachTheFileOnlyAtCommit) {
    const std::string before = readAll(path);
    auto pager = openPlain(Env::posix(), path);
    ASSERT_FALSE(pager->readOnly()) << pager->readOnlyReason();
    const uint8_t* view = pager->read(2);

    pager->begin();
    uint8_t* page = pager->writable(2);
    EXPECT_EQ(view, page) << "writable() hands out the buffer read() returned";
    std::memset(page, 0x5A, 100);
    EXPECT_EQ(0x5A, pager->read(2)[99]);
    EXPECT_EQ(before, readAll(path)) << "nothing reaches the file before commit";

    pager->commit();
    EXPECT_FALSE(pager->inTransaction());
    EXPECT_FALSE(std::filesystem::exists(jet::Journal::pathFor(path)));
    std::string expected = before;
    std::memset(expected.data() + 2 * plainPageSize, 0x5A, 100);
    EXPECT_EQ(expected, readAll(path));

    pager.reset();
    auto again = openPlain(Env::posix(), path);
    EXPECT_EQ(0x5A, again->read(2)[0]);
    EXPECT_EQ(3, again->read(2)[100]);
}

TEST_F(PagerTransaction, RollbackPutsBackTheOriginalsInTheSameBuffers) {
    const std::string before = readAll(path);
    auto pager = openPlain(Env::posix(), path);
    const uint8_t* one = pager->read(1);
    const uint8_t* four = pager->read(4);

    pager->begin();
    std::memset(pager->writable(1), 0x11, plainPageSize);
    std::memset(pager->writable(1), 0x22, 10);  // a second change must not replace the original kept
    std::memset(pager->writable(4), 0x44, plainPageSize);
    const uint32_t added = pager->append();
    EXPECT_EQ(6u, added);
    EXPECT_EQ(7u, pager->pageCount());
    pager->rollback();

    EXPECT_EQ(one, pager->read(1));
    EXPECT_EQ(four, pager->read(4));
    EXPECT_EQ(plainPage(1), pageOf(*pager, 1));
    EXPECT_EQ(plainPage(4), pageOf(*pager, 4));
    EXPECT_EQ(6u, pager->pageCount());
    EXPECT_THROW(pager->read(added), jet::CorruptError) << "a rolled-back append is not readable";
    EXPECT_EQ(before, readAll(path));
    EXPECT_FALSE(std::filesystem::exists(jet::Journal::pathFor(path)));
}

TEST_F(PagerTransaction, AnAppendedPageStartsZeroedEvenWhereAnEarlierAppendRolledBack) {
    auto pager = openPlain(Env::posix(), path);
    pager->begin();
    const uint32_t first = pager->append();
    uint8_t* buffer = pager->writable(first);
    std::memset(buffer, 0xAA, plainPageSize);
    pager->rollback();

    pager->begin();
    const uint32_t second = pager->append();
    EXPECT_EQ(first, second);
    EXPECT_EQ(buffer, pager->read(second)) << "the buffer keeps its address for views still held";
    EXPECT_EQ(std::string(plainPageSize, '\0'), pageOf(*pager, second));
    pager->commit();
    EXPECT_EQ(7u * plainPageSize, std::filesystem::file_size(path));
    EXPECT_EQ(std::string(plainPageSize, '\0'), readAll(path).substr(6 * plainPageSize));
}

TEST_F(PagerTransaction, MisuseIsRefusedWithAnError) {
    auto pager = openPlain(Env::posix(), path);
    EXPECT_THROW(pager->writable(1), jet::RuntimeError);
    EXPECT_THROW(pager->append(), jet::RuntimeError);
    EXPECT_THROW(pager->commit(), jet::RuntimeError);
    EXPECT_THROW(pager->rollback(), jet::RuntimeError);
    pager->begin();
    EXPECT_THROW(pager->begin(), jet::RuntimeError) << "no nested transactions";
    EXPECT_THROW(pager->writable(6), jet::CorruptError);
    EXPECT_TRUE(pager->inTransaction());
    pager->rollback();
    EXPECT_THROW(pager->open(Env::posix(), path, OpenMode::Create, plainProbe), jet::RuntimeError);
}

TEST_F(PagerTransaction, ReadOnlyPagersRefuseToBeginWithJetsReadOnlyError) {
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
    {
        Pager bare(Env::posix().open(path, OpenMode::ReadOnly), path, plainPageSize);
        expectReadOnly(bare, "reading only");
    }
    {
        auto reader = openPlain(Env::posix(), path, OpenMode::ReadOnly);
        expectReadOnly(*reader, "reading only");
    }
    {
        auto writer = openPlain(Env::posix(), path);
        writer->setDatabaseKey(0x1234);
        expectReadOnly(*writer, "encoded");
    }
    FaultInjectionEnv readOnlyDisk;
    readOnlyDisk.setReadOnly(true);
    auto fallback = openPlain(readOnlyDisk, path, OpenMode::ReadWrite);
    expectReadOnly(*fallback, "read-only");
    EXPECT_EQ(plainPage(3), pageOf(*fallback, 3)) << "a read-only database still reads";
    EXPECT_EQ(0u, readOnlyDisk.opCount());
}

TEST_F(PagerTransaction, ACommitWithoutChangesWritesNothing) {
    FaultInjectionEnv env;
    auto pager = openPlain(env, path);
    const uint64_t opsAtOpen = env.opCount();
    pager->begin();
    pager->read(3);
    pager->commit();
    EXPECT_EQ(opsAtOpen, env.opCount());
}

TEST_F(PagerTransaction, CreateReplacesAnUnusedFileAndDropsItsOldJournal) {
    const std::string journal = jet::Journal::pathFor(path);
    writeAll(journal, "a journal of the file being replaced");
    {
        auto pager = Pager::create(Env::posix(), path, 1024);
        EXPECT_EQ(0u, pager->pageCount());
        EXPECT_FALSE(std::filesystem::exists(journal));
        pager->begin();
        for (int i = 0; i < 3; ++i) std::memcpy(pager->writable(pager->append()), plainPage(uint32_t(i), 1024).data(), 1024);
        pager->commit();
        EXPECT_THROW(Pager::create(Env::posix(), path, 1024), jet::RuntimeError) << "the file is in use";
    }
    auto reopened = openPlain(Env::posix(), path);
    EXPECT_EQ(1024u, reopened->pageSize());
    EXPECT_EQ(3u, reopened->pageCount());
    EXPECT_EQ(plainPage(2, 1024), pageOf(*reopened, 2));
    EXPECT_THROW(Pager::create(Env::posix(), dir.file("odd.db"), 1000), jet::RuntimeError);
}

TEST_F(PagerTransaction, AFileThatIsNoDatabaseIsRefusedByTheProbe) {
    writeAll(path, std::string(4096, 'x'));
    EXPECT_THROW(openPlain(Env::posix(), path), jet::RuntimeError);
}

class PagerWorkload : public ::testing::Test {
protected:
    std::unique_ptr<Pager> open(OpenMode mode) { return Pager::open(Env::posix(), path, mode, PageWorkload::probe); }
    TempDir dir;
    std::string path = dir.file("pages.db");
    PageWorkload workload{12, 8, 60};
};

TEST_F(PagerWorkload, ManyTransactionsInOnePagerLandExactlyAsReplayed) {
    workload.create(Env::posix(), path, 40);
    auto pager = open(OpenMode::ReadOnly);
    EXPECT_EQ(40u, workload.check(*pager));
    EXPECT_GT(pager->pageCount(), 12u) << "the workload appended pages";
}

TEST_F(PagerWorkload, TheCheckRejectsAFileThatHoldsNoCommittedState) {
    workload.create(Env::posix(), path, 5);
    const std::string committed = readAll(path);
    auto checkFails = [&](const std::string& bytes, const char* what) {
        writeAll(path, bytes);
        EXPECT_THROW(workload.check(*open(OpenMode::ReadOnly)), std::runtime_error) << what;
    };
    std::string flipped = committed;
    flipped[7 * PageWorkload::pageSize + 100] ^= 1;
    checkFails(flipped, "one flipped bit");
    checkFails(committed.substr(0, committed.size() - PageWorkload::pageSize), "a lost page");
    checkFails(committed + std::string(PageWorkload::pageSize, '\0'), "an extra page");
    // Page 0 of the state after 6 with everything else after 5: a mix of two states.
    writeAll(path, committed);
    std::string mixed = committed;
    {
        auto pager = open(OpenMode::ReadWrite);
        pager->begin();
        workload.change(*pager, 6);
        mixed.replace(0, PageWorkload::pageSize, reinterpret_cast<const char*>(pager->read(0)), PageWorkload::pageSize);
        pager->rollback();
    }
    checkFails(mixed, "page 0 of one state with the pages of another");
    writeAll(path, committed);
    EXPECT_EQ(5u, workload.check(*open(OpenMode::ReadOnly))) << "and the untouched file still passes";
}

}  // namespace
