// The ADO-like surface: connection strings and providers, errors with Jet's numbers,
// the tables schema, moving through a record set, fields and their values.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "MemoryFile.h"
#include "jet/Bytes.h"
#include "jet/Connection.h"
#include "jet/ConnectionString.h"
#include "jet/Database.h"
#include "jet/Header.h"
#include "jet/Recordset.h"
#include "jet/Utf.h"
#include "jet/ValueReader.h"

namespace {

namespace fs = std::filesystem;
using jet::Connection;
using jet::Recordset;
using jet::Variant;
using jet::testing::fixture;

std::string jet4(const std::string& file) { return "Provider=microsoft.jet.OLEDB.4.0;Data Source=" + fixture(file); }
std::string jet351(const std::string& file) {
    return "Provider=microsoft.jet.OLEDB.3.51;Data Source=" + fixture(file) + ";User ID=;Password=;";
}

int errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const jet::RuntimeError& e) {
        return e.number();
    }
    return 0;
}

std::vector<std::string> schemaNames(Connection& cn) {
    auto rs = cn.OpenSchema(20, {Variant(), Variant(), Variant(), Variant::string("TABLE")});
    std::vector<std::string> names;
    if (rs->RecordCount() > 0)
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext()) names.push_back(rs->Fields()["TABLE_NAME"].Value().asString());
    return names;
}

TEST(ConnectionString, KeysWithoutCaseQuotedValuesAndTheDatabasePassword) {
    auto s = jet::ConnectionSettings::parse(" provider = Microsoft.Jet.OLEDB.4.0 ;DATA SOURCE=\"C:\\a;b.mdb\";user id=Admin;PASSWORD='it''s'");
    EXPECT_EQ("Microsoft.Jet.OLEDB.4.0", s.provider);
    EXPECT_EQ("C:\\a;b.mdb", s.dataSource);
    EXPECT_EQ("Admin", s.userId);
    EXPECT_EQ("it's", s.password);
    auto d = jet::ConnectionSettings::parse("Password=user;Jet OLEDB:Database Password=db;Data Source=x");
    EXPECT_EQ("db", d.password) << "the database password wins over the user's";
    EXPECT_EQ("x", d.dataSource);
}

TEST(Connection, TheOldProviderRefusesJet4SoTheCallerCanRetry) {
    Connection cn;
    EXPECT_EQ(0, cn.State());
    EXPECT_EQ(jet::err::Unspecified, errorOf([&] { cn.Open(jet351("testV2000.mdb")); }));
    EXPECT_EQ(0, cn.State());
    cn.Open(jet4("testV2000.mdb"));
    EXPECT_EQ(1, cn.State());
    cn.Close();
    cn.setConnectionString(jet351("testV1997.mdb"));
    cn.Open("", "", "", -1);
    EXPECT_EQ(1, cn.State());
    EXPECT_EQ(3705, errorOf([&] { cn.Open(jet4("testV1997.mdb")); })) << "already open";
    cn.Close();
    EXPECT_EQ(3704, errorOf([&] { cn.Close(); }));
    EXPECT_EQ(jet::err::Unspecified, errorOf([&] { cn.Open("PROVIDER=MICROSOFT.JET.OLEDB.4.0;data source=/no/such.mdb"); }));
    EXPECT_EQ(3706, errorOf([&] { cn.Open("Provider=SQLOLEDB;Data Source=x"); }));
}

