// New databases: empty ones from nothing (the system tables' definitions, the header, the
// file's pages and catalogue indexes as Access lays them out) and copies of another file,
// and what replacing a file may and may not do.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "base/Bytes.h"
#include "format/CodePage.h"
#include "format/DataPage.h"
#include "format/Header.h"
#include "format/TableDefSerializer.h"
#include "format/UsageMap.h"
#include "index/IndexPagerReader.h"
#include "index/IndexTree.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "pager/Journal.h"
#include "sql/SystemTables.h"
#include "table/Database.h"
#include "testkit/Session.h"

namespace {

using namespace jet::testkit;
using jet::Format;
using jet::Version;
namespace fs = std::filesystem;

std::vector<std::vector<uint8_t>> indexEntries(const jet::Database& db, uint32_t root) {
    jet::PagerIndexPages pages(db.pager());
    return jet::IndexTree(db.format(), pages, root).entries();
}

TEST(NewDatabase, HeaderAndSystemTableDefinitionsAreThoseAccessWrites) {
    const uint32_t lengths[2][4] = {{708, 223, 319, 526}, {1050, 335, 525, 813}};
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const Format& f = Format::of(v);
        for (jet::SystemTable t : jet::kSystemTables)
            EXPECT_EQ(lengths[v == Version::Jet4][int(t)],
                      jet::serializeTableDef(f, *jet::CodePage::get(1252),
                                             jet::systemTableDef(t, v, 1252, jet::NewFileLayout::of(v))).size())
                << jet::systemTableName(t);
        const uint16_t codePage = v == Version::Jet3 ? 1251 : 1252;
        const std::vector<uint8_t> page = jet::Header::newPage(v, codePage);
        ASSERT_EQ(f.pageSize, page.size());
        EXPECT_EQ(v, jet::Header::detectVersion(page, "new"));
        const jet::Header h = jet::Header::parse(v, page);
        EXPECT_EQ(codePage, h.codePage());
        EXPECT_EQ(0x0409, h.sortOrder());
        EXPECT_EQ("", h.password());
        const uint8_t* plain = h.bytes().data();
        EXPECT_EQ(0x05, plain[0x18 + 20]) << "the constant run counts up to 5";
        EXPECT_EQ(0x0101, jet::le16(plain + f.pageSize - 512));
        if (v == Version::Jet4) {
            EXPECT_NEAR(42850.48, h.creationDate(), 0.01);
            EXPECT_EQ(0x62, plain[0x42]);
            EXPECT_EQ(0xA7, plain[0x43]);
        } else {
            EXPECT_NE(0x00, page[0x42]) << "the password field is masked";
        }
    }
}

