// What opening does with a journal it finds: roll back a hot one exactly, and discard one
// that was never completely written (or is not for this file) without touching the data.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>

#include "jet/Bytes.h"
#include "jet/Journal.h"
#include "testkit/FaultInjectionEnv.h"
#include "testkit/PlainDatabase.h"
#include "testkit/TempDir.h"

namespace {

using namespace jet::testkit;
using jet::Env;
using jet::Journal;
using jet::JournalRecovery;
using jet::OpenMode;
using Outcome = JournalRecovery::Outcome;

constexpr uint32_t pages = 6;

class JournalRecoveryTest : public ::testing::Test {
protected:
    void SetUp() override {
        makePlainDatabase(path, pages);
        original = readAll(path);
    }

    // A journal of pages 1 and 3 (and page 0 when asked), as a commit writes it.
    std::string journalBytes(uint32_t salt = 7, uint32_t pageSize = plainPageSize, bool withPage0 = false,
                             uint32_t originalPages = pages) {
        std::vector<std::string> copies;
        std::vector<Journal::Original> records;
        for (uint32_t n : {0u, 1u, 3u}) {
            if (n == 0 && !withPage0) continue;
            copies.push_back(plainPage(n, pageSize));
        }
        size_t i = 0;
        for (uint32_t n : {0u, 1u, 3u}) {
            if (n == 0 && !withPage0) continue;
            records.push_back({n, reinterpret_cast<const uint8_t*>(copies[i++].data())});
        }
        Journal::write(Env::posix(), journal, pageSize, originalPages, salt, records);
        std::string bytes = readAll(journal);
        std::filesystem::remove(journal);
        return bytes;
    }

    // The database as a commit leaves it halfway: pages 1 and 3 overwritten, two pages added.
    std::string halfWritten() {
        std::string bytes = original;
        bytes.replace(1 * plainPageSize, plainPageSize, std::string(plainPageSize, 'N'));
        bytes.replace(3 * plainPageSize, plainPageSize / 2, std::string(plainPageSize / 2, 'N'));  // torn
        bytes += std::string(plainPageSize + 100, 'A');                                            // a torn append
        return bytes;
    }

    JournalRecovery open(Env& env = Env::posix(), OpenMode mode = OpenMode::ReadWrite) {
        auto pager = openPlain(env, path, mode);
        return pager->recovery();
    }