TEST(Connection, DatabasePasswordMustMatchAndIsIgnoredWithoutOne) {
    Connection plain;
    plain.Open(jet351("testV1997.mdb"), "someone", "anything");  // no protection: ignored
    EXPECT_EQ(1, plain.State());

    auto bytes = jet::testing::readFileBytes(fixture("testV1997.mdb"));
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    std::memcpy(bytes.data() + 0x42, "Geheim", 6);
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    fs::path copy = fs::temp_directory_path() / ("sw_password_" + std::to_string(::getpid()) + ".mdb");
    std::ofstream(copy, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    std::string base = "Provider=microsoft.jet.OLEDB.3.51;Data Source=" + copy.string() + ";User ID=;Password=";
    Connection cn;
    EXPECT_EQ(jet::err::WrongPassword, errorOf([&] { cn.Open(base + "geheim;"); }));
    EXPECT_EQ(jet::err::WrongPassword, errorOf([&] { cn.Open(base + ";"); }));
    cn.Open(base + "Geheim;");
    EXPECT_EQ(1, cn.State());
    fs::remove(copy);
}

TEST(Connection, TablesSchemaListsUserTablesByNameOnly) {
    Connection cn;
    cn.Open(jet4("testUnicodeCompV2003.mdb"));
    EXPECT_EQ(std::vector<std::string>{"Table"}, schemaNames(cn));
    auto all = cn.OpenSchema(20);
    bool sawSystem = false;
    for (all->MoveFirst(); !all->Eof(); all->MoveNext()) {
        std::string type = all->Fields()["TABLE_TYPE"].Value().asString();
        if (all->Fields()["TABLE_NAME"].Value().asString() == "MSysObjects") {
            EXPECT_EQ("SYSTEM TABLE", type);
            sawSystem = true;
        }
    }
    EXPECT_TRUE(sawSystem);
    EXPECT_EQ(9, all->Fields().Count());
    auto one = cn.OpenSchema(20, {Variant(), Variant(), Variant::string("TABLE"), Variant()});
    EXPECT_EQ(1, one->RecordCount()) << "a name restriction without case";
    EXPECT_EQ(3251, errorOf([&] { cn.OpenSchema(4); }));

    Connection j3;
    j3.Open(jet351("testIndexCodesV1997.mdb"));
    auto names = schemaNames(j3);
    ASSERT_EQ(29u, names.size());
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end(),
                               [](const std::string& a, const std::string& b) { return jet::collateNames(a, b) < 0; }));
}

TEST(Recordset, MovesLikeAdoIncludingItsErrorsAtTheEnds) {
    Connection cn;
    cn.Open(jet4("testV2000.mdb"));
    Recordset rs;
    EXPECT_EQ(0, rs.State());
    rs.Open("select *   from table1;", cn, 2, 4, -1);
    EXPECT_EQ(1, rs.State());
    EXPECT_EQ(2, rs.RecordCount());
    EXPECT_FALSE(rs.Eof());
    EXPECT_FALSE(rs.Bof());
    EXPECT_EQ(1, rs.AbsolutePosition());
    rs.Move(-1);
    EXPECT_TRUE(rs.Bof());
    EXPECT_EQ(3021, errorOf([&] { rs.Fields()[0].Value(); }));
    EXPECT_EQ(3021, errorOf([&] { rs.Move(-1); }));
    rs.MoveNext();
    EXPECT_EQ(1, rs.AbsolutePosition());
    rs.Move(1);
    EXPECT_EQ(2, rs.AbsolutePosition());
    rs.MoveNext();
    EXPECT_TRUE(rs.Eof());
    try {
        rs.MoveNext();
        FAIL();
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(3021, e.number());
        EXPECT_EQ(0u, e.description().find("Either BOF or EOF is True, or the current record has been deleted."));
    }
    rs.MoveFirst();
    rs.Move(5);
    EXPECT_TRUE(rs.Eof()) << "moving beyond the last record stops at EOF";
    rs.MoveLast();
    EXPECT_EQ(2, rs.AbsolutePosition());
    rs.Close();
    EXPECT_EQ(3704, errorOf([&] { rs.MoveFirst(); }));
    rs.Open();
    EXPECT_EQ(1, rs.State()) << "re-opened with the previous source";

    Recordset empty;
    empty.Open("SELECT * FROM Table3", cn);
    EXPECT_TRUE(empty.Eof());
    EXPECT_TRUE(empty.Bof());
    EXPECT_EQ(0, empty.RecordCount());
    EXPECT_EQ(3021, errorOf([&] { empty.MoveFirst(); }));
    EXPECT_EQ(2, empty.Fields().Count());
}

TEST(Recordset, UnknownTablesAndOtherStatementsAreRefused) {
    Connection cn;
    cn.Open(jet4("testV2000.mdb"));
    Recordset rs;
    EXPECT_EQ(jet::err::NoSuchTable, errorOf([&] { rs.Open("SELECT * FROM Nope", cn); }));
    EXPECT_EQ(jet::err::SyntaxError, errorOf([&] { rs.Open("SELECT A FROM Table1", cn); }));
    EXPECT_EQ(jet::err::SyntaxError, errorOf([&] { rs.Open("SELECT * FROM Table1 WHERE 1", cn); }));
    EXPECT_EQ(0, rs.State());
    rs.Open("Table1", cn, -1, -1, jet::ado::CmdTable);
    EXPECT_EQ(2, rs.RecordCount());
    Recordset closedConnection;
    Connection none;
    EXPECT_EQ(3704, errorOf([&] { closedConnection.Open("SELECT * FROM Table1", none); }));
}

