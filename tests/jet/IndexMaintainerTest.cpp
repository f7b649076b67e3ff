// Row inserts, updates and deletes carried into every index of real tables: what the plan
// refuses (duplicates, nulls in keys, unknown characters and collating orders), and that
// after applying it the tables check clean against their rows.
#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "IndexFilePages.h"
#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Database.h"
#include "jet/IndexCheck.h"
#include "jet/IndexMaintainer.h"
#include "jet/IndexPagerReader.h"
#include "jet/IndexTree.h"
#include "jet/Table.h"

namespace {

using jet::Database;
using jet::IndexMaintainer;
using jet::RowLocation;
using jet::testing::fixture;
using jet::testing::MemoryFile;
using jet::testing::readFileBytes;
using Bytes = std::vector<uint8_t>;

// A fixture file in memory whose bytes the test changes: rows by hand, indexes through the
// maintainer. The database is reopened to see the changes.
class Copy {
public:
    explicit Copy(const char* name) : bytes_(readFileBytes(fixture(name))) { reopen(); }

    void reopen() { db_ = Database::open(std::make_unique<MemoryFile>(bytes_), "copy.mdb"); }
    const Database& db() const { return *db_; }
    const jet::Format& format() const { return db_->format(); }
    std::shared_ptr<jet::Table> table(const char* name) const { return db_->openTable(name); }

    IndexMaintainer maintainer(const jet::Table& t) {
        return IndexMaintainer(*db_, t.def(), t.name(), [this](const jet::PhysicalIndex& x) -> jet::IndexPageStore& {
            auto& pages = stores_[x.rootPage];
            if (!pages) pages = std::make_unique<FileIndexPages>(bytes_, format(), x.ownedMap);
            return *pages;
        });
    }

    // Adds a row in a new slot at the end of a data page.
    RowLocation appendRow(uint32_t page, const Bytes& row) {
        const auto& f = format();
        uint8_t* p = bytes_.data() + size_t(page) * f.pageSize;
        const uint16_t n = jet::le16(p + f.dataRowCountOffset);
        const uint16_t lowest = n == 0 ? uint16_t(f.pageSize) : uint16_t(jet::le16(slot(p, n - 1)) & 0x1FFF);
        const uint16_t at = uint16_t(lowest - row.size());
        if (at < f.dataSlotsOffset + 2 * (n + 1)) throw std::logic_error("the test page is full");
        std::copy(row.begin(), row.end(), p + at);
        jet::putLe16(slot(p, n), at);
        jet::putLe16(p + f.dataRowCountOffset, uint16_t(n + 1));
        jet::putLe16(p + 2, uint16_t(at - (f.dataSlotsOffset + 2 * (n + 1))));
        return {page, uint8_t(n)};
    }
    void markDeleted(RowLocation loc) {
        uint8_t* s = slot(bytes_.data() + size_t(loc.page) * format().pageSize, loc.slot);
        jet::putLe16(s, uint16_t(jet::le16(s) | 0xC000));
    }
    // Overwrites a row with one of the same length.
    void rewriteRow(const jet::Table& t, RowLocation loc, const Bytes& row) {
        auto old = t.rowBytes(loc);
        ASSERT_EQ(old.size(), row.size());
        const size_t at = size_t(loc.page) * format().pageSize + size_t(old.data() - db_->pager().read(loc.page));
        std::copy(row.begin(), row.end(), bytes_.begin() + ptrdiff_t(at));
    }
    Bytes& bytes() { return bytes_; }

    std::string indexProblems(const char* tableName) {
        reopen();
        std::string all;
        for (const auto& p : jet::checkTableIndexes(*table(tableName)).problems) all += p + "\n";
        return all;
    }

private:
    uint8_t* slot(uint8_t* page, unsigned k) { return page + format().dataSlotsOffset + 2 * k; }

