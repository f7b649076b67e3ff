// The small SQL front end: the statements the program sends, every type word, names, and
// the syntax errors the table engine relies on.
#include <gtest/gtest.h>

#include "sql/SqlParser.h"

using namespace jet;
using namespace jet::sql;

namespace {

int32_t errorOf(const char* text) {
    try {
        parse(text);
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

TEST(SqlParser, StatementsTheProgramSendsWithBareAndBracketedNames) {
    const auto create = std::get<CreateTable>(parse("CREATE TABLE Sales (__custom INTEGER);"));
    EXPECT_EQ(std::tie("Sales", "__custom"), std::tie(create.table, create.columns.at(0).name));
    EXPECT_EQ(ColumnType::Long, create.columns[0].type) << "INTEGER is Jet's 32-bit type";
    const auto add = std::get<AddColumn>(parse("alter table Sales add Price text"));
    EXPECT_EQ(std::tie("Sales", "Price"), std::tie(add.table, add.column.name));
    EXPECT_EQ(ColumnType::Text, add.column.type) << "a plain TEXT is a 255-character text column, not a memo";
    EXPECT_EQ(255, add.column.length);
    EXPECT_EQ("Price", std::get<DropColumn>(parse("ALTER TABLE t DROP Price")).column);
    const auto rename = std::get<RenameColumn>(parse("ALTER TABLE t RENAME Old TO New"));
    EXPECT_EQ(std::tie("Old", "New"), std::tie(rename.from, rename.to));
    EXPECT_EQ("t", std::get<DropTable>(parse("DROP TABLE t;")).table);
    // Names in other scripts are plain words; brackets allow blanks and reserved words.
    EXPECT_EQ("Таблица", std::get<CreateTable>(parse("CREATE TABLE Таблица (Цена DOUBLE)")).table);
    const auto st = std::get<CreateTable>(parse("create table [my table] ([select] text, b_2 long)"));
    EXPECT_EQ(std::tie("my table", "select", "b_2"), std::tie(st.table, st.columns[0].name, st.columns[1].name));
}

TEST(SqlParser, TypeWordsAndSizes) {
    struct Case {
        const char* type;
        ColumnType expected;
        uint16_t length;
        bool autoNumber;
    } cases[] = {
        {"TEXT(10)", ColumnType::Text, 10, false},   {"CHAR (255)", ColumnType::Text, 255, false},
        {"NCHAR (255)", ColumnType::Text, 255, false}, {"varchar(1)", ColumnType::Text, 1, false},
        {"LONG", ColumnType::Long, 0, false},        {"INT", ColumnType::Long, 0, false},
        {"SHORT", ColumnType::Int, 0, false},        {"SMALLINT", ColumnType::Int, 0, false},
        {"BYTE", ColumnType::Byte, 0, false},        {"BIT", ColumnType::Bool, 0, false},
        {"YESNO", ColumnType::Bool, 0, false},       {"CURRENCY", ColumnType::Money, 0, false},
        {"MONEY", ColumnType::Money, 0, false},      {"DATETIME", ColumnType::DateTime, 0, false},
        {"DATE", ColumnType::DateTime, 0, false},    {"SINGLE", ColumnType::Float, 0, false},
        {"REAL", ColumnType::Float, 0, false},       {"FLOAT", ColumnType::Double, 0, false},
        {"MEMO", ColumnType::Memo, 0, false},        {"LONGTEXT", ColumnType::Memo, 0, false},
        {"LONGBINARY", ColumnType::Ole, 0, false},   {"OLEOBJECT", ColumnType::Ole, 0, false},
        {"COUNTER", ColumnType::Long, 0, true},      {"AUTOINCREMENT", ColumnType::Long, 0, true},
        {"GUID", ColumnType::Guid, 0, false},        {"BINARY(16)", ColumnType::Binary, 16, false},
    };
    for (const auto& c : cases) {
        std::string sql = std::string("CREATE TABLE t (c ") + c.type + ")";
        auto col = std::get<CreateTable>(parse(sql)).columns.at(0);
        EXPECT_EQ(c.expected, col.type) << sql;
        EXPECT_EQ(c.length, col.length) << sql;
        EXPECT_EQ(c.autoNumber, col.autoNumber) << sql;
    }
    auto dec = std::get<CreateTable>(parse("CREATE TABLE t (a DECIMAL(10,2), b NUMERIC)")).columns;
    EXPECT_EQ(ColumnType::Numeric, dec[0].type);
    EXPECT_EQ(10, dec[0].precision);
    EXPECT_EQ(2, dec[0].scale);
    EXPECT_EQ(18, dec[1].precision);
}

TEST(SqlParser, FailuresTheProgramReliesOnAndReservedWords) {
    // "table" and other reserved words, names with blanks, and anything but the five
    // statements are Jet's syntax error; the table engine renames "table" for this reason.
    const char* bad[] = {
        "CREATE TABLE table (__custom INTEGER);",
        "CREATE TABLE Table (__custom INTEGER);",
        "CREATE TABLE select (a INTEGER)",
        "CREATE TABLE my table (a INTEGER)",
        "ALTER TABLE t ADD my col VARCHAR (255)",
        "ALTER TABLE t ADD from INTEGER",
        "ALTER TABLE t ADD c",
        "ALTER TABLE t ADD c WIDGET",
        "ALTER TABLE t ADD c TEXT(0)",
        "ALTER TABLE t ADD c TEXT(256)",
        "ALTER TABLE t DROP",
        "ALTER TABLE t RENAME a b",
        "ALTER TABLE t MODIFY a",
        "CREATE TABLE t ()",
        "CREATE TABLE t (a INTEGER",
        "CREATE TABLE t (a INTEGER,)",
        "CREATE TABLE t (a INTEGER) extra",
        "DROP TABLE a b",
        "DROP TABLE",
        "DROP INDEX i",
        "SELECT * FROM t",
        "",
        ";",
        "CREATE TABLE t (a INTEGER);;",
        "CREATE TABLE [t (a INTEGER)",
        "CREATE TABLE [] (a INTEGER)",
        "CREATE TABLE t.x (a INTEGER)",
        "CREATE TABLE 'x' (a INTEGER)",
        "CREATE TABLE 1x (a INTEGER)",
        "CREATE TABLE t (a DECIMAL(5,6))",
        "CREATE TABLE t (a TEXT(99999999999999))",
    };
    for (const char* sql : bad) EXPECT_EQ(err::SyntaxError, errorOf(sql)) << sql;

    EXPECT_TRUE(isReservedWord("table"));
    EXPECT_TRUE(isReservedWord("SeLeCt"));
    EXPECT_FALSE(isReservedWord("table0"));
    EXPECT_FALSE(isReservedWord("Name"));
    EXPECT_FALSE(isReservedWord("__custom"));
}


}  // namespace