TEST(Recordset, FieldsByPositionAndNameWithAdoTypes) {
    Connection cn;
    cn.Open(jet351("testV1997.mdb"));
    Recordset rs;
    rs.Open("SELECT * FROM [Table1]", cn);
    auto& f = rs.Fields();
    ASSERT_EQ(9, f.Count());
    const int32_t types[] = {202, 202, 17, 2, 3, 5, 7, 6, 11};
    for (int i = 0; i < 9; ++i) EXPECT_EQ(types[i], f[i].Type()) << f[i].Name();
    EXPECT_EQ("G", f["g"].Name());
    EXPECT_EQ(50, f["A"].DefinedSize());
    EXPECT_EQ(3265, errorOf([&] { f["nothing"]; }));
    EXPECT_EQ(3265, errorOf([&] { f[9]; }));
    // Second record of expected/testV1997/Table1.iso.csv.
    EXPECT_EQ(Variant::string("a"), f["A"].Value());
    rs.MoveNext();
    EXPECT_EQ(Variant::string("abcdefg"), f["A"].Value());
    EXPECT_EQ(Variant::string("hijklmnop"), f["B"].Value());
    EXPECT_EQ(Variant::byte(2), f["C"].Value());
    EXPECT_EQ(Variant::integer(222), f["D"].Value());
    EXPECT_EQ(Variant::longValue(333333333), f["E"].Value());
    EXPECT_EQ(Variant::doubleValue(444.555), f["F"].Value());
    EXPECT_EQ("1974-09-21", f["G"].Value().toString({".", jet::Locale::DateOrder::YearMonthDay, '-'}));
    EXPECT_EQ(Variant::currency(35000), f["H"].Value());
    EXPECT_EQ(Variant::boolean(true), f["I"].Value());
}

TEST(Recordset, EveryKindOfValueDecodes) {
    Connection cn;
    cn.Open(jet4("fixedNumericTestV2003.mdb"));
    Recordset rs;
    rs.Open("SELECT * FROM test", cn);
    Variant dec = rs.Fields()["col2"].Value();
    ASSERT_EQ(Variant::Type::Decimal, dec.type());
    EXPECT_EQ(131, rs.Fields()["col2"].Type());
    EXPECT_EQ(203, rs.Fields()["col1"].Type());

    Connection guid;
    guid.Open(jet351("testIndexCodesV1997.mdb"));
    Recordset g;
    g.Open("SELECT * FROM Table13", guid);
    EXPECT_EQ(72, g.Fields()["data"].Type());
    EXPECT_EQ("{8E39276A-BCA8-4AC4-891E-49911D8438DD}", g.Fields()["data"].Value().asString());
    Recordset s;
    s.Open("SELECT * FROM Table5", guid);
    EXPECT_EQ(Variant::Type::Single, s.Fields()["data"].Value().type());

    // A 22,970-byte OLE value over a chain of long-value rows, in both versions.
    for (auto [file, provider] : {std::pair{"test2V1997.mdb", 3}, std::pair{"test2V2003.mdb", 4}}) {
        Connection c;
        c.Open(provider == 3 ? jet351(file) : jet4(file));
        Recordset p;
        p.Open("SELECT * FROM MSP_PROJECTS", c);
        Variant ole = p.Fields()["RESERVED_BINARY_DATA"].Value();
        ASSERT_EQ(Variant::Type::ByteArray, ole.type()) << file;
        EXPECT_EQ(22970u, ole.asBytes().size()) << file;
        EXPECT_EQ(348u, p.Fields()["PROJ_PROP_AUTHOR"].Value().asString().size()) << file;
        EXPECT_TRUE(p.Fields()["PROJ_PROP_CATEGORY"].Value().isNull()) << file;
    }
}

TEST(Recordset, KeepsWorkingAfterItsConnectionCloses) {
    Connection cn;
    cn.Open(jet4("compIndexTestV2003.mdb"));
    Recordset rs;
    rs.Open("SELECT * FROM Table1", cn);
    cn.Close();
    rs.Move(511);
    EXPECT_EQ(Variant::string("efg"), rs.Fields()["DC_AGENTE"].Value()) << "the last record, read after the close";
    EXPECT_EQ(512, rs.AbsolutePosition());
}

}  // namespace
