#pragma once
// Carries out the data-definition statements: CREATE TABLE, ALTER TABLE ... ADD, DROP and
// RENAME, and DROP TABLE. Each statement is one write transaction: it happens completely
// or, when anything is refused or fails, not at all.
//
// What each statement leaves behind (the file stays one that Access and the independent
// readers take as their own):
//  - CREATE TABLE: a definition (chained over as many TDEF pages as it needs), the usage
//    maps it names (owned and free-space pages, two per memo or OLE column) as rows of
//    usage-map pages, the catalogue row in MSysObjects with its index entries, and the
//    permission rows in MSysACEs that Access derives from the Tables container's.
//  - ADD, DROP and RENAME rewrite the definition; rows written before stay valid (the
//    rules of ColumnLayout.h), except that a table's first variable-length column makes
//    every existing row be laid out again, and an added COUNTER gives the existing rows
//    the numbers 1, 2, 3... in physical order and raises the table's counter past them.
//    Indexes refer to column numbers and stay as they are; a column an index uses cannot
//    be dropped. The catalogue row's DateUpdate and the column's design properties follow.
//  - DROP TABLE removes the catalogue row first, then the permission rows, then gives
//    every page of the table back (definition, data, indexes, long values, map pages) and
//    deletes its map rows; a usage-map page whose rows are all gone is given back too.
//
// Refusals carry Jet's numbers and short English texts (see SchemaWriter.cpp).

#include "sql/SqlStatement.h"

namespace jet {

class Database;

class SchemaWriter {
public:
    explicit SchemaWriter(Database& db) : db_(db) {}

    void run(const sql::Statement& statement);

    void createTable(const sql::CreateTable& st);
    void addColumn(const sql::AddColumn& st);
    void dropColumn(const sql::DropColumn& st);
    void renameColumn(const sql::RenameColumn& st);
    void dropTable(const sql::DropTable& st);

private:
    Database& db_;
};

}  // namespace jet
