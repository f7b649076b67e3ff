// Writing rows through the record set on copies of real files: the table engine's own call
// sequences, pending values, refusals that leave the file untouched, long values of every
// size class, moved rows, growth of indexes and maps, reuse of emptied pages, read-only
// files. After every change the integrity checker must find nothing.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include <filesystem>
#include <functional>

#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/DataPage.h"
#include "jet/DateSerial.h"
#include "jet/Database.h"
#include "jet/Recordset.h"
#include "jet/Table.h"
#include "jet/Transaction.h"
#include "testkit/WritableCopy.h"

namespace {

using jet::Connection;
using jet::Recordset;
using jet::Variant;
using jet::testkit::WritableCopy;

int errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const jet::RuntimeError& e) {
        return e.number();
    }
    return 0;
}

std::string problems(const jet::CheckReport& r) {
    std::string out;
    for (const auto& i : r.issues) out += i.where + ": " + i.problem + "\n";
    return out;
}

// A copy of a fixture, opened as the table engine opens it.
struct Session {
    // Tests that commit thousands of transactions keep the copy on a RAM disk, where a sync
    // costs nothing; durability itself is the crash tests' business.
    explicit Session(const std::string& fixture, jet::testkit::TempDir::Place place = jet::testkit::TempDir::Place::Disk)
        : copy(fixture, place) {
        cn.Open(copy.connectionString());
    }

    void open(const std::string& table, int cursor = 2, int lock = 4) {
        if (rs.State() == 1) rs.Close();
        rs.Open("SELECT * FROM " + table, cn, cursor, lock, -1);
    }
    std::string text(const std::string& field) { return rs.Fields()[field].Value().toString(); }
    void expectClean() {
        auto report = jet::check(*cn.database());
        EXPECT_TRUE(report.clean()) << problems(report);
    }
    std::string fileBytes() const { return jet::testkit::readAll(copy.path()); }

    WritableCopy copy;
    Connection cn;
    Recordset rs;
};

class BothVersions : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, BothVersions, ::testing::Values("testV1997.mdb", "testV2000.mdb"));

TEST_P(BothVersions, TheTableEngineSequencesLandInTheFile) {
    Session s(GetParam());
    s.open("Table1");
    const int before = s.rs.RecordCount();

    // AddNewLine: AddNew, first field = RecordCount, Update.
    s.rs.AddNew();
    EXPECT_EQ(before + 1, s.rs.RecordCount());
    s.rs.Fields()[0].setValue(Variant::longValue(s.rs.RecordCount()));
    s.rs.Update();
    s.expectClean();

    // AddValue: MoveFirst, Move(row - 1), assign, UpdateBatch(adAffectAll).
    s.rs.MoveFirst();
    s.rs.Move(before);
    s.rs.Fields()["C"].setValue(Variant::string("200"));
    s.rs.Fields()["G"].setValue(Variant::string("2024-02-29 13:45:10"));
    s.rs.Fields()["H"].setValue(Variant::string("12.34565"));
    s.rs.UpdateBatch(3);
    s.expectClean();

    s.open("Table1");
    ASSERT_EQ(before + 1, s.rs.RecordCount());
    s.rs.MoveLast();
    EXPECT_EQ(std::to_string(before + 1), s.text("A"));
    EXPECT_EQ(200, s.rs.Fields()["C"].Value().asByte());
    EXPECT_EQ(2024, jet::dateParts(s.rs.Fields()["G"].Value().asDate()).year);
    EXPECT_EQ(123456, s.rs.Fields()["H"].Value().asCurrency());  // 12.34565 rounds half to even
    EXPECT_TRUE(s.rs.Fields()["B"].Value().isNull());

    // Item let: the value is visible through the record set but not sent; Close drops it.
    s.rs.MoveFirst();
    const std::string firstA = s.text("A");
    s.rs.Fields()["A"].setValue(Variant::string("pending"));
    s.rs.MoveNext();
    s.rs.MovePrevious();
    EXPECT_EQ("pending", s.text("A"));
    s.rs.Close();
    s.open("Table1");
    EXPECT_EQ(firstA, s.text("A"));

    // DeleteRecord: MoveFirst, Move(row - 1), Delete(adAffectCurrent), MoveFirst, Close.
    s.rs.MoveFirst();
    s.rs.Move(before);
    s.rs.Delete(1);
    EXPECT_EQ(before, s.rs.RecordCount());
    s.rs.MoveFirst();
    s.rs.Close();
    s.open("Table1");
    EXPECT_EQ(before, s.rs.RecordCount());
    s.expectClean();
}

