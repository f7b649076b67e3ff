// Writing rows through the record set on copies of real files: the table engine's own call
// sequences, pending values, refusals that leave the file untouched (values that do not
// fit, duplicate and null keys, keys without known sort codes), long values of every size
// class, moved rows, growth of indexes and maps, autonumbers and write access.
// After every change the integrity checker, which rebuilds every index from the rows, must
// find nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "base/Bytes.h"
#include "format/CodePage.h"
#include "format/DataPage.h"
#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/DateSerial.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/Table.h"
#include "table/Transaction.h"
#include "testkit/Session.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Connection;
using jet::Recordset;
using jet::Variant;

std::string errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const jet::RuntimeError& e) {
        return e.description();
    }
    return "";
}

// Closes everything and tells whether the file is byte for byte what it was.
bool unchangedSince(Session& s, const std::string& before) {
    s.close();
    return before == readAll(s.path);
}

class BothVersions : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, BothVersions, ::testing::Values("testV1997.mdb", "testV2000.mdb"));

TEST_P(BothVersions, TheTableEngineSequencesLandInTheFile) {
    Session s = Session::onCopyOf(GetParam());
    s.open("Table1");
    const int before = s.rs.RecordCount();
    // AddNewLine: AddNew, first field = RecordCount, Update.
    s.rs.AddNew();
    EXPECT_EQ(before + 1, s.rs.RecordCount());
    s.rs.Fields()[0].setValue(Variant::longValue(s.rs.RecordCount()));
    s.rs.Update();
    // AddValue: MoveFirst, Move(row - 1), assign, UpdateBatch(adAffectAll).
    s.rs.MoveFirst();
    s.rs.Move(before);
    s.field("C").setValue(Variant::string("200"));
    s.field("G").setValue(Variant::string("2024-02-29 13:45:10"));
    s.field("H").setValue(Variant::string("12.34565"));
    s.rs.UpdateBatch(3);
    s.expectClean();
    s.open("Table1");
    s.rs.MoveLast();
    EXPECT_EQ(std::to_string(before + 1), s.text("A"));
    EXPECT_EQ(200, s.field("C").Value().asByte());
    EXPECT_EQ(2024, jet::dateParts(s.field("G").Value().asDate()).year);
    EXPECT_EQ(123456, s.field("H").Value().asCurrency()) << "12.34565 rounds half to even";
    EXPECT_TRUE(s.field("B").Value().isNull());

    // Item let: visible through the record set but not sent; Close drops it, and new rows
    // never sent with it.
    s.rs.MoveFirst();
    const std::string firstA = s.text("A");
    s.field("A").setValue(Variant::string("pending"));
    s.rs.AddNew();
    s.field("A").setValue(Variant::string("never sent"));
    s.rs.MoveFirst();
    EXPECT_EQ("pending", s.text("A"));
    EXPECT_EQ(before + 2, s.rs.RecordCount());
    s.open("Table1");
    EXPECT_EQ(firstA, s.text("A"));
    EXPECT_EQ(before + 1, s.rs.RecordCount());

    // DeleteRecord: MoveFirst, Move(row - 1), Delete(adAffectCurrent).
    s.rs.MoveFirst();
    s.rs.Move(before);
    s.rs.Delete(1);
    s.open("Table1");
    EXPECT_EQ(before, s.rs.RecordCount());
    // CreateTable's: AddNew, Update, MoveFirst, Update: one new row, the second Update sends nothing.
    s.open("Table3");
    const int rows3 = s.rs.RecordCount();
    s.rs.AddNew();
    s.rs.Update();
    s.rs.MoveFirst();
    s.rs.Update();
    // Two rows and an edit pending at once go in one batch.
    s.rs.AddNew();
    s.field("b").setValue(Variant::string("x1"));
    s.rs.AddNew();
    s.field("b").setValue(Variant::string("x2"));
    s.rs.MoveFirst();
    s.field("b").setValue(Variant::string("edited"));
    s.rs.UpdateBatch(3);
    s.open("Table3");
    EXPECT_EQ(rows3 + 3, s.rs.RecordCount());
    EXPECT_EQ("edited", s.text("b"));
    s.rs.MoveLast();
    EXPECT_EQ("x2", s.text("b"));
    // Immediate locking sends the edited row when the cursor leaves it.
    s.open("Table1", 1, 3);
    s.field("E").setValue(Variant::longValue(4242));
    s.rs.MoveNext();
    s.open("Table1");
    EXPECT_EQ(4242, s.field("E").Value().asLong());
    s.expectClean();
}