    Bytes bytes_;
    std::unique_ptr<Database> db_;
    std::map<uint32_t, std::unique_ptr<FileIndexPages>> stores_;
};

Bytes rowOf(const jet::Table& t, RowLocation loc) {
    auto s = t.rowBytes(loc);
    return Bytes(s.begin(), s.end());
}

// Where a column's stored value lies inside a row copy.
size_t valueAt(const Copy& c, const jet::Table& t, const Bytes& row, const char* column) {
    jet::RowReader r(c.format(), t.def(), row);
    return size_t(r.column(*t.def().findColumn(column)).bytes.data() - row.data());
}

void setNull(const jet::Table& t, Bytes& row, const char* column) {
    const uint16_t n = t.def().findColumn(column)->number;
    const size_t maskSize = (size_t(jet::le16(row.data())) + 7) / 8;  // Jet 4: u16 column count first
    row[row.size() - maskSize + n / 8] &= uint8_t(~(1u << (n % 8)));
}

size_t entriesOf(Copy& c, const jet::Table& t, const char* logicalName) {
    for (const auto& l : t.def().logicalIndexes()) {
        if (l.name != logicalName) continue;
        jet::PagerIndexPages pages(c.db().pager());
        return jet::IndexTree(c.format(), pages, t.def().physicalIndexes()[l.physicalIndex].rootPage).entries().size();
    }
    return 0;
}

TEST(IndexMaintainer, InsertedRowsGetTheirEntriesAndAllNullKeysAreLeftOutWhereAsked) {
    Copy c("testIndexPropertiesV2003.mdb");
    auto t = c.table("TableIgnoreNulls1");
    const auto rows = t->rowLocations();
    ASSERT_EQ(10u, rows.size());

    Bytes withData = rowOf(*t, rows[0]);  // "row0", "stuff"
    withData[valueAt(c, *t, withData, "row") + 5] = 'A';  // compressed text: FF FE r o w 0
    Bytes withoutData = rowOf(*t, rows[1]);  // "row1", null
    withoutData[valueAt(c, *t, withoutData, "row") + 5] = 'B';

    // The rows go into new slots at the end of the table's page; the plans name those slots.
    const RowLocation a = c.appendRow(rows[0].page, withData);
    const RowLocation b = c.appendRow(rows[0].page, withoutData);
    auto m = c.maintainer(*t);
    auto planA = m.planInsert(withData, {a.page, a.slot});
    auto planB = m.planInsert(withoutData, {b.page, b.slot});
    ASSERT_EQ(2u, planA.changes.size());
    ASSERT_EQ(1u, planB.changes.size()) << "no entry for an all-null key in an ignore-nulls index";
    // "rowA" is a new key; "stuff" is already in the data index.
    EXPECT_NE(planA.changes[0].newDistinctKey, planA.changes[1].newDistinctKey);
    m.apply(planA);
    m.apply(planB);
    EXPECT_EQ("", c.indexProblems("TableIgnoreNulls1"));
    EXPECT_EQ(12u, entriesOf(c, *c.table("TableIgnoreNulls1"), "PrimaryKey"));
}

TEST(IndexMaintainer, RefusesDuplicatesAndNullsInKeysBeforeChangingAnything) {
    Copy c("testIndexPropertiesV2003.mdb");
    auto t = c.table("TableIgnoreNulls1");
    const auto rows = t->rowLocations();
    auto m = c.maintainer(*t);
    const Bytes before = c.bytes();

    Bytes same = rowOf(*t, rows[2]);
    try {
        m.planInsert(same, {rows[2].page, 250});
        FAIL() << "a second row0 was accepted";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::IntegrityViolation, e.number());
        EXPECT_NE(std::string::npos, e.description().find("duplicate values in the index"));
    }
    Bytes noKey = rowOf(*t, rows[3]);
    setNull(*t, noKey, "row");
    try {
        m.planInsert(noKey, {rows[3].page, 250});
        FAIL() << "a null primary key was accepted";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ("Index or primary key cannot contain a Null value.", e.description());
    }
    EXPECT_EQ(before, c.bytes()) << "nothing is written by a refused plan";
}

TEST(IndexMaintainer, UpdatesMoveEntriesAndRefuseDuplicatesInUniqueIndexes) {
    Copy c("testIndexPropertiesV2003.mdb");
    auto t = c.table("TableUnique1_temp");
    const auto rows = t->rowLocations();
    auto m = c.maintainer(*t);

    // "stuff" becomes "stuft": the unique DataIndex entry moves, the primary key stays.
    const Bytes old0 = rowOf(*t, rows[0]);
    Bytes new0 = old0;
    const size_t data0 = valueAt(c, *t, new0, "data");
    ASSERT_EQ('f', new0[data0 + 6]);
    new0[data0 + 6] = 't';
    auto plan = m.planUpdate(old0, new0, {rows[0].page, rows[0].slot});
    ASSERT_EQ(1u, plan.changes.size());
    EXPECT_TRUE(plan.changes[0].remove && plan.changes[0].insert);
    c.rewriteRow(*t, rows[0], new0);
    m.apply(plan);
    EXPECT_EQ("", c.indexProblems("TableUnique1_temp"));

    // "more" may not become "some": another row has it.
    c.reopen();
    t = c.table("TableUnique1_temp");
    auto m2 = c.maintainer(*t);
    const Bytes row2 = rowOf(*t, rows[2]);
    Bytes clash = row2;
    const size_t data2 = valueAt(c, *t, clash, "data");
    ASSERT_EQ(0, memcmp(clash.data() + data2 + 2, "more", 4));
    memcpy(clash.data() + data2 + 2, "some", 4);
    try {
        m2.planUpdate(row2, clash, {rows[2].page, rows[2].slot});
        FAIL() << "a duplicate in a unique index was accepted";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(jet::err::IntegrityViolation, e.number());
    }
}