TEST_P(BothVersions, CreateTableSequenceLeavesOneRowAndBatchSendsEverythingAtOnce) {
    Session s(GetParam());
    s.open("Table3");
    const int before = s.rs.RecordCount();
    // AddNew, Update, MoveFirst, Update: one new row, the second Update has nothing to send.
    s.rs.AddNew();
    s.rs.Update();
    s.rs.MoveFirst();
    s.rs.Update();
    s.open("Table3");
    EXPECT_EQ(before + 1, s.rs.RecordCount());

    // Two rows and an edit pending at once; UpdateBatch sends them in one transaction.
    s.rs.AddNew();
    s.rs.Fields()["b"].setValue(Variant::string("x1"));
    s.rs.AddNew();
    s.rs.Fields()["b"].setValue(Variant::string("x2"));
    s.rs.MoveFirst();
    s.rs.Fields()["b"].setValue(Variant::string("edited"));
    EXPECT_EQ(before + 3, s.rs.RecordCount());
    s.rs.UpdateBatch(3);
    s.open("Table3");
    EXPECT_EQ(before + 3, s.rs.RecordCount());
    EXPECT_EQ("edited", s.text("b"));
    s.rs.MoveLast();
    EXPECT_EQ("x2", s.text("b"));
    s.expectClean();
}

TEST_P(BothVersions, ValuesThatDoNotFitAreRefusedWhenAssignedAndNothingIsWritten) {
    Session s(GetParam());
    const std::string original = s.fileBytes();
    s.open("Table1");
    s.rs.MoveFirst();
    const int mismatch = jet::err::MultipleStepErrors;
    EXPECT_EQ(mismatch, errorOf([&] { s.rs.Fields()["C"].setValue(Variant::string("300")); }));   // Byte
    EXPECT_EQ(mismatch, errorOf([&] { s.rs.Fields()["C"].setValue(Variant::longValue(-1)); }));
    EXPECT_EQ(mismatch, errorOf([&] { s.rs.Fields()["D"].setValue(Variant::string("40000")); })); // Integer
    EXPECT_EQ(mismatch, errorOf([&] { s.rs.Fields()["E"].setValue(Variant::string("12abc")); }));
    EXPECT_EQ(mismatch, errorOf([&] { s.rs.Fields()["G"].setValue(Variant::string("2023-02-29")); }));
    EXPECT_EQ(mismatch, errorOf([&] { s.rs.Fields()["I"].setValue(Variant::string("maybe")); }));
    EXPECT_EQ(mismatch, errorOf([&] { s.rs.Fields()["A"].setValue(Variant::string(std::string(51, 'x'))); }));
    // The longest text that fits is taken.
    s.rs.Fields()["A"].setValue(Variant::string(std::string(50, 'x')));
    s.rs.CancelUpdate();
    s.rs.Close();
    s.cn.Close();
    EXPECT_EQ(original, s.fileBytes());
}

TEST_P(BothVersions, ReadOnlyRecordSetsRefuseWritesWithAdosError) {
    Session s(GetParam());
    s.open("Table1", 0, 1);
    EXPECT_EQ(jet::err::NotSupported, errorOf([&] { s.rs.AddNew(); }));
    s.rs.MoveFirst();
    EXPECT_EQ(jet::err::NotSupported, errorOf([&] { s.rs.Fields()[0].setValue(Variant::string("x")); }));
    EXPECT_EQ(jet::err::NotSupported, errorOf([&] { s.rs.Delete(1); }));
    s.rs.Close();
    s.rs.Open("SELECT * FROM Table1", s.cn);  // ADO's defaults: forward-only, read-only
    EXPECT_EQ(jet::err::NotSupported, errorOf([&] { s.rs.AddNew(); }));
}

TEST_P(BothVersions, ImmediateLockingSendsTheEditedRowWhenTheCursorLeavesIt) {
    Session s(GetParam());
    s.open("Table1", 1, 3);
    s.rs.MoveFirst();
    s.rs.Fields()["E"].setValue(Variant::longValue(4242));
    s.rs.MoveNext();  // sends
    s.rs.Close();
    s.open("Table1");
    EXPECT_EQ(4242, s.rs.Fields()["E"].Value().asLong());
}

