// The pieces under the table writer, each on its own: rows laid out from column values
// (every row of every fixture must come back byte for byte per column), conversion of
// assigned values, usage maps that move their window or turn into reference maps, and the
// global map growing with the file.
#include <gtest/gtest.h>

#include "format/DataPageWriter.h"
#include "format/PageAllocator.h"
#include "format/UsageMap.h"
#include "format/UsageMapWriter.h"
#include "jet/DateSerial.h"
#include "table/Database.h"
#include "table/RowWriter.h"
#include "table/Table.h"
#include "table/Transaction.h"
#include "table/ValueConverter.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Column;
using jet::ColumnType;
using jet::Variant;

// Lays the values out, reads the row back and compares every column.
void expectSameColumns(const jet::Format& f, const jet::TableDef& def, const std::vector<jet::StoredValue>& values,
                       const std::string& where) {
    const auto row = jet::encodeRow(f, def, values);
    const jet::RowReader again(f, def, row);
    ASSERT_EQ(def.maxColumns(), again.columnCount()) << where;
    for (size_t i = 0; i < values.size(); ++i) {
        auto bytes = again.column(def.columns()[i]);
        ASSERT_EQ(values[i].present, bytes.present) << where;
        ASSERT_TRUE(std::equal(bytes.bytes.begin(), bytes.bytes.end(), values[i].bytes.begin(), values[i].bytes.end()))
            << where << " column " << def.columns()[i].name;
    }
}

TEST(RowWriter, EveryStoredRowOfEveryFixtureIsLaidOutAgainWithTheSameColumns) {
    size_t rows = 0, jet3Long = 0;
    for (const std::string& file : fixtureNames()) {
        auto db = jet::Database::open(fixturePath(file));
        for (const auto& e : db->catalog().entries()) {
            if (!e.isTable()) continue;
            auto table = db->openTable(e.name);
            const auto& def = table->def();
            const std::string where = file + " " + e.name;
            for (auto at : table->rowLocations()) {
                const auto reader = table->reader(at);
                std::vector<jet::StoredValue> values;
                for (const Column& c : def.columns()) {
                    auto bytes = reader.column(c);
                    values.push_back({bytes.present, {bytes.bytes.begin(), bytes.bytes.end()}});
                }
                expectSameColumns(db->format(), def, values, where);
                ++rows;
            }
            // Jet 3 rows past 256 bytes need the jump table: every text column filled up,
            // then shorter and shorter, crosses the boundaries at every slot.
            if (!db->format().isJet3() || def.varColumns() == 0) continue;
            for (uint16_t fill = 255; fill > 8; fill = uint16_t(fill * 2 / 3)) {
                std::vector<jet::StoredValue> values;
                for (const Column& c : def.columns()) {
                    jet::StoredValue v;
                    v.present = c.typeCode != uint8_t(ColumnType::Bool) || c.number % 2;
                    if (c.typeCode == uint8_t(ColumnType::Bool)) {}
                    else if (c.isFixed()) v.bytes.assign(jet::fixedSizeOf(c.typeCode) ? jet::fixedSizeOf(c.typeCode) : c.length, 1);
                    else if (c.type() == ColumnType::Text) v.bytes.assign(std::min<uint16_t>(fill, c.length), 'x');
                    else v.present = false;
                    values.push_back(std::move(v));
                }
                try {
                    expectSameColumns(db->format(), def, values, where + " filled to " + std::to_string(fill));
                } catch (const jet::RuntimeError& e) {
                    continue;  // larger than a row may be
                }
                if (jet::encodeRow(db->format(), def, values).size() > 256) ++jet3Long;
            }
        }
    }
    EXPECT_GT(rows, 4000u);
    EXPECT_GT(jet3Long, 20u) << "Jet 3 rows with jump tables were not exercised";
}

Column column(ColumnType type, uint16_t length = 0, uint8_t precision = 0, uint8_t scale = 0) {
    Column c;
    c.name = "c";
    c.typeCode = uint8_t(type);
    c.length = length ? length : uint16_t(jet::fixedSizeOf(c.typeCode));
    c.precision = precision;
    c.scale = scale;
    return c;
}

