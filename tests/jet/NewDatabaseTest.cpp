// New databases from nothing: the system tables' definitions, the file's pages, and what
// the engine and the independent readers make of the file.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "jet/Bytes.h"
#include "jet/Checker.h"
#include "jet/CodePage.h"
#include "jet/Connection.h"
#include "jet/DataPage.h"
#include "jet/Database.h"
#include "jet/Header.h"
#include "jet/IndexPagerReader.h"
#include "jet/IndexTree.h"
#include "jet/NewDatabase.h"
#include "jet/SystemTables.h"
#include "jet/Table.h"
#include "jet/TableDefSerializer.h"
#include "jet/UsageMap.h"
#include "testkit/MdbReaderDump.h"
#include "testkit/TempDir.h"

namespace {

using jet::Format;
using jet::NewFileLayout;
using jet::SystemTable;
using jet::Version;
using jet::testkit::TempDir;

std::vector<uint8_t> hex(const std::string& text) {
    std::vector<uint8_t> out;
    std::istringstream in(text);
    for (std::string b; in >> b;)
        if (b != "|") out.push_back(uint8_t(std::stoul(b, nullptr, 16)));
    return out;
}

std::vector<std::vector<uint8_t>> indexEntries(const jet::Database& db, uint32_t root) {
    jet::PagerIndexPages pages(db.pager());
    return jet::IndexTree(db.format(), pages, root).entries();
}

TEST(SystemTables, DefinitionsHaveTheLengthsAccessWrites) {
    const uint32_t jet3[] = {708, 223, 319, 526};
    const uint32_t jet4[] = {1050, 335, 525, 813};
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const NewFileLayout layout = NewFileLayout::of(v);
        for (SystemTable t : jet::kSystemTables) {
            const auto def = jet::systemTableDef(t, v, 1252, layout);
            const auto stream = jet::serializeTableDef(Format::of(v), *jet::CodePage::get(1252), def);
            EXPECT_EQ((v == Version::Jet3 ? jet3 : jet4)[int(t)], stream.size()) << jet::systemTableName(t);
        }
    }
}

TEST(NewHeader, ReadsBackAsANewFileOfItsVersionWithoutPassword) {
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const Format& f = Format::of(v);
        const uint16_t codePage = v == Version::Jet3 ? 1251 : 1252;
        const std::vector<uint8_t> page = jet::Header::newPage(v, codePage);
        ASSERT_EQ(f.pageSize, page.size());
        EXPECT_EQ(v, jet::Header::detectVersion(page, "new"));
        const jet::Header h = jet::Header::parse(v, page);
        EXPECT_EQ(codePage, h.codePage());
        EXPECT_EQ(0x0409, h.sortOrder());
        EXPECT_EQ(0u, h.databaseKey());
        EXPECT_EQ("", h.password());
        const uint8_t* plain = h.bytes().data();
        EXPECT_EQ(0x04, plain[0x18 + 16]) << "the constant run counts up to 5";
        EXPECT_EQ(0x05, plain[0x18 + 20]);
        EXPECT_EQ(0x0101, jet::le16(plain + f.pageSize - 512));
        EXPECT_EQ(0x0100, jet::le16(plain + f.pageSize - 2));
        if (v == Version::Jet4) {
            EXPECT_NEAR(42850.48, h.creationDate(), 0.01);
            for (int i = 0; i < 40; i += 4) {
                EXPECT_EQ(0x62, plain[0x42 + i]);
                EXPECT_EQ(0xA7, plain[0x42 + i + 1]);
            }
            EXPECT_EQ('4', page[0x9C]) << "the version text lies outside the masked region";
        } else {
            EXPECT_EQ(0.0, h.creationDate());
            EXPECT_EQ(0x00, plain[0x42]);
            EXPECT_NE(0x00, page[0x42]) << "the password field is masked";
        }
    }
}

