// The ADO-like surface: connection strings and providers, errors with ADO's and Jet's
// numbers, the tables schema, moving through a record set, fields and their types.
#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "ado/ConnectionString.h"
#include "format/Header.h"
#include "jet/Connection.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "testkit/Session.h"
#include "testkit/TestFiles.h"

namespace {

using namespace jet::testkit;
using jet::Connection;
using jet::Recordset;
using jet::Variant;

std::string jet4(const std::string& file) { return "Provider=microsoft.jet.OLEDB.4.0;Data Source=" + fixturePath(file); }
std::string jet351(const std::string& file) {
    return "Provider=microsoft.jet.OLEDB.3.51;Data Source=" + fixturePath(file) + ";User ID=;Password=;";
}

TEST(Connection, ProvidersStatesPasswordsAndTheirErrors) {
    auto s = jet::ConnectionSettings::parse(
        " provider = Microsoft.Jet.OLEDB.4.0 ;DATA SOURCE=\"C:\\a;b.mdb\";user id=Admin;PASSWORD='it''s'");
    EXPECT_EQ(std::tie("Microsoft.Jet.OLEDB.4.0", "C:\\a;b.mdb", "Admin", "it's"),
              std::tie(s.provider, s.dataSource, s.userId, s.password));
    EXPECT_EQ("db", jet::ConnectionSettings::parse("Password=user;Jet OLEDB:Database Password=db").password);

    Connection cn;
    EXPECT_EQ(jet::err::Unspecified, errorNumberOf([&] { cn.Open(jet351("testV2000.mdb")); })) << "the old provider: Jet 3 only";
    EXPECT_EQ(0, cn.State());
    cn.Open(jet4("testV2000.mdb"));
    EXPECT_EQ(1, cn.State());
    cn.Close();
    cn.setConnectionString(jet351("testV1997.mdb"));
    cn.Open("", "someone", "anything", -1);  // no password set: user and password are ignored
    EXPECT_EQ(3705, errorNumberOf([&] { cn.Open(jet4("testV1997.mdb")); })) << "already open";
    cn.Close();
    EXPECT_EQ(3704, errorNumberOf([&] { cn.Close(); }));
    EXPECT_EQ(jet::err::Unspecified, errorNumberOf([&] { cn.Open("PROVIDER=MICROSOFT.JET.OLEDB.4.0;data source=/no/such.mdb"); }));
    EXPECT_EQ(3706, errorNumberOf([&] { cn.Open("Provider=SQLOLEDB;Data Source=x"); }));

    TempDir dir;
    auto bytes = readBytes(fixturePath("testV1997.mdb"));
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    std::memcpy(bytes.data() + 0x42, "Geheim", 6);
    jet::Header::applyMask(jet::Version::Jet3, bytes.data());
    writeAll(dir.file("p.mdb"), std::string(bytes.begin(), bytes.end()));
    const std::string base = "Provider=microsoft.jet.OLEDB.3.51;Data Source=" + dir.file("p.mdb") + ";Password=";
    EXPECT_EQ(jet::err::WrongPassword, errorNumberOf([&] { cn.Open(base + "geheim;"); }));
    EXPECT_EQ(jet::err::WrongPassword, errorNumberOf([&] { cn.Open(base + ";"); }));
    cn.Open(base + "Geheim;");
    EXPECT_EQ(1, cn.State());
}

TEST(Connection, TablesSchemaListsTablesByTypeAndName) {
    Connection cn;
    cn.Open(jet4("testUnicodeCompV2003.mdb"));
    auto all = cn.OpenSchema(20);
    EXPECT_EQ(9, all->Fields().Count());
    std::map<std::string, std::string> types;
    for (all->MoveFirst(); !all->Eof(); all->MoveNext())
        types[all->Fields()["TABLE_NAME"].Value().asString()] = all->Fields()["TABLE_TYPE"].Value().asString();
    EXPECT_EQ("SYSTEM TABLE", types["MSysObjects"]);
    EXPECT_EQ("TABLE", types["Table"]);
    EXPECT_EQ(1, cn.OpenSchema(20, {Variant(), Variant(), Variant::string("TABLE"), Variant()})->RecordCount())
        << "a name restriction, without case";
    EXPECT_EQ(3251, errorNumberOf([&] { cn.OpenSchema(4); }));
}

TEST(Recordset, MovesLikeAdoIncludingItsErrorsAtTheEnds) {
    Connection cn;
    cn.Open(jet4("testV2000.mdb"));
    Recordset rs;
    EXPECT_EQ(0, rs.State());
    rs.Open("select *   from table1;", cn, 2, 4, -1);
    EXPECT_EQ(2, rs.RecordCount());
    EXPECT_EQ(1, rs.AbsolutePosition());
    rs.Move(-1);
    EXPECT_TRUE(rs.Bof());
    EXPECT_EQ(3021, errorNumberOf([&] { rs.Fields()[0].Value(); }));
    EXPECT_EQ(3021, errorNumberOf([&] { rs.Move(-1); }));
    rs.MoveNext();
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
    EXPECT_EQ(3704, errorNumberOf([&] { rs.MoveFirst(); }));
    rs.Open();
    EXPECT_EQ(1, rs.State()) << "re-opened with the previous source";

    Recordset empty;
    empty.Open("SELECT * FROM Table3", cn);
    EXPECT_TRUE(empty.Eof() && empty.Bof());
    EXPECT_EQ(3021, errorNumberOf([&] { empty.MoveFirst(); }));
    EXPECT_EQ(2, empty.Fields().Count());

    Recordset other;
    EXPECT_EQ(jet::err::NoSuchTable, errorNumberOf([&] { other.Open("SELECT * FROM Nope", cn); }));
    EXPECT_EQ(jet::err::SyntaxError, errorNumberOf([&] { other.Open("SELECT A FROM Table1", cn); }));
    EXPECT_EQ(jet::err::SyntaxError, errorNumberOf([&] { other.Open("SELECT * FROM Table1 WHERE 1", cn); }));
    other.Open("Table1", cn, -1, -1, jet::ado::CmdTable);
    EXPECT_EQ(2, other.RecordCount());
    Connection none;
    EXPECT_EQ(3704, errorNumberOf([&] { Recordset().Open("SELECT * FROM Table1", none); }));
}

TEST(Recordset, FieldsByPositionAndNameWithAdoTypesAndValues) {
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
    EXPECT_EQ(3265, errorNumberOf([&] { f["nothing"]; }));
    EXPECT_EQ(3265, errorNumberOf([&] { f[9]; }));
    rs.MoveNext();
    EXPECT_EQ(Variant::string("hijklmnop"), f["B"].Value());
    EXPECT_EQ(Variant::byte(2), f["C"].Value());
    EXPECT_EQ(Variant::integer(222), f["D"].Value());
    EXPECT_EQ(Variant::currency(35000), f["H"].Value());

    // The types of Decimal and Replication ID fields (their values are the corpus test's).
    auto type = [](const std::string& file, const std::string& table, const std::string& field) {
        Connection c;
        c.Open(jet4(file));
        Recordset r;
        r.Open("SELECT * FROM " + table, c);
        return r.Fields()[field].Type();
    };
    EXPECT_EQ(131, type("fixedNumericTestV2003.mdb", "test", "col2"));
    EXPECT_EQ(72, type("testIndexCodesV1997.mdb", "Table13", "data"));

    Connection closing;
    closing.Open(jet4("compIndexTestV2003.mdb"));
    Recordset kept;
    kept.Open("SELECT * FROM Table1", closing);
    closing.Close();
    kept.Move(511);
    EXPECT_EQ(Variant::string("efg"), kept.Fields()["DC_AGENTE"].Value()) << "the last record, read after the close";
}

}  // namespace