TEST(TableWrite, DuplicateKeysAndNullKeysAreRefusedWithJetsErrorsAndNothingIsWritten) {
    Session s("testIndexPropertiesV2003.mdb");
    const std::string original = s.fileBytes();
    s.open("TableUnique1_temp");
    const int before = s.rs.RecordCount();
    s.rs.AddNew();
    s.rs.Fields()["row"].setValue(Variant::string("row0"));  // the primary key of the first row
    s.rs.Fields()["data"].setValue(Variant::string("fresh"));
    EXPECT_EQ(jet::err::IntegrityViolation, errorOf([&] { s.rs.Update(); }));
    s.rs.Fields()["row"].setValue(Variant::string("new row"));
    s.rs.Fields()["data"].setValue(Variant::string("stuff"));  // unique index: "stuff" is taken
    EXPECT_EQ(jet::err::IntegrityViolation, errorOf([&] { s.rs.Update(); }));
    s.rs.Fields()["row"].setValue(Variant::null());
    s.rs.Fields()["data"].setValue(Variant::string("other"));
    EXPECT_NE(0, errorOf([&] { s.rs.Update(); }));  // a primary key cannot be Null
    s.rs.CancelUpdate();
    EXPECT_EQ(before, s.rs.RecordCount());
    // A whole batch fails when one of its rows does, and leaves the file as it was.
    s.rs.AddNew();
    s.rs.Fields()["row"].setValue(Variant::string("a"));
    s.rs.AddNew();
    s.rs.Fields()["row"].setValue(Variant::string("a"));
    EXPECT_EQ(jet::err::IntegrityViolation, errorOf([&] { s.rs.UpdateBatch(3); }));
    s.rs.CancelBatch();
    s.rs.Close();
    s.cn.Close();
    EXPECT_EQ(original, s.fileBytes());

    // Once the clash is gone the same row goes in, and the indexes check clean.
    Session again("testIndexPropertiesV2003.mdb");
    again.open("TableUnique1_temp");
    again.rs.AddNew();
    again.rs.Fields()["row"].setValue(Variant::string("new row"));
    again.rs.Fields()["data"].setValue(Variant::string("fresh"));
    again.rs.Update();
    again.expectClean();
}

class LongValues : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, LongValues, ::testing::Values("test2V1997.mdb", "test2V2003.mdb"));

TEST_P(LongValues, MemoAndOleOfEverySizeClassRoundTripAndAreFreedWhenReplaced) {
    Session s(GetParam());
    s.open("MSP_PROJECTS");
    const int before = s.rs.RecordCount();
    const std::vector<size_t> sizes = {0, 10, 64, 65, 1500, 2032, 2033, 4076, 4077, 30000};
    std::vector<std::string> texts;
    for (size_t n : sizes) {
        std::string t;
        for (size_t i = 0; i < n; ++i) t += char('a' + (i * 7 + n) % 26);
        texts.push_back(t);
        std::vector<uint8_t> blob(n);
        for (size_t i = 0; i < n; ++i) blob[i] = uint8_t(i * 31 + n);
        s.rs.AddNew();
        s.rs.Fields()["PROJ_ID"].setValue(Variant::longValue(int32_t(1000 + n)));
        s.rs.Fields()["PROJ_PROP_AUTHOR"].setValue(Variant::string(t));
        s.rs.Fields()["RESERVED_BINARY_DATA"].setValue(Variant::bytes(blob));
        s.rs.Update();
    }
    s.expectClean();
    s.open("MSP_PROJECTS");
    ASSERT_EQ(before + int(sizes.size()), s.rs.RecordCount());
    s.rs.MoveFirst();
    s.rs.Move(before);
    for (size_t k = 0; k < sizes.size(); ++k, s.rs.MoveNext()) {
        EXPECT_EQ(texts[k], s.rs.Fields()["PROJ_PROP_AUTHOR"].Value().asString()) << sizes[k];
        EXPECT_EQ(sizes[k], s.rs.Fields()["RESERVED_BINARY_DATA"].Value().asBytes().size());
    }
    // Replace the long ones with short ones, then delete the rows: the long-value pages are
    // reused, so doing it all again does not grow the file.
    auto cycle = [&] {
        s.open("MSP_PROJECTS");
        s.rs.MoveFirst();
        s.rs.Move(before);
        while (!s.rs.Eof()) {
            s.rs.Fields()["PROJ_PROP_AUTHOR"].setValue(Variant::string("short"));
            s.rs.Update();
            s.rs.MoveNext();
        }
        s.expectClean();
        s.rs.MoveFirst();
        s.rs.Move(before);
        while (!s.rs.Eof()) s.rs.Delete(1);
        s.expectClean();
        for (size_t n : sizes) {
            s.rs.AddNew();
            s.rs.Fields()["PROJ_PROP_AUTHOR"].setValue(Variant::string(std::string(n, 'q')));
            s.rs.Fields()["RESERVED_BINARY_DATA"].setValue(Variant::bytes(std::vector<uint8_t>(n, 7)));
            s.rs.Update();
        }
        s.expectClean();
    };
    cycle();
    const auto size = std::filesystem::file_size(s.copy.path());
    cycle();
    cycle();
    EXPECT_LE(std::filesystem::file_size(s.copy.path()), size + 4 * 4096);
}