TEST_P(BothVersions, WhatDoesNotFitOrMayNotBeWrittenIsRefusedAndNothingIsWritten) {
    Session s = Session::onCopyOf(GetParam());
    const std::string original = readAll(s.path);
    s.open("Table1");
    const std::pair<const char*, const char*> misfits[] = {
        {"C", "300"}, {"C", "-1"}, {"D", "40000"}, {"E", "12abc"}, {"G", "2023-02-29"}, {"I", "maybe"}};
    for (const auto& [column, value] : misfits)
        EXPECT_EQ(jet::err::MultipleStepErrors, errorNumberOf([&] { s.field(column).setValue(Variant::string(value)); }))
            << column << " = " << value;
    EXPECT_EQ(jet::err::MultipleStepErrors, errorNumberOf([&] { s.field("A").setValue(Variant::string(std::string(51, 'x'))); }));
    s.field("A").setValue(Variant::string(std::string(50, 'x')));  // the longest text that fits
    s.rs.CancelUpdate();
    s.open("Table1", 0, 1);
    EXPECT_EQ(jet::err::NotSupported, errorNumberOf([&] { s.rs.AddNew(); }));
    EXPECT_EQ(jet::err::NotSupported, errorNumberOf([&] { s.rs.Fields()[0].setValue(Variant::string("x")); }));
    EXPECT_EQ(jet::err::NotSupported, errorNumberOf([&] { s.rs.Delete(1); }));
    s.rs.Close();
    s.rs.Open("SELECT * FROM Table1", s.cn);  // ADO's defaults: forward-only, read-only
    EXPECT_EQ(jet::err::NotSupported, errorNumberOf([&] { s.rs.AddNew(); }));
    EXPECT_TRUE(unchangedSince(s, original));
}

// Duplicates of keys already in the file are the random model test's (RandomWriteTest.cpp).
TEST(TableWrite, DuplicateNullAndUnencodableKeysAreRefusedAndNothingIsWritten) {
    Session s = Session::onCopyOf("testIndexPropertiesV2003.mdb");
    const std::string original = readAll(s.path);
    s.open("TableUnique1_temp");
    s.rs.AddNew();
    s.field("row").setValue(Variant::null());
    s.field("data").setValue(Variant::string("other"));
    EXPECT_NE(std::string::npos, errorOf([&] { s.rs.Update(); }).find("Index or primary key cannot contain a Null value."));
    s.field("row").setValue(Variant::string("\xE6\x97\xA5\xE6\x9C\xAC"));  // no known sort codes
    EXPECT_NE(std::string::npos, errorOf([&] { s.rs.Update(); }).find("PrimaryKey"));
    s.rs.CancelUpdate();
    // An update onto another row's key, and a batch that clashes with itself.
    s.rs.MoveFirst();
    s.rs.MoveNext();
    s.field("data").setValue(Variant::string("stuff"));
    EXPECT_EQ(jet::err::IntegrityViolation, errorNumberOf([&] { s.rs.Update(); }));
    s.rs.CancelUpdate();
    s.rs.AddNew();
    s.field("row").setValue(Variant::string("a"));
    s.rs.AddNew();
    s.field("row").setValue(Variant::string("a"));
    EXPECT_EQ(jet::err::IntegrityViolation, errorNumberOf([&] { s.rs.UpdateBatch(3); }));
    s.rs.CancelBatch();
    EXPECT_TRUE(unchangedSince(s, original));
}