// Values assigned to columns of every type, as the locale the application sets writes them;
// what does not fit is refused, never wrapped or cut.
TEST(ValueConverter, TextBecomesWhatJetReadsAndWhatDoesNotFitIsRefused) {
    const jet::Locale comma{",", jet::Locale::DateOrder::DayMonthYear, '.'};
    auto convert = [&](const Column& c, const Variant& v, jet::Version version = jet::Version::Jet4) {
        return jet::convertForColumn(c, v, version, *jet::CodePage::get(1252), comma);
    };
    auto s = [](const char* t) { return Variant::string(t); };
    const double leap = jet::dateSerial({2024, 2, 29, 13, 45, 10});
    const std::tuple<Column, Variant, Variant> taken[] = {
        {column(ColumnType::Byte), s(" 255 "), Variant::byte(255)},
        {column(ColumnType::Int), s("-32768"), Variant::integer(-32768)},
        {column(ColumnType::Long), s("2,5"), Variant::longValue(2)},  // halves to even
        {column(ColumnType::Long), s("3.5"), Variant::longValue(4)},  // "." is taken too
        {column(ColumnType::Long), Variant::doubleValue(-2.5000001), Variant::longValue(-3)},
        {column(ColumnType::Money), s("12,34565"), Variant::currency(123456)},
        {column(ColumnType::Money), s("-0.00045"), Variant::currency(-4)},
        {column(ColumnType::Money), s("-0.00055"), Variant::currency(-6)},
        {column(ColumnType::Money), s("-0.000450001"), Variant::currency(-5)},
        {column(ColumnType::Double), s("1E+300"), Variant::doubleValue(1e300)},
        {column(ColumnType::Float), s("0,1"), Variant::single(0.1f)},
        {column(ColumnType::Bool), s("yes"), Variant::boolean(true)},
        {column(ColumnType::Bool), s("Off"), Variant::boolean(false)},
        {column(ColumnType::Bool), s("-1"), Variant::boolean(true)},
        {column(ColumnType::Bool), Variant::null(), Variant::boolean(false)},
        {column(ColumnType::DateTime), s("2024-02-29 13:45:10"), Variant::date(leap)},
        {column(ColumnType::DateTime), s("29.02.2024 13:45:10"), Variant::date(leap)},  // the locale's CStr form
        {column(ColumnType::DateTime), s("06:30:00"), Variant::date(jet::dateSerial({1899, 12, 30, 6, 30, 0}))},
        {column(ColumnType::DateTime), s("1805-06-12"), Variant::date(jet::dateSerial({1805, 6, 12}))},
        {column(ColumnType::Guid), s("{00112233-4455-6677-8899-aabbccddeeff}"), s("{00112233-4455-6677-8899-AABBCCDDEEFF}")},
        {column(ColumnType::Numeric, 17, 10, 2), s("-123,454"), Variant::decimal({true, 12345, 2})},
        {column(ColumnType::Long), s("  "), Variant::null()},  // a blank clears a column that is not text
        {column(ColumnType::Text, 20), s(""), s("")},
        {column(ColumnType::Text, 10), s("five!"), s("five!")},
    };
    for (const auto& [c, in, out] : taken) EXPECT_EQ(out, convert(c, in)) << int(c.typeCode) << " " << out.toString(comma);
    const std::tuple<Column, Variant, jet::Version> refused[] = {
        {column(ColumnType::Byte), s("256"), jet::Version::Jet4},
        {column(ColumnType::Byte), s("-1"), jet::Version::Jet4},
        {column(ColumnType::Int), Variant::longValue(32768), jet::Version::Jet4},
        {column(ColumnType::Long), s("2147483648"), jet::Version::Jet4},
        {column(ColumnType::Long), s("1e10"), jet::Version::Jet4},
        {column(ColumnType::Long), s("12 apples"), jet::Version::Jet4},
        {column(ColumnType::Money), s("1e20"), jet::Version::Jet4},
        {column(ColumnType::Float), s("1e39"), jet::Version::Jet4},
        {column(ColumnType::DateTime), s("2023-02-29"), jet::Version::Jet4},
        {column(ColumnType::DateTime), s("10000-01-01"), jet::Version::Jet4},
        {column(ColumnType::DateTime), s("25:00:00"), jet::Version::Jet4},
        {column(ColumnType::Bool), s("perhaps"), jet::Version::Jet4},
        {column(ColumnType::Guid), s("{00112233-4455-6677-8899-AABBCCDDEEF}"), jet::Version::Jet4},
        {column(ColumnType::Numeric, 17, 4, 2), s("123,45"), jet::Version::Jet4},  // five digits for precision 4
        {column(ColumnType::Text, 10), s("eleven char"), jet::Version::Jet4},      // Jet 4 length: 2 x characters
        {column(ColumnType::Text, 5), s("\xD0\x96"), jet::Version::Jet3},          // not in code page 1252
        {column(ColumnType::Binary, 4), Variant::bytes({1, 2, 3, 4, 5}), jet::Version::Jet4},
        {column(ColumnType::Long), Variant::bytes({1}), jet::Version::Jet4},
    };
    for (const auto& [c, in, version] : refused) {
        try {
            convert(c, in, version);
            ADD_FAILURE() << int(c.typeCode) << " took " << in.toString(comma);
        } catch (const jet::RuntimeError& e) {
            EXPECT_EQ(jet::err::MultipleStepErrors, e.number());
        }
    }
}