// The catalogue index ParentIdName of a new file, entry for entry, and its Id index.
TEST(NewDatabase, CatalogueIndexesHoldExactlyTheEntriesOfANewFile) {
    TempDir dir;
    const std::string j4 = dir.file("new4.mdb"), j3 = dir.file("new3.mdb");
    jet::createDatabase(j4, Version::Jet4, 1252);
    jet::createDatabase(j3, Version::Jet3, 1251);
    const std::vector<std::vector<uint8_t>> parentIdName4 = {
        hex("7F 8F 00 00 00 7F 4F 4A 6D 4A 4C 4A 6B 51 6B 01 00 | 00 00 0E 01"),
        hex("7F 8F 00 00 00 7F 69 51 5E 4A 6D 59 64 62 6B 57 59 66 6B 01 00 | 00 00 0E 02"),
        hex("7F 8F 00 00 00 7F 6D 4A 4C 5E 51 6B 01 00 | 00 00 0E 00"),
        hex("7F 8F 00 00 01 7F 60 6B 76 6B 4A 4D 51 6B 01 00 | 00 00 0E 05"),
        hex("7F 8F 00 00 01 7F 60 6B 76 6B 64 4C 5B 51 4D 6D 6B 01 00 | 00 00 0E 04"),
        hex("7F 8F 00 00 01 7F 60 6B 76 6B 68 6F 51 69 59 51 6B 01 00 | 00 00 0E 06"),
        hex("7F 8F 00 00 01 7F 60 6B 76 6B 69 51 5E 4A 6D 59 64 62 6B 57 59 66 6B 01 00 | 00 00 0E 07"),
        hex("7F 8F 00 00 02 7F 60 6B 76 6B 4F 4C 01 00 | 00 00 0E 03"),
    };
    const std::vector<std::vector<uint8_t>> parentIdName3 = {
        hex("7F 8F 00 00 00 7F 64 60 77 60 61 60 76 66 76 00 | 00 00 10 01"),
        hex("7F 8F 00 00 00 7F 75 66 6D 60 77 6A 72 70 76 69 6A 73 76 00 | 00 00 10 02"),
        hex("7F 8F 00 00 00 7F 77 60 61 6D 66 76 00 | 00 00 10 00"),
        hex("7F 8F 00 00 01 7F 6F 76 7D 76 60 62 66 76 00 | 00 00 10 05"),
        hex("7F 8F 00 00 01 7F 6F 76 7D 76 72 61 6B 66 62 77 76 00 | 00 00 10 04"),
        hex("7F 8F 00 00 01 7F 6F 76 7D 76 74 78 66 75 6A 66 76 00 | 00 00 10 06"),
        hex("7F 8F 00 00 01 7F 6F 76 7D 76 75 66 6D 60 77 6A 72 70 76 69 6A 73 76 00 | 00 00 10 07"),
        hex("7F 8F 00 00 02 7F 6F 76 7D 76 64 61 00 | 00 00 10 03"),
    };
    for (const auto& [path, expected, page] : {std::tuple{j4, parentIdName4, 0x0E}, std::tuple{j3, parentIdName3, 0x10}}) {
        auto db = jet::Database::open(path);
        const auto& objects = *db->tableDef(2);
        EXPECT_EQ(expected, indexEntries(*db, objects.physicalIndexes()[0].rootPage));
        const auto ids = indexEntries(*db, objects.physicalIndexes()[1].rootPage);
        const std::vector<std::pair<const char*, int>> idOrder = {
            {"7F 80 00 00 02", 4}, {"7F 80 00 00 03", 5}, {"7F 80 00 00 04", 6}, {"7F 80 00 00 05", 7},
            {"7F 8F 00 00 01", 0}, {"7F 8F 00 00 02", 1}, {"7F 8F 00 00 03", 2}, {"7F 90 00 00 00", 3}};
        ASSERT_EQ(idOrder.size(), ids.size());
        for (size_t i = 0; i < ids.size(); ++i) {
            std::vector<uint8_t> e = hex(idOrder[i].first);
            e.insert(e.end(), {0x00, 0x00, uint8_t(page), uint8_t(idOrder[i].second)});
            EXPECT_EQ(e, ids[i]) << "Id entry " << i;
        }
        // One ACE entry per row, by object id and then by slot; MSysQueries and
        // MSysRelationships have empty roots.
        const auto aces = indexEntries(*db, db->tableDef(3)->physicalIndexes()[0].rootPage);
        ASSERT_EQ(16u, aces.size());
        EXPECT_EQ(hex("7F 80 00 00 02"), std::vector<uint8_t>(aces[0].begin(), aces[0].begin() + 5));
        EXPECT_EQ(0, aces[0].back()) << "slot 0 holds MSysObjects' first entry";
        EXPECT_EQ(13, aces[1].back());
        EXPECT_TRUE(indexEntries(*db, db->tableDef(4)->physicalIndexes()[0].rootPage).empty());
        for (const auto& x : db->tableDef(5)->physicalIndexes()) EXPECT_TRUE(indexEntries(*db, x.rootPage).empty());
        // Counters as the format lists them.
        EXPECT_EQ(8u, objects.rowCount());
        EXPECT_EQ(8u, objects.physicalIndexes()[0].distinctKeys);
        EXPECT_EQ(8u, objects.physicalIndexes()[1].distinctKeys);
        EXPECT_EQ(16u, db->tableDef(3)->rowCount());
        EXPECT_EQ(8u, db->tableDef(3)->physicalIndexes()[0].distinctKeys);
    }
}