// What the index maintainer must carry into every index: all-null keys left out of the
// "ignore nulls" indexes, keys that move, rows with keys Jet wrote in codes this engine
// does not know, and every byte of code page 1252 in a Jet 3 text key.
TEST(TableWrite, IndexesFollowInsertsUpdatesAndDeletesOfEveryKind) {
    Session s = Session::onCopyOf("testIndexPropertiesV2003.mdb");
    for (const char* table : {"TableIgnoreNulls1", "TableIgnoreNulls2", "TableUnique2_temp"}) {
        s.open(table);
        s.rs.AddNew();
        s.rs.Fields()[0].setValue(Variant::string(std::string(table) + " A"));
        s.rs.AddNew();
        s.rs.Fields()[0].setValue(Variant::string(std::string(table) + " B"));
        s.rs.Fields()[1].setValue(Variant::string("stuft"));
        s.rs.UpdateBatch(3);
        s.rs.MoveFirst();
        s.rs.Fields()[1].setValue(Variant::string("moved key"));
        s.rs.Update();
        s.rs.MoveLast();
        s.rs.Delete(1);
        s.rs.MoveFirst();
        s.rs.MoveNext();
        s.rs.Delete(1);
    }
    s.expectClean();

    Session unicode = Session::onCopyOf("testUnicodeCompV2003.mdb");
    unicode.open("Table");
    unicode.rs.AddNew();
    unicode.field("Unicode").setValue(Variant::string("\xCF\xB0\xCE\xB1"));  // no known sort codes
    const std::string refusal = errorOf([&] { unicode.rs.Update(); });
    EXPECT_NE(std::string::npos, refusal.find("'Unicode'")) << refusal;
    EXPECT_NE(std::string::npos, refusal.find("U+03F0")) << refusal;
    unicode.rs.CancelUpdate();
    for (unicode.rs.MoveFirst(); !unicode.rs.Eof();)  // the rows Jet wrote, found by their row pointers
        unicode.rs.Delete(1);
    unicode.expectClean();

    Session bytes = Session::onCopyOf("testIndexCodesV1997.mdb");
    bytes.open("Table14");  // one row per byte value in an indexed text column
    int changed = 0;
    for (bytes.rs.MoveFirst(); !bytes.rs.Eof(); bytes.rs.MoveNext(), ++changed)
        bytes.field("data").setValue(Variant::string(jet::CodePage::get(1252)->toUtf8(
            std::vector<uint8_t>{uint8_t(0xC0 + changed % 64), uint8_t('a' + changed % 26)})));
    bytes.rs.UpdateBatch(3);
    EXPECT_GT(changed, 200);
    bytes.expectClean();
}

TEST(TableWrite, ATableWithAnUnknownCollatingOrderIsNotChanged) {
    WritableCopy copy("testIndexPropertiesV2003.mdb");
    {
        // Give the indexed text column "data" the Russian order (LCID at byte 11 of its descriptor).
        auto db = jet::Database::open(copy.path());
        const auto& def = db->openTable("TableIgnoreNulls1")->def();
        const auto& f = db->format();
        const size_t at = size_t(def.page()) * f.pageSize + f.tdefHeaderSize + def.physicalIndexes().size() * f.indexCountBlockSize +
                          size_t(def.findColumn("data")->descriptorIndex) * f.columnDescriptorSize + 11;
        std::string bytes = readAll(copy.path());
        ASSERT_EQ(0x0409, jet::le16(reinterpret_cast<const uint8_t*>(bytes.data()) + at));
        bytes[at + 1] = 0x04;
        bytes[at] = 0x19;
        db.reset();
        writeAll(copy.path(), bytes);
    }
    const std::string original = readAll(copy.path());
    Connection cn;
    cn.Open(copy.connectionString());
    Recordset rs;
    rs.Open("SELECT * FROM TableIgnoreNulls1", cn, 2, 4);
    const std::string refusal = errorOf([&] { rs.Delete(1); });
    EXPECT_NE(std::string::npos, refusal.find("0x0419")) << refusal;
    EXPECT_NE(std::string::npos, refusal.find("'DataIndex'")) << refusal;
    rs.Close();
    cn.Close();
    EXPECT_EQ(original, readAll(copy.path()));
}