TEST(TableWrite, ARowThatOutgrowsItsPageMovesAndKeepsItsIdentity) {
    Session s("testV2000.mdb");
    s.open("Table1");
    // Fill the first data page so that growing its first row cannot stay in place.
    for (int i = 0; i < 40; ++i) {
        s.rs.AddNew();
        s.rs.Fields()["A"].setValue(Variant::string("filler " + std::to_string(i) + std::string(40, 'f')));
        s.rs.Fields()["B"].setValue(Variant::string(std::string(90, 'g')));
        s.rs.Update();
    }
    auto db = s.cn.database();
    const auto firstRow = db->openTable("Table1")->rowLocations().front();
    for (int round = 0; round < 3; ++round) {
        s.open("Table1");
        s.rs.MoveFirst();
        s.rs.Fields()["B"].setValue(Variant::string(std::string(60 + 20 * round, char('k' + round))));
        s.rs.Update();
        s.expectClean();
    }
    jet::DataPage page(db->format(), db->pager().read(firstRow.page));
    EXPECT_TRUE(page.isOverflowHeader(firstRow.slot));
    s.open("Table1");
    s.rs.MoveFirst();
    EXPECT_EQ(std::string(100, 'm'), s.text("B"));
    s.rs.Delete(1);
    s.expectClean();
}

class Growth : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Files, Growth, ::testing::Values("compIndexTestV1997.mdb", "compIndexTestV2003.mdb"));

TEST_P(Growth, ThousandsOfRowsSplitTheIndexAndOutgrowInlineMaps) {
    Session s(GetParam(), jet::testkit::TempDir::Place::InMemory);
    s.open("Table1");
    const int before = s.rs.RecordCount();
    const int added = 6000;
    for (int i = 0; i < added; ++i) {
        s.rs.AddNew();
        s.rs.Fields()["CD_AGENTE"].setValue(Variant::longValue((i * 7919) % 100000));
        s.rs.Fields()["RS_AGENTE"].setValue(Variant::string("agent " + std::to_string(i)));
        s.rs.Fields()["DC_AGENTE"].setValue(Variant::string(std::string(20 + i % 30, 'd')));
    }
    s.rs.UpdateBatch(3);
    s.expectClean();
    s.open("Table1");
    EXPECT_EQ(before + added, s.rs.RecordCount());
    // Delete every other new row, then check again.
    s.rs.MoveFirst();
    s.rs.Move(before);
    while (!s.rs.Eof()) {
        s.rs.Delete(1);
        if (!s.rs.Eof()) s.rs.MoveNext();
    }
    s.expectClean();
    s.open("Table1");
    EXPECT_EQ(before + added / 2, s.rs.RecordCount());
}