    TempDir dir{TempDir::Place::InMemory};
    std::string path = dir.file("plain.db");
    std::string journal = Journal::pathFor(path);
    std::string original;
};

TEST_F(JournalRecoveryTest, AHotJournalRestoresTheFileExactly) {
    writeAll(path, halfWritten());
    writeAll(journal, journalBytes());
    const JournalRecovery r = open();
    EXPECT_EQ(Outcome::RolledBack, r.outcome);
    EXPECT_EQ(2u, r.pagesRestored);
    EXPECT_EQ(original, readAll(path)) << "pages put back, the appended ones cut off";
    EXPECT_FALSE(std::filesystem::exists(journal));
    EXPECT_EQ(Outcome::None, open().outcome);
}

TEST_F(JournalRecoveryTest, AReaderRollsBackTooAndThenOnlyReads) {
    writeAll(path, halfWritten());
    writeAll(journal, journalBytes(9, plainPageSize, true));
    auto pager = openPlain(Env::posix(), path, OpenMode::ReadOnly);
    EXPECT_EQ(Outcome::RolledBack, pager->recovery().outcome);
    EXPECT_EQ(3u, pager->recovery().pagesRestored);
    EXPECT_TRUE(pager->readOnly());
    EXPECT_EQ(original, readAll(path));
    EXPECT_NO_THROW(openPlain(Env::posix(), path, OpenMode::ReadOnly)) << "back to a shared lock";
}

TEST_F(JournalRecoveryTest, TrailingBytesAfterTheLastRecordDoNotMatter) {
    writeAll(path, halfWritten());
    writeAll(journal, journalBytes() + std::string(3000, '\x5A'));
    EXPECT_EQ(Outcome::RolledBack, open().outcome);
    EXPECT_EQ(original, readAll(path));
}

TEST_F(JournalRecoveryTest, AJournalThatFailsAnyCheckIsDiscardedAndTheFileLeftAlone) {
    const std::string good = journalBytes();
    const size_t record = Journal::recordSize(plainPageSize);
    struct Case {
        const char* name;
        std::function<std::string()> journal;
        const char* reason;
    };
    const std::vector<Case> cases = {
        {"empty", [] { return std::string(); }, "shorter than its header"},
        {"torn header", [&] { return good.substr(0, 20); }, "shorter than its header"},
        {"not a journal", [&] { return "x" + good.substr(1); }, "signature"},
        {"header checksum",
         [&] {
             std::string j = good;
             j[24] ^= 1;  // the record count
             return j;
         },
         "header is torn"},
        {"records missing", [&] { return good.substr(0, Journal::headerSize + record + record / 2); }, "cut short"},
        {"record checksum",
         [&] {
             std::string j = good;
             j[Journal::headerSize + record + 100] ^= 0x40;
             return j;
         },
         "record 2 is torn"},
        {"record from another journal",
         [&] {
             // The same records sealed with another salt, behind this header: left over from
             // an earlier journal in the same blocks.
             std::string j = good.substr(0, Journal::headerSize) + journalBytes(8).substr(Journal::headerSize);
             return j;
         },
         "record 1 is torn"},
        {"wrong page size", [&] { return journalBytes(7, 4096); }, "pages of 4096 bytes"},
        {"invalid page size",
         [&] {
             std::string j = good;
             jet::putLe32(reinterpret_cast<uint8_t*>(j.data()) + 12, 3000);
             jet::putLe32(reinterpret_cast<uint8_t*>(j.data()) + 28,
                          jet::crc32({reinterpret_cast<const uint8_t*>(j.data()), 28}));
             return j;
         },
         "not a valid page size"},
        {"page beyond the original file", [&] { return journalBytes(7, plainPageSize, false, 2); }, "beyond the original"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        writeAll(path, original);
        writeAll(journal, c.journal());
        const JournalRecovery r = open();
        EXPECT_EQ(Outcome::Discarded, r.outcome);
        EXPECT_NE(std::string::npos, r.detail.find(c.reason)) << r.detail;
        EXPECT_EQ(original, readAll(path));
        EXPECT_FALSE(std::filesystem::exists(journal));
    }
}

TEST_F(JournalRecoveryTest, AJournalIsCheckedAgainstTheFirstPageAsItWasBeforeTheTransaction) {
    // The transaction overwrote page 0 with something that is not a database header; the
    // original in the journal still says pages of 2048 bytes, so the journal applies.
    std::string bytes = halfWritten();
    bytes.replace(0, 64, std::string(64, 'Z'));
    writeAll(path, bytes);
    writeAll(journal, journalBytes(3, plainPageSize, true));
    EXPECT_EQ(Outcome::RolledBack, open().outcome);
    EXPECT_EQ(original, readAll(path));
}

TEST_F(JournalRecoveryTest, AHotJournalOnAReadOnlyDiskIsRefusedNotIgnored) {
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
    EXPECT_TRUE(std::filesystem::exists(journal));
    EXPECT_EQ(Outcome::RolledBack, open().outcome) << "once writable, the rollback happens";
    EXPECT_EQ(original, readAll(path));
}

TEST_F(JournalRecoveryTest, AnIncompleteJournalOnAReadOnlyDiskIsLeftInPlace) {
    writeAll(journal, journalBytes().substr(0, 100));
    FaultInjectionEnv readOnly;
    readOnly.setReadOnly(true);
    const JournalRecovery r = open(readOnly, OpenMode::ReadOnly);
    EXPECT_EQ(Outcome::Discarded, r.outcome);
    EXPECT_NE(std::string::npos, r.detail.find("left in place")) << r.detail;
    EXPECT_TRUE(std::filesystem::exists(journal));
    EXPECT_EQ(original, readAll(path));
}

TEST(JournalFormat, RecordsComeBackAsWritten) {
    TempDir dir{TempDir::Place::InMemory};
    const std::string path = dir.file("x-journal");
    std::string a(1024, 'a'), b(1024, 'b');
    a[5] = 0;
    const Journal::Original records[] = {{4, reinterpret_cast<const uint8_t*>(a.data())},
                                         {9, reinterpret_cast<const uint8_t*>(b.data())}};
    Journal::write(Env::posix(), path, 1024, 12, 0xDEADBEEF, records);
    EXPECT_EQ(Journal::headerSize + 2 * Journal::recordSize(1024), std::filesystem::file_size(path));
    const Journal j = Journal::read(Env::posix(), path);
    ASSERT_TRUE(j.hot()) << j.defect();
    EXPECT_EQ(1024u, j.pageSize());
    EXPECT_EQ(12u, j.originalPageCount());
    EXPECT_EQ(2u, j.recordCount());
    EXPECT_EQ(a, std::string(j.original(4).begin(), j.original(4).end()));
    EXPECT_EQ(b, std::string(j.original(9).begin(), j.original(9).end()));
    EXPECT_TRUE(j.original(5).empty());
}

TEST(JournalFormat, Crc32MatchesTheStandardCheckValue) {
    const std::string text = "123456789";
    EXPECT_EQ(0xCBF43926u, jet::crc32({reinterpret_cast<const uint8_t*>(text.data()), text.size()}));
    // Continuing a checksum equals checksumming the whole at once.
    const auto* p = reinterpret_cast<const uint8_t*>(text.data());
    EXPECT_EQ(jet::crc32({p, 9}), jet::crc32({p + 4, 5}, jet::crc32({p, 4})));
}

}  // namespace