TEST(NewDatabase, PagesAreWhereTheMapOfANewFilePutsThem) {
    TempDir dir;
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const std::string path = dir.file(v == Version::Jet3 ? "p3.mdb" : "p4.mdb");
        jet::createDatabase(path, v, 1252);
        const Format& f = Format::of(v);
        const NewFileLayout layout = NewFileLayout::of(v);
        EXPECT_EQ(uint64_t(layout.pageCount()) * f.pageSize, std::filesystem::file_size(path));
        auto db = jet::Database::open(path);
        jet::DataPage page1(f, db->pager().read(1));
        EXPECT_EQ(1u, page1.owner());
        EXPECT_EQ(v == Version::Jet3 ? 1768 : 3940, page1.freeSpace());
        // Free: exactly the pages past the end of the file, up to the end of the bitmap.
        const auto free = jet::UsageMap::read(db->pager(), f, 1u << 8);
        ASSERT_FALSE(free.pages().empty());
        EXPECT_EQ(layout.pageCount(), free.pages().front());
        EXPECT_EQ(f.inlineMapBytes * 8 - layout.pageCount(), free.pages().size());
        EXPECT_EQ(std::vector<uint32_t>{}, jet::UsageMap::read(db->pager(), f, (1u << 8) | 1).pages());
        for (uint32_t k = 0; k < NewFileLayout::mapCount; ++k)
            EXPECT_EQ(69u + (v == Version::Jet3 ? 64u : 0u), jet::DataPage(f, db->pager().read(layout.map(k).page)).row(layout.map(k).slot).size());
        EXPECT_EQ(std::vector<uint32_t>{layout.objectsDataPage()},
                  jet::UsageMap::read(db->pager(), f, db->tableDef(2)->ownedMap()).pages());
        // The rows in the order the format lists them: containers, MSysDb, the tables.
        const auto& entries = db->catalog().entries();
        ASSERT_EQ(8u, entries.size());
        EXPECT_EQ("Tables", entries[0].name);
        EXPECT_EQ("MSysDb", entries[3].name);
        EXPECT_EQ("MSysRelationships", entries[7].name);
        EXPECT_EQ(0x80000000u, entries[7].flags);
        EXPECT_TRUE(db->catalog().userTables().empty());
        const auto report = jet::check(*db);
        EXPECT_TRUE(report.clean()) << report.issues.front().problem;
        EXPECT_EQ(4u, report.tablesChecked);
    }
}