// Runs in a child as an ordinary user, since root may write a read-only file.
TEST(TableWrite, AReadOnlyFileOpensForReadingAndRefusesWritesClearly) {
    WritableCopy copy("testV1997.mdb");
    constexpr uid_t nobody = 65534;
    std::filesystem::permissions(copy.dir().path(), std::filesystem::perms(0755));
    if (::geteuid() == 0) ASSERT_EQ(0, ::chown(copy.path().c_str(), nobody, nobody));
    std::filesystem::permissions(copy.path(), std::filesystem::perms(0444));
    auto body = [&]() -> std::string {
        Connection cn;
        cn.Open(copy.connectionString());
        Recordset rs;
        rs.Open("SELECT * FROM Table1", cn, 2, 4);
        if (rs.RecordCount() == 0) return "no rows read";
        rs.UpdateBatch(3);  // nothing to send: no error
        rs.AddNew();
        try {
            rs.Update();
            return "a read-only file was written";
        } catch (const jet::RuntimeError& e) {
            if (e.number() != jet::err::ReadOnly) return "error " + std::to_string(e.number()) + ": " + e.description();
            if (e.description().find("read-only") == std::string::npos) return "unclear: " + e.description();
        }
        return {};
    };
    EXPECT_EXIT(
        {
            if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) std::_Exit(2);
            std::string failure;
            try {
                failure = body();
            } catch (const std::exception& e) {
                failure = e.what();
            }
            std::fprintf(stderr, "%s\n", failure.empty() ? "ok" : failure.c_str());
            std::_Exit(failure.empty() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "ok");
}

TEST(TableWrite, AutoNumbersCountOnAndAnExplicitLargerValueRaisesTheCounter) {
    Session s("testV2000.mdb");
    // Table3 of the fixture has a COUNTER column.
    auto db = s.cn.database();
    auto table = db->openTable("Table3");
    const jet::Column* counter = nullptr;
    for (const auto& c : table->def().columns())
        if (c.isAutoNumber()) counter = &c;
    ASSERT_NE(nullptr, counter);
    const uint32_t last = table->def().autoNumber();
    s.open("Table3");
    s.rs.AddNew();
    s.rs.Update();
    EXPECT_EQ(int32_t(last + 1), s.rs.Fields()[counter->name].Value().asLong());
    s.rs.AddNew();
    s.rs.Fields()[counter->name].setValue(Variant::longValue(int32_t(last + 100)));
    s.rs.Update();
    s.rs.AddNew();
    s.rs.Update();
    EXPECT_EQ(int32_t(last + 101), s.rs.Fields()[counter->name].Value().asLong());
    EXPECT_EQ(jet::err::MultipleStepErrors, errorOf([&] { s.rs.Fields()[counter->name].setValue(Variant::longValue(5)); }));
    s.expectClean();
}

}  // namespace

namespace {

TEST(TableWrite, WriteAccessIsTakenAtTheFirstChangeAndAnotherOpenerBlocksIt) {
    WritableCopy copy("testV2000.mdb");
    const std::string lockFile = copy.dir().file("testV2000.ldb");
    auto first = jet::Database::open(copy.path());
    auto second = jet::Database::open(copy.path());  // readers share the file
    EXPECT_FALSE(std::filesystem::exists(lockFile)) << "reading takes no lock file";
    EXPECT_EQ(jet::err::Unspecified, errorOf([&] { jet::Transaction tx(*first); })) << "another opener reads it";
    second.reset();
    {
        jet::Transaction tx(*first);
        tx.commit();
    }
    EXPECT_TRUE(std::filesystem::exists(lockFile)) << "a writer keeps the lock file";
    EXPECT_EQ(jet::err::Unspecified, errorOf([&] { jet::Database::open(copy.path()); })) << "in use by a writer";
    first.reset();
    EXPECT_FALSE(std::filesystem::exists(lockFile));
    EXPECT_NO_THROW(jet::Database::open(copy.path()));
}

TEST(TableWrite, ClosingTheRecordSetDropsRowsThatWereNeverSent) {
    Session s("testV1997.mdb");
    s.open("Table1");
    const int before = s.rs.RecordCount();
    s.rs.AddNew();
    s.rs.Fields()["A"].setValue(Variant::string("never sent"));
    s.rs.AddNew();
    EXPECT_EQ(before + 2, s.rs.RecordCount());
    s.rs.MovePrevious();
    EXPECT_EQ("never sent", s.text("A"));
    s.rs.Close();
    s.open("Table1");
    EXPECT_EQ(before, s.rs.RecordCount());
}

}  // namespace

namespace {

TEST(TableWrite, AKeyThatCannotBeEncodedExactlyIsRefusedNamingTheIndex) {
    Session s("testIndexPropertiesV2003.mdb");
    const std::string original = s.fileBytes();
    s.open("TableUnique1_temp");
    s.rs.AddNew();
    s.rs.Fields()["row"].setValue(Variant::string("\xE6\x97\xA5\xE6\x9C\xAC"));  // no known sort codes
    try {
        s.rs.Update();
        FAIL() << "a key without known sort codes was written";
    } catch (const jet::RuntimeError& e) {
        EXPECT_NE(std::string::npos, e.description().find("PrimaryKey")) << e.description();
    }
    s.rs.CancelUpdate();
    s.rs.Close();
    s.cn.Close();
    EXPECT_EQ(original, s.fileBytes());
}

}  // namespace
