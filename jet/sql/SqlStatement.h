#pragma once
// The statements the engine's SQL front end understands, as plain data. The parser
// (SqlParser.h) produces them; the schema layer carries them out. Nothing here touches
// the file.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "format/Format.h"

namespace jet::sql {

// A column as a CREATE TABLE or ALTER TABLE ... ADD statement declares it.
struct ColumnDeclaration {
    std::string name;
    ColumnType type = ColumnType::Text;
    uint16_t length = 0;     // Text: characters (1-255); Binary: bytes; 0 for other types
    bool autoNumber = false; // COUNTER / AUTOINCREMENT
    uint8_t precision = 0;   // Numeric only
    uint8_t scale = 0;       // Numeric only
};

struct CreateTable {
    std::string table;
    std::vector<ColumnDeclaration> columns;
};

struct AddColumn {
    std::string table;
    ColumnDeclaration column;
};

struct DropColumn {
    std::string table;
    std::string column;
};

// Renaming a column goes beyond what Jet's own SQL offers; the engine accepts it.
struct RenameColumn {
    std::string table;
    std::string from;
    std::string to;
};

struct DropTable {
    std::string table;
};

using Statement = std::variant<CreateTable, AddColumn, DropColumn, RenameColumn, DropTable>;

}  // namespace jet::sql