TEST(NewDatabase, TheOlderProviderOpensOnlyTheAccess97File) {
    TempDir dir;
    jet::createDatabase(dir.file("a.mdb"), Version::Jet3);
    jet::createDatabase(dir.file("b.mdb"), Version::Jet4);
    jet::Connection cn;
    cn.Open("Provider=microsoft.jet.OLEDB.3.51;Data Source=" + dir.file("a.mdb"));
    EXPECT_EQ(1251, cn.database()->header().codePage()) << "the program's code page by default";
    cn.Close();
    try {
        cn.Open("Provider=microsoft.jet.OLEDB.3.51;Data Source=" + dir.file("b.mdb"));
        ADD_FAILURE() << "a Jet 4 file needs the newer provider";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::Unspecified, e.number());
    }
    cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + dir.file("b.mdb"));
    EXPECT_EQ(Version::Jet4, cn.database()->version());
}

TEST(NewDatabase, ReplacesAFileButLeavesNothingBehindWhenItCannotWrite) {
    TempDir dir;
    const std::string path = dir.file("old.mdb");
    jet::testkit::writeAll(path, "not a database at all");
    jet::createDatabase(path, Version::Jet4);
    EXPECT_EQ(65536u, std::filesystem::file_size(path));
    EXPECT_FALSE(std::filesystem::exists(path + ".creating"));
    EXPECT_FALSE(std::filesystem::exists(dir.file("old.ldb")));
    EXPECT_TRUE(jet::check(path).clean());

    // A database someone has open is not replaced, and stays as it was.
    {
        jet::Connection reader;
        reader.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path);
        const std::string before = jet::testkit::readAll(path);
        EXPECT_THROW(jet::createDatabase(path, Version::Jet3), jet::RuntimeError);
        EXPECT_EQ(before, jet::testkit::readAll(path));
        EXPECT_FALSE(std::filesystem::exists(path + ".creating"));
    }

    const std::string nowhere = dir.file("missing/folder/new.mdb");
    try {
        jet::createDatabase(nowhere, Version::Jet3);
        ADD_FAILURE() << "a folder that does not exist";
    } catch (const jet::RuntimeError& e) {
        EXPECT_NE(std::string::npos, e.description().find("cannot be created")) << e.description();
    }
    EXPECT_FALSE(std::filesystem::exists(dir.file("missing")));
    EXPECT_THROW(jet::createDatabase(dir.file("x.mdb"), Version::Jet3, 9999), jet::RuntimeError)
        << "a code page the engine cannot convert";
    EXPECT_FALSE(std::filesystem::exists(dir.file("x.mdb")));
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

TEST(NewDatabase, TheIndependentReadersTakeTheNewFiles) {
    if (jet::testkit::runCommand("command -v mdb-ver").empty()) GTEST_SKIP() << "mdbtools is not installed";
    TempDir dir;
    for (Version v : {Version::Jet3, Version::Jet4}) {
        const std::string path = dir.file(v == Version::Jet3 ? "r3.mdb" : "r4.mdb");
        jet::createDatabase(path, v);
        EXPECT_EQ(v == Version::Jet3 ? "JET3\n" : "JET4\n", jet::testkit::runCommand("mdb-ver '" + path + "'"));
        EXPECT_EQ("MSysObjects\nMSysACEs\nMSysQueries\nMSysRelationships\n",
                  jet::testkit::runCommand("mdb-tables -S -1 '" + path + "'"));
        EXPECT_EQ("", jet::testkit::runCommand("mdb-tables -1 '" + path + "'"));
        if (jet::testkit::mdbReaderAvailable()) {
            EXPECT_TRUE(jet::testkit::mdbReaderDump(path).empty());
        }
    }
}

}  // namespace