class LongValues : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, LongValues, ::testing::Values("test2V1997.mdb", "test2V2003.mdb"));

TEST_P(LongValues, MemoAndOleOfEverySizeClassRoundTripAndAreFreedWhenReplaced) {
    Session s = Session::onCopyOf(GetParam());
    s.open("MSP_PROJECTS");
    const int before = s.rs.RecordCount();
    const std::vector<size_t> sizes = {0, 10, 64, 65, 1500, 2032, 2033, 4076, 4077, 30000};
    auto text = [](size_t n) {
        std::string t;
        for (size_t i = 0; i < n; ++i) t += char('a' + (i * 7 + n) % 26);
        return t;
    };
    auto blob = [](size_t n) {
        std::vector<uint8_t> b(n);
        for (size_t i = 0; i < n; ++i) b[i] = uint8_t(i * 31 + n);
        return b;
    };
    for (size_t n : sizes) {
        s.rs.AddNew();
        s.field("PROJ_ID").setValue(Variant::longValue(int32_t(1000 + n)));
        s.field("PROJ_PROP_AUTHOR").setValue(Variant::string(text(n)));
        s.field("RESERVED_BINARY_DATA").setValue(Variant::bytes(blob(n)));
        s.rs.Update();
    }
    s.open("MSP_PROJECTS");
    s.rs.Move(before);
    for (size_t n : sizes) {
        EXPECT_EQ(text(n), s.text("PROJ_PROP_AUTHOR")) << n;
        EXPECT_EQ(Variant::bytes(blob(n)), s.field("RESERVED_BINARY_DATA").Value()) << n;
        s.rs.MoveNext();
    }
    // Replaced by short ones, then deleted: the long-value pages are reused, so doing it all
    // again does not grow the file.
    auto cycle = [&] {
        s.open("MSP_PROJECTS");
        for (s.rs.Move(before); !s.rs.Eof(); s.rs.MoveNext()) {
            s.field("PROJ_PROP_AUTHOR").setValue(Variant::string("short"));
            s.rs.Update();
        }
        s.rs.MoveFirst();
        for (s.rs.Move(before); !s.rs.Eof();) s.rs.Delete(1);
        for (size_t n : sizes) {
            s.rs.AddNew();
            s.field("PROJ_PROP_AUTHOR").setValue(Variant::string(std::string(n, 'q')));
            s.field("RESERVED_BINARY_DATA").setValue(Variant::bytes(std::vector<uint8_t>(n, 7)));
            s.rs.Update();
        }
        s.expectClean();
    };
    cycle();
    const auto size = std::filesystem::file_size(s.path);
    cycle();
    cycle();
    EXPECT_LE(std::filesystem::file_size(s.path), size + 4 * 4096);
}

TEST(TableWrite, ARowThatOutgrowsItsPageMovesAndKeepsItsIdentity) {
    Session s = Session::onCopyOf("testV2000.mdb");
    s.open("Table1");
    for (int i = 0; i < 40; ++i) {  // fill the first data page so its first row cannot grow in place
        s.rs.AddNew();
        s.field("A").setValue(Variant::string("filler " + std::to_string(i) + std::string(40, 'f')));
        s.field("B").setValue(Variant::string(std::string(90, 'g')));
        s.rs.Update();
    }
    auto db = s.cn.database();
    const auto firstRow = db->openTable("Table1")->rowLocations().front();
    for (int round = 0; round < 3; ++round) {
        s.open("Table1");
        s.field("B").setValue(Variant::string(std::string(60 + 20 * round, char('k' + round))));
        s.rs.Update();
        s.expectClean();
    }
    EXPECT_TRUE(jet::DataPage(db->format(), db->pager().read(firstRow.page)).isOverflowHeader(firstRow.slot));
    s.open("Table1");
    EXPECT_EQ(std::string(100, 'm'), s.text("B"));
    s.rs.Delete(1);
    s.expectClean();
}