// The catalogue index ParentIdName entry for entry, and the pages where the map of a new
// file puts them.
TEST(NewDatabase, PagesAndCatalogueIndexesAreWhereAndWhatAccessMakesThem) {
    TempDir dir;
    const std::vector<const char*> names4 = {
        "7F 8F 00 00 00 7F 4F 4A 6D 4A 4C 4A 6B 51 6B 01 00 | 00 00 0E 01",
        "7F 8F 00 00 00 7F 69 51 5E 4A 6D 59 64 62 6B 57 59 66 6B 01 00 | 00 00 0E 02",
        "7F 8F 00 00 00 7F 6D 4A 4C 5E 51 6B 01 00 | 00 00 0E 00",
        "7F 8F 00 00 01 7F 60 6B 76 6B 4A 4D 51 6B 01 00 | 00 00 0E 05",
        "7F 8F 00 00 01 7F 60 6B 76 6B 64 4C 5B 51 4D 6D 6B 01 00 | 00 00 0E 04",
        "7F 8F 00 00 01 7F 60 6B 76 6B 68 6F 51 69 59 51 6B 01 00 | 00 00 0E 06",
        "7F 8F 00 00 01 7F 60 6B 76 6B 69 51 5E 4A 6D 59 64 62 6B 57 59 66 6B 01 00 | 00 00 0E 07",
        "7F 8F 00 00 02 7F 60 6B 76 6B 4F 4C 01 00 | 00 00 0E 03"};
    const std::vector<const char*> names3 = {
        "7F 8F 00 00 00 7F 64 60 77 60 61 60 76 66 76 00 | 00 00 10 01",
        "7F 8F 00 00 00 7F 75 66 6D 60 77 6A 72 70 76 69 6A 73 76 00 | 00 00 10 02",
        "7F 8F 00 00 00 7F 77 60 61 6D 66 76 00 | 00 00 10 00",
        "7F 8F 00 00 01 7F 6F 76 7D 76 60 62 66 76 00 | 00 00 10 05",
        "7F 8F 00 00 01 7F 6F 76 7D 76 72 61 6B 66 62 77 76 00 | 00 00 10 04",
        "7F 8F 00 00 01 7F 6F 76 7D 76 74 78 66 75 6A 66 76 00 | 00 00 10 06",
        "7F 8F 00 00 01 7F 6F 76 7D 76 75 66 6D 60 77 6A 72 70 76 69 6A 73 76 00 | 00 00 10 07",
        "7F 8F 00 00 02 7F 6F 76 7D 76 64 61 00 | 00 00 10 03"};
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const std::string path = dir.file(v == Version::Jet3 ? "new3.mdb" : "new4.mdb");
        jet::createDatabase(path, v, 1251);
        const Format& f = Format::of(v);
        const jet::NewFileLayout layout = jet::NewFileLayout::of(v);
        EXPECT_EQ(uint64_t(layout.pageCount()) * f.pageSize, fs::file_size(path));
        auto db = jet::Database::open(path);
        const auto& objects = *db->tableDef(2);
        std::vector<std::vector<uint8_t>> expected;
        for (const char* e : v == Version::Jet3 ? names3 : names4) expected.push_back(hex(e));
        EXPECT_EQ(expected, indexEntries(*db, objects.physicalIndexes()[0].rootPage));
        const auto ids = indexEntries(*db, objects.physicalIndexes()[1].rootPage);
        const int slotOfId[] = {4, 5, 6, 7, 0, 1, 2, 3};  // ids 2..5, then the containers, then MSysDb
        ASSERT_EQ(8u, ids.size());
        for (size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(slotOfId[i], ids[i].back()) << "Id entry " << i;
        const auto aces = indexEntries(*db, db->tableDef(3)->physicalIndexes()[0].rootPage);
        EXPECT_EQ(16u, aces.size()) << "one permission entry per row";
        EXPECT_TRUE(indexEntries(*db, db->tableDef(4)->physicalIndexes()[0].rootPage).empty());
        EXPECT_EQ(8u, objects.rowCount());
        EXPECT_EQ(8u, objects.physicalIndexes()[0].distinctKeys);
        EXPECT_EQ(8u, db->tableDef(3)->physicalIndexes()[0].distinctKeys);

        EXPECT_EQ(v == Version::Jet3 ? 1768 : 3940, jet::DataPage(f, db->pager().read(1)).freeSpace());
        // Free: exactly the pages past the end of the file, up to the end of the bitmap.
        const auto free = jet::UsageMap::read(db->pager(), f, 1u << 8);
        ASSERT_FALSE(free.pages().empty());
        EXPECT_EQ(layout.pageCount(), free.pages().front());
        EXPECT_EQ(f.inlineMapBytes * 8 - layout.pageCount(), free.pages().size());
        EXPECT_EQ(std::vector<uint32_t>{layout.objectsDataPage()},
                  jet::UsageMap::read(db->pager(), f, objects.ownedMap()).pages());
        const auto& entries = db->catalog().entries();
        ASSERT_EQ(8u, entries.size());
        EXPECT_EQ("Tables", entries[0].name);
        EXPECT_EQ("MSysDb", entries[3].name);
        EXPECT_EQ(0x80000000u, entries[7].flags);
        EXPECT_TRUE(db->catalog().userTables().empty());
        const auto report = jet::check(*db);
        EXPECT_EQ("", issuesOf(report));
        EXPECT_EQ(4u, report.tablesChecked);
    }
    // The older provider opens only the Access 97 file, whose code page is the program's.
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.3.51;Data Source=" + dir.file("new3.mdb"));
    EXPECT_EQ(1251, cn.database()->header().codePage());
    cn.Close();
    EXPECT_THROW(cn.Open("Provider=microsoft.jet.OLEDB.3.51;Data Source=" + dir.file("new4.mdb")), jet::RuntimeError);
}

