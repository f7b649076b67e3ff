// What opening does with a journal it finds: roll back a hot one exactly, and discard one
// that was never completely written (or is not for this file) without touching the data.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "base/Bytes.h"
#include "pager/Journal.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PageWorkload.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Env;
using jet::Journal;
using jet::JournalRecovery;
using jet::OpenMode;
using Outcome = JournalRecovery::Outcome;
constexpr uint32_t P = PageWorkload::pageSize;
constexpr uint32_t pages = 6;

class JournalRecoveryTest : public ::testing::Test {
protected:
    void SetUp() override {
        PageWorkload(pages).create(Env::posix(), path);
        original = readAll(path);
    }

    // A journal of pages 1 and 3 (and page 0 when asked), as a commit writes it.
    std::string journalBytes(uint32_t salt = 7, uint32_t pageSize = P, bool withPage0 = false,
                             uint32_t originalPages = pages) {
        std::string copies[4];
        std::vector<Journal::Original> records;
        for (uint32_t n : {0u, 1u, 3u}) {
            if (n == 0 && !withPage0) continue;
            copies[n] = PageWorkload::page(0, n);
            copies[n].resize(pageSize, '\0');
            records.push_back({n, reinterpret_cast<const uint8_t*>(copies[n].data())});
        }
        Journal::write(Env::posix(), journal, pageSize, originalPages, salt, records);
        std::string bytes = readAll(journal);
        std::filesystem::remove(journal);
        return bytes;
    }

    // The database as a commit leaves it halfway: pages 1 and 3 overwritten (3 torn), a
    // page and a half appended.
    std::string halfWritten() {
        std::string bytes = original;
        bytes.replace(1 * P, P, std::string(P, 'N'));
        bytes.replace(3 * P, P / 2, std::string(P / 2, 'N'));
        return bytes + std::string(P + 100, 'A');
    }

    JournalRecovery open(Env& env = Env::posix(), OpenMode mode = OpenMode::ReadWrite) {
        return PageWorkload::open(env, path, mode)->recovery();
    }

    TempDir dir{TempDir::Place::InMemory};
    std::string path = dir.file("pages.db");
    std::string journal = Journal::pathFor(path);
    std::string original;
};

TEST_F(JournalRecoveryTest, AHotJournalRestoresTheFileExactlyForWritersAndReaders) {
    writeAll(path, halfWritten());
    writeAll(journal, journalBytes() + std::string(3000, '\x5A'));  // bytes after the last record do not matter
    const JournalRecovery r = open();
    EXPECT_EQ(Outcome::RolledBack, r.outcome);
    EXPECT_EQ(2u, r.pagesRestored);
    EXPECT_EQ(original, readAll(path)) << "pages put back, the appended ones cut off";
    EXPECT_FALSE(std::filesystem::exists(journal));
    EXPECT_EQ(Outcome::None, open().outcome);

    // A reader rolls back too, and is then a reader again. The journal is checked against
    // the first page as it was before the transaction, which overwrote it with garbage.
    std::string bytes = halfWritten();
    bytes.replace(0, 64, std::string(64, 'Z'));
    writeAll(path, bytes);
    writeAll(journal, journalBytes(9, P, true));
    auto reader = PageWorkload::open(Env::posix(), path, OpenMode::ReadOnly);
    EXPECT_EQ(Outcome::RolledBack, reader->recovery().outcome);
    EXPECT_EQ(3u, reader->recovery().pagesRestored);
    EXPECT_TRUE(reader->readOnly());
    EXPECT_EQ(original, readAll(path));
    EXPECT_NO_THROW(PageWorkload::open(Env::posix(), path, OpenMode::ReadOnly)) << "back to a shared lock";
}

TEST_F(JournalRecoveryTest, AJournalThatFailsAnyCheckIsDiscardedAndTheFileLeftAlone) {
    // Headers and records are sealed with the standard CRC-32.
    const auto* text = reinterpret_cast<const uint8_t*>("123456789");
    EXPECT_EQ(0xCBF43926u, jet::crc32({text, 9}));
    EXPECT_EQ(jet::crc32({text, 9}), jet::crc32({text + 4, 5}, jet::crc32({text, 4})));
    const std::string good = journalBytes();
    const size_t record = Journal::recordSize(P);
    EXPECT_EQ(Journal::headerSize + 2 * record, good.size());
    auto changed = [&](size_t at, char x) {
        std::string j = good;
        j[at] ^= x;
        return j;
    };
    std::string badPageSize = good;
    jet::putLe32(reinterpret_cast<uint8_t*>(badPageSize.data()) + 12, 3000);
    jet::putLe32(reinterpret_cast<uint8_t*>(badPageSize.data()) + 28,
                 jet::crc32({reinterpret_cast<const uint8_t*>(badPageSize.data()), 28}));
    const std::pair<std::string, const char*> cases[] = {
        {"", "shorter than its header"},
        {good.substr(0, 20), "shorter than its header"},
        {"x" + good.substr(1), "signature"},
        {changed(24, 1), "header is torn"},  // the record count
        {good.substr(0, Journal::headerSize + record + record / 2), "cut short"},
        {changed(Journal::headerSize + record + 100, 0x40), "record 2 is torn"},
        // The same records sealed with another salt behind this header: left over from an
        // earlier journal in the same blocks.
        {good.substr(0, Journal::headerSize) + journalBytes(8).substr(Journal::headerSize), "record 1 is torn"},
        {journalBytes(7, 4096), "pages of 4096 bytes"},
        {badPageSize, "not a valid page size"},
        {journalBytes(7, P, false, 2), "beyond the original"},
    };
    for (const auto& [bytes, reason] : cases) {
        SCOPED_TRACE(reason);
        writeAll(path, original);
        writeAll(journal, bytes);
        const JournalRecovery r = open();
        EXPECT_EQ(Outcome::Discarded, r.outcome);
        EXPECT_NE(std::string::npos, r.detail.find(reason)) << r.detail;
        EXPECT_EQ(original, readAll(path));
        EXPECT_FALSE(std::filesystem::exists(journal));
    }
}

TEST_F(JournalRecoveryTest, OnAReadOnlyDiskAHotJournalIsRefusedAndAnIncompleteOneLeftInPlace) {
    const std::string half = halfWritten();
    writeAll(path, half);
    writeAll(journal, journalBytes());
    FaultInjectionEnv readOnly;
    readOnly.setReadOnly(true);
    for (OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
        try {
            open(readOnly, mode);
            ADD_FAILURE() << "a half-written file was opened";
        } catch (const jet::RuntimeError& e) {
            EXPECT_EQ(jet::err::ReadOnly, e.number());
            EXPECT_NE(std::string::npos, e.description().find("half-written")) << e.description();
            EXPECT_NE(std::string::npos, e.description().find(journal)) << e.description();
        }
    }
    EXPECT_EQ(half, readAll(path));
    EXPECT_EQ(Outcome::RolledBack, open().outcome) << "once writable, the rollback happens";
    EXPECT_EQ(original, readAll(path));

    writeAll(journal, journalBytes().substr(0, 100));
    const JournalRecovery r = open(readOnly, OpenMode::ReadOnly);
    EXPECT_EQ(Outcome::Discarded, r.outcome);
    EXPECT_NE(std::string::npos, r.detail.find("left in place")) << r.detail;
    EXPECT_TRUE(std::filesystem::exists(journal));
    EXPECT_EQ(original, readAll(path));
}

}  // namespace