class Growth : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, Growth, ::testing::Values("compIndexTestV1997.mdb", "compIndexTestV2003.mdb"));

TEST_P(Growth, ThousandsOfRowsSplitTheIndexAndOutgrowInlineMaps) {
    Session s = Session::onCopyOf(GetParam(), TempDir::Place::InMemory);
    s.open("Table1");
    const int before = s.rs.RecordCount();
    for (int i = 0; i < 6000; ++i) {
        s.rs.AddNew();
        s.field("CD_AGENTE").setValue(Variant::longValue((i * 7919) % 100000));
        s.field("RS_AGENTE").setValue(Variant::string("agent " + std::to_string(i)));
        s.field("DC_AGENTE").setValue(Variant::string(std::string(20 + i % 30, 'd')));
    }
    s.rs.UpdateBatch(3);
    s.expectClean();
    s.open("Table1");
    for (s.rs.Move(before); !s.rs.Eof();) {  // every other new row
        s.rs.Delete(1);
        if (!s.rs.Eof()) s.rs.MoveNext();
    }
    s.expectClean();
    s.open("Table1");
    EXPECT_EQ(before + 3000, s.rs.RecordCount());
}

TEST(TableWrite, AutoNumbersCountOnAndAnExplicitLargerValueRaisesTheCounter) {
    Session s = Session::onCopyOf("testV2000.mdb");
    auto table = s.cn.database()->openTable("Table3");
    const jet::Column* counter = nullptr;
    for (const auto& c : table->def().columns())
        if (c.isAutoNumber()) counter = &c;
    ASSERT_NE(nullptr, counter);
    const int32_t last = int32_t(table->def().autoNumber());
    s.open("Table3");
    s.rs.AddNew();
    s.rs.Update();
    EXPECT_EQ(last + 1, s.field(counter->name).Value().asLong());
    s.rs.AddNew();
    s.field(counter->name).setValue(Variant::longValue(last + 100));
    s.rs.Update();
    s.rs.AddNew();
    s.rs.Update();
    EXPECT_EQ(last + 101, s.field(counter->name).Value().asLong());
    EXPECT_EQ(jet::err::MultipleStepErrors, errorNumberOf([&] { s.field(counter->name).setValue(Variant::longValue(5)); }));
    s.expectClean();
}

TEST(TableWrite, WriteAccessIsTakenAtTheFirstChangeAndAnotherOpenerBlocksIt) {
    WritableCopy copy("testV2000.mdb");
    const std::string lockFile = copy.dir().file("testV2000.ldb");
    auto first = jet::Database::open(copy.path());
    auto second = jet::Database::open(copy.path());  // readers share the file
    EXPECT_FALSE(std::filesystem::exists(lockFile)) << "reading takes no lock file";
    EXPECT_EQ(jet::err::Unspecified, errorNumberOf([&] { jet::Transaction tx(*first); })) << "another opener reads it";
    second.reset();
    jet::Transaction(*first).commit();
    EXPECT_TRUE(std::filesystem::exists(lockFile)) << "a writer keeps the lock file";
    EXPECT_EQ(jet::err::Unspecified, errorNumberOf([&] { jet::Database::open(copy.path()); })) << "in use by a writer";
    first.reset();
    EXPECT_FALSE(std::filesystem::exists(lockFile));
}

}  // namespace
