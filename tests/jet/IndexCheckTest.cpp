// The index checker over every index of the fixture files (the proof that keys are rebuilt
// exactly as Access wrote them), over damaged copies, and over indexes the tree writer
// emptied and rebuilt inside real files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "IndexFilePages.h"
#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Checker.h"
#include "jet/Database.h"
#include "jet/IndexCheck.h"
#include "jet/IndexPagerReader.h"
#include "jet/IndexTree.h"
#include "jet/IndexTreeWriter.h"
#include "jet/Table.h"

namespace {

using jet::Database;
using jet::IndexCheckResult;
using jet::testing::fixture;
using jet::testing::MemoryFile;
using jet::testing::readFileBytes;
using Bytes = std::vector<uint8_t>;

std::unique_ptr<Database> openBytes(const Bytes& bytes) {
    return Database::open(std::make_unique<MemoryFile>(bytes), "copy.mdb");
}

IndexCheckResult checkAllTables(const Database& db) {
    IndexCheckResult all;
    for (const auto& e : db.catalog().entries()) {
        if (!e.isTable()) continue;
        jet::Table table(db, db.tableDef(e.tdefPage()), e.name);
        IndexCheckResult r = jet::checkTableIndexes(table);
        for (auto& p : r.problems) all.problems.push_back(e.name + ": " + p);
        all.indexesChecked += r.indexesChecked;
        all.entriesChecked += r.entriesChecked;
        all.keysCheckedInPart += r.keysCheckedInPart;
    }
    return all;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string s;
    for (const auto& l : lines) s += l + "\n";
    return s;
}

std::vector<std::string> fixtureFiles() {
    std::vector<std::string> files;
    for (const auto& f : std::filesystem::directory_iterator(SHEETWRIGHT_MDB_FIXTURES))
        if (f.path().extension() == ".mdb") files.push_back(f.path().filename().string());
    std::sort(files.begin(), files.end());
    return files;
}

TEST(IndexCheck, EveryIndexOfEveryFixtureChecksClean) {
    size_t indexes = 0, entries = 0, partial = 0;
    for (const std::string& name : fixtureFiles()) {
        auto db = Database::open(fixture(name));
        IndexCheckResult r = checkAllTables(*db);
        EXPECT_TRUE(r.problems.empty()) << name << "\n" << joined(r.problems);
        indexes += r.indexesChecked;
        entries += r.entriesChecked;
        partial += r.keysCheckedInPart;
    }
    EXPECT_EQ(303u, indexes) << "every physical index of the sixteen files";
    EXPECT_EQ(7048u, entries);
    // The Greek and the Japanese row of testUnicodeCompV2003: their characters have no known
    // sort codes, so only the presence and the known beginning of their entries is checked.
    EXPECT_EQ(2u, partial);
}

// Where a column value of a row lies in the file.
size_t valueOffset(const Database& db, const jet::Table& t, jet::RowLocation loc, const char* column) {
    auto value = t.reader(loc).column(*t.def().findColumn(column)).bytes;
    return size_t(loc.page) * db.format().pageSize + size_t(value.data() - db.pager().read(loc.page));
}

TEST(IndexCheck, ARowChangedBehindTheIndexesBackIsReported) {
    Bytes bytes = readFileBytes(fixture("testIndexCodesV1997.mdb"));
    jet::RowLocation victim;
    {
        auto db = openBytes(bytes);
        auto t = db->openTable("Table1");
        victim = t->rowLocations()[5];
        bytes[valueOffset(*db, *t, victim, "name")] ^= 0x01;  // one letter of the primary key changes
    }
    auto db = openBytes(bytes);
    IndexCheckResult r = jet::checkTableIndexes(*db->openTable("Table1"));
    const std::string all = joined(r.problems);
    const std::string where = "page " + std::to_string(victim.page) + " slot " + std::to_string(victim.slot);
    EXPECT_NE(std::string::npos, all.find("'PrimaryKey': the row at " + where + " has no entry with its key")) << all;
    EXPECT_NE(std::string::npos, all.find("'PrimaryKey': the entry for " + where + " differs")) << all;
    EXPECT_EQ(std::string::npos, all.find("DataIndex")) << "the other index still matches";

    // The whole-file checker reports it under the table.
    jet::CheckReport report = jet::check(*db);
    const bool found = std::any_of(report.issues.begin(), report.issues.end(), [](const jet::CheckIssue& i) {
        return i.where == "table 'Table1'" && i.problem.find("'PrimaryKey'") != std::string::npos;
    });
    EXPECT_TRUE(found);
}

TEST(IndexCheck, EntriesOfADeletedRowAreReported) {
    Bytes bytes = readFileBytes(fixture("testIndexCodesV1997.mdb"));
    jet::RowLocation victim;
    {
        auto db = openBytes(bytes);
        victim = db->openTable("Table2")->rowLocations()[3];
        const auto& f = db->format();
        uint8_t* slot = bytes.data() + size_t(victim.page) * f.pageSize + f.dataSlotsOffset + 2 * victim.slot;
        jet::putLe16(slot, uint16_t(jet::le16(slot) | 0xC000));
    }
    auto db = openBytes(bytes);
    IndexCheckResult r = jet::checkTableIndexes(*db->openTable("Table2"));
    EXPECT_EQ(2u, r.problems.size()) << joined(r.problems);
    for (const auto& p : r.problems)
        EXPECT_NE(std::string::npos, p.find("page " + std::to_string(victim.page) + " slot " +
                                            std::to_string(victim.slot) + ", which holds no row"))
            << p;
}

TEST(IndexCheck, ADuplicateInAUniqueIndexIsReported) {
    Bytes bytes = readFileBytes(fixture("testIndexCodesV1997.mdb"));
    jet::IndexRowPointer first, second;
    {
        auto db = openBytes(bytes);
        auto t = db->openTable("Table2");
        const jet::PhysicalIndex* pk = nullptr;
        for (const auto& l : t->def().logicalIndexes())
            if (l.name == "PrimaryKey") pk = &t->def().physicalIndexes()[l.physicalIndex];
        ASSERT_NE(nullptr, pk);
        FileIndexPages pages(bytes, db->format(), pk->ownedMap);
        jet::IndexTree tree(db->format(), pages, pk->rootPage);
        auto entries = tree.entries();
        ASSERT_GE(entries.size(), 2u);
        // The second row's entry is replaced by one carrying the first row's key.
        first = jet::entryRow(entries[0]);
        second = jet::entryRow(entries[1]);
        jet::IndexTreeWriter writer(db->format(), pages, pk->rootPage, t->def().page());
        ASSERT_TRUE(writer.remove(jet::entryKey(entries[1]), second));
        writer.insert(jet::entryKey(entries[0]), second);
    }
    auto db = openBytes(bytes);
    const std::string all = joined(jet::checkTableIndexes(*db->openTable("Table2")).problems);
    EXPECT_NE(std::string::npos, all.find("the unique index holds the same key for page " + std::to_string(first.page)))
        << all;
    EXPECT_NE(std::string::npos, all.find("differs from the row's key")) << all;
}

// Every index of every fixture is emptied entry by entry and filled again in another random
// order through the tree writer; the file must then check clean and hold the same entries.
TEST(IndexCheck, IndexesRebuiltByTheWriterInsideRealFilesCheckClean) {
    std::mt19937 rng(31337);
    size_t rebuilt = 0;
    for (const std::string& name : fixtureFiles()) {
        SCOPED_TRACE(name);
        Bytes bytes = readFileBytes(fixture(name));
        std::vector<std::pair<uint32_t, std::vector<Bytes>>> before;  // root, entries
        {
            auto db = openBytes(bytes);
            const jet::Format& f = db->format();
            for (const auto& e : db->catalog().entries()) {
                if (!e.isTable()) continue;
                auto def = db->tableDef(e.tdefPage());
                for (const jet::PhysicalIndex& x : def->physicalIndexes()) {
                    FileIndexPages pages(bytes, f, x.ownedMap);
                    jet::IndexTree tree(f, pages, x.rootPage);
                    std::vector<Bytes> entries = tree.entries();
                    before.emplace_back(x.rootPage, entries);
                    jet::IndexTreeWriter writer(f, pages, x.rootPage, def->page());
                    std::shuffle(entries.begin(), entries.end(), rng);
                    for (const Bytes& entry : entries)
                        ASSERT_TRUE(writer.remove(jet::entryKey(entry), jet::entryRow(entry)));
                    ASSERT_TRUE(tree.entries().empty());
                    std::shuffle(entries.begin(), entries.end(), rng);
                    for (const Bytes& entry : entries) writer.insert(jet::entryKey(entry), jet::entryRow(entry));
                    ++rebuilt;
                }
            }
        }
        auto db = openBytes(bytes);
        IndexCheckResult r = checkAllTables(*db);
        EXPECT_TRUE(r.problems.empty()) << joined(r.problems);
        for (const auto& [root, entries] : before) {
            jet::PagerIndexPages pages(db->pager());
            EXPECT_EQ(entries, jet::IndexTree(db->format(), pages, root).entries());
        }
    }
    EXPECT_EQ(303u, rebuilt);
}

}  // namespace