TEST(IndexMaintainer, DeletedRowsLeaveEveryIndex) {
    Copy c("testIndexPropertiesV2003.mdb");
    auto t = c.table("TableUnique2_temp");
    const auto rows = t->rowLocations();
    auto m = c.maintainer(*t);
    for (size_t k : {0u, 1u, 5u, 10u}) {  // with and without nulls in the two-column index
        auto plan = m.planDelete(rowOf(*t, rows[k]), {rows[k].page, rows[k].slot});
        m.apply(plan);
        c.markDeleted(rows[k]);
    }
    EXPECT_EQ("", c.indexProblems("TableUnique2_temp"));
}

TEST(IndexMaintainer, RowsWithUnknownCharactersAreRefusedButCanBeDeleted) {
    Copy c("testUnicodeCompV2003.mdb");
    auto t = c.table("Table");
    const auto rows = t->rowLocations();
    auto m = c.maintainer(*t);
    const RowLocation greek = rows[3];  // "ϰαὶ τότ' ἐγὼ Κύϰλωπα"
    Bytes copy = rowOf(*t, greek);
    copy[valueAt(c, *t, copy, "ID")] = 99;  // a fresh autonumber
    try {
        m.planInsert(copy, {greek.page, 200});
        FAIL() << "a key with unknown codes was accepted";
    } catch (const jet::RuntimeError& e) {
        EXPECT_NE(std::string::npos, e.description().find("'Unicode'")) << e.description();
        EXPECT_NE(std::string::npos, e.description().find("U+03F0")) << e.description();
    }
    // Its own entry, written by Jet, is found by the row pointer.
    auto plan = m.planDelete(rowOf(*t, greek), {greek.page, greek.slot});
    ASSERT_EQ(2u, plan.changes.size());
    m.apply(plan);
    c.markDeleted(greek);
    EXPECT_EQ("", c.indexProblems("Table"));
}

TEST(IndexMaintainer, Jet3TextKeysOfEveryByteStayExact) {
    Copy c("testIndexCodesV1997.mdb");
    auto t = c.table("Table14");  // one row per byte value in an indexed text column
    const auto rows = t->rowLocations();
    auto m = c.maintainer(*t);
    size_t changed = 0;
    for (size_t k = 0; k < rows.size(); k += 7) {
        const Bytes old = rowOf(*t, rows[k]);
        auto value = jet::RowReader(c.format(), t->def(), old).column(*t->def().findColumn("data"));
        if (!value.present || value.bytes.empty()) continue;
        Bytes updated = old;
        updated[valueAt(c, *t, updated, "data")] = uint8_t(0xC0 + k % 64);  // accented capitals and small letters
        auto plan = m.planUpdate(old, updated, {rows[k].page, rows[k].slot});
        c.rewriteRow(*t, rows[k], updated);
        m.apply(plan);
        ++changed;
    }
    EXPECT_GT(changed, 30u);
    EXPECT_EQ("", c.indexProblems("Table14"));
}

TEST(IndexMaintainer, TablesWithAnUnknownCollatingOrderAreNotChanged) {
    Copy c("testIndexPropertiesV2003.mdb");
    {
        // Give the indexed text column "data" the Russian order (LCID at byte 11 of its descriptor).
        auto t = c.table("TableIgnoreNulls1");
        const jet::Column* data = t->def().findColumn("data");
        const auto& f = c.format();
        const size_t at = size_t(t->def().page()) * f.pageSize + f.tdefHeaderSize +
                          t->def().physicalIndexes().size() * f.indexCountBlockSize +
                          size_t(data->descriptorIndex) * f.columnDescriptorSize + 11;
        ASSERT_EQ(0x0409, jet::le16(c.bytes().data() + at));
        jet::putLe16(c.bytes().data() + at, 0x0419);
    }
    c.reopen();
    auto t = c.table("TableIgnoreNulls1");
    auto m = c.maintainer(*t);
    const auto rows = t->rowLocations();
    try {
        m.planDelete(rowOf(*t, rows[0]), {rows[0].page, rows[0].slot});
        FAIL() << "a row of a table with a Russian-ordered index was deleted";
    } catch (const jet::RuntimeError& e) {
        EXPECT_NE(std::string::npos, e.description().find("0x0419")) << e.description();
        EXPECT_NE(std::string::npos, e.description().find("'DataIndex'")) << e.description();
    }
}

}  // namespace