TEST(NewDatabase, TheCodePageComesFromTheEnvironmentLikeTheProgramsOwn) {
    const char* saved = std::getenv("SHEETWRIGHT_CODEPAGE");
    const std::string keep = saved ? saved : "";
    const std::pair<const char*, uint16_t> cases[] = {
        {"", 1251}, {"windows-1252", 1252}, {"CP1250", 1250}, {"1253", 1253}, {"utf-8", 1251}, {"windows-65001x", 1251}};
    for (const auto& [value, expected] : cases) {
        ::setenv("SHEETWRIGHT_CODEPAGE", value, 1);
        EXPECT_EQ(expected, jet::programCodePage()) << value;
    }
    if (saved) ::setenv("SHEETWRIGHT_CODEPAGE", keep.c_str(), 1);
    else ::unsetenv("SHEETWRIGHT_CODEPAGE");
}

TEST(NewDatabase, ReplacingAFileRefusesOneInUseAndLeavesNothingBehindOnFailure) {
    TempDir dir;
    const std::string path = dir.file("old.mdb");
    writeAll(path, "not a database at all");
    jet::createDatabase(path, Version::Jet4);
    EXPECT_EQ(65536u, fs::file_size(path));
    EXPECT_FALSE(fs::exists(path + ".creating"));
    EXPECT_FALSE(fs::exists(dir.file("old.ldb")));
    {
        jet::Connection reader;
        reader.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path);
        const std::string before = readAll(path);
        EXPECT_THROW(jet::createDatabase(path, Version::Jet3), jet::RuntimeError);
        EXPECT_THROW(jet::copyDatabase(fixturePath("testV1997.mdb"), path), jet::RuntimeError);
        EXPECT_EQ(before, readAll(path)) << "a database someone has open stays as it was";
        EXPECT_FALSE(fs::exists(path + ".creating"));
    }
    try {
        jet::createDatabase(dir.file("missing/folder/new.mdb"), Version::Jet3);
        ADD_FAILURE() << "a folder that does not exist";
    } catch (const jet::RuntimeError& e) {
        EXPECT_NE(std::string::npos, e.description().find("cannot be created")) << e.description();
    }
    EXPECT_FALSE(fs::exists(dir.file("missing")));
    EXPECT_THROW(jet::createDatabase(dir.file("x.mdb"), Version::Jet3, 9999), jet::RuntimeError) << "an unknown code page";
    EXPECT_FALSE(fs::exists(dir.file("x.mdb")));
    const std::string before = readAll(path);
    EXPECT_THROW(jet::copyDatabase(fixturePath("MANIFEST.md"), path), jet::RuntimeError) << "the source is no database";
    EXPECT_THROW(jet::copyDatabase(dir.file("nothing.mdb"), path), jet::RuntimeError);
    EXPECT_EQ(before, readAll(path));
}

// A crash left a hot journal beside the file that is now replaced by a copy of another: the
// journal belongs to the old file, and applying it to the copy would write old pages into it.
TEST(NewDatabase, ACopyOverAFileWithAStaleJournalDiscardsTheJournal) {
    WritableCopy target("testV2000.mdb");
    const std::string journal = jet::Journal::pathFor(target.path());
    {
        const std::string old = readAll(target.path());
        std::vector<jet::Journal::Original> records;
        for (uint32_t page : {1u, 2u, 5u}) records.push_back({page, reinterpret_cast<const uint8_t*>(old.data()) + page * 4096});
        jet::Journal::write(jet::Env::posix(), journal, 4096, uint32_t(old.size() / 4096), 7, records);
        ASSERT_TRUE(jet::Journal::read(jet::Env::posix(), journal).hot());
    }
    jet::copyDatabase(fixturePath("test2V2003.mdb"), target.path());
    EXPECT_FALSE(fs::exists(journal));
    EXPECT_EQ(readAll(fixturePath("test2V2003.mdb")), readAll(target.path()));
    auto db = jet::Database::open(target.path());
    EXPECT_EQ(jet::JournalRecovery::Outcome::None, db->pager().recovery().outcome);
    EXPECT_TRUE(jet::check(*db).clean());
}

}  // namespace