// A table's maps on a writable copy, inside a transaction that is rolled back at the end.
struct MapFixture {
    explicit MapFixture(const char* file)
        : copy(file, TempDir::Place::InMemory), db(jet::Database::open(copy.path())), tx(*db) {}
    WritableCopy copy;
    std::unique_ptr<jet::Database> db;
    jet::Transaction tx;
};

TEST(UsageMapWriter, AnInlineMapMovesItsWindowOrBecomesAReferenceMap) {
    MapFixture m("testIndexPropertiesV2003.mdb");
    auto table = m.db->openTable("TableIgnoreNulls1_temp");
    const uint32_t pointer = table->def().freeMap();
    auto read = [&] { return jet::UsageMap::read(m.db->pager(), m.db->format(), pointer); };
    const auto before = read().pages();
    jet::UsageMapWriter w(m.db->pager(), m.db->format(), pointer, m.tx.allocator());
    for (uint32_t p : before) w.remove(p);
    w.add(3001);  // the empty map moves its window to 3000
    EXPECT_EQ(jet::UsageMap::Kind::Inline, read().kind());
    EXPECT_EQ(3000u, read().startPage());
    w.add(3400);
    EXPECT_EQ((std::vector<uint32_t>{3001, 3400}), read().pages());
    w.add(40000);  // 37,000 pages apart: only a reference map spans that
    EXPECT_EQ(jet::UsageMap::Kind::Reference, read().kind());
    EXPECT_EQ((std::vector<uint32_t>{3001, 3400, 40000}), read().pages());
    w.remove(3400);
    w.remove(12345);  // not in the map: nothing happens
    EXPECT_EQ((std::vector<uint32_t>{3001, 40000}), read().pages());
    // Its usage-map pages were allocated like any page: marked used in the global map.
    auto global = jet::UsageMap::read(m.db->pager(), m.db->format(), 1u << 8);
    const jet::UsageMap map = read();
    for (uint32_t mapPage : map.mapPages()) EXPECT_TRUE(mapPage == 0 || !global.contains(mapPage)) << mapPage;
}

class GlobalMap : public ::testing::TestWithParam<std::pair<const char*, uint32_t>> {};
INSTANTIATE_TEST_SUITE_P(Files, GlobalMap,
                         ::testing::Values(std::pair{"compIndexTestV2003.mdb", 1500u},
                                           std::pair{"compIndexTestV1997.mdb", 3000u},
                                           std::pair{"compIndexTestV1997.mdb", 16500u}));

TEST_P(GlobalMap, GrowsWithTheFileAndStaysExact) {
    auto [file, pages] = GetParam();
    WritableCopy copy(file, TempDir::Place::InMemory);
    auto db = jet::Database::open(copy.path());
    const uint32_t first = db->pager().pageCount();
    {
        jet::Transaction tx(*db);
        for (uint32_t k = 0; k < pages; ++k) {
            const uint32_t p = tx.allocator().allocate();
            ASSERT_GE(p, first);
            // Give each page an owner the checker accepts: a data page of no table.
            jet::DataPageWriter(db->format(), db->pager().writable(p)).initialize(0);
        }
        tx.commit();
    }
    db.reset();
    db = jet::Database::open(copy.path());
    const auto global = jet::UsageMap::read(db->pager(), db->format(), 1u << 8);
    for (uint32_t p = first; p < db->pager().pageCount(); ++p) ASSERT_FALSE(global.contains(p)) << p;
    const uint32_t end = db->pager().pageCount();
    EXPECT_TRUE(global.kind() == jet::UsageMap::Kind::Reference || global.contains(end)) << "pages past the end are free";
    EXPECT_TRUE(pages <= 15000 || global.kind() == jet::UsageMap::Kind::Reference);
}

}  // namespace
