#pragma once
// Parses the few data-definition statements the program sends, as Jet's SQL reads them:
// keywords in any case, an optional trailing ";", names either bare or in [brackets].
// A bare name must be a single word that is not a reserved word, so "my table" or
// "table" fail with Jet's syntax error (-2147217900) exactly where Jet fails; callers
// rely on those failures. Type words are mapped to column types here.

#include <string_view>

#include "jet/RuntimeError.h"
#include "sql/SqlStatement.h"

namespace jet::sql {

// Throws RuntimeError with err::SyntaxError and Jet's English text when the statement
// is not one of CREATE TABLE, ALTER TABLE ... ADD/DROP/RENAME, DROP TABLE, or is malformed.
Statement parse(std::string_view text);

// True for the words that cannot stand as a bare name (compared case-insensitively).
bool isReservedWord(std::string_view word);

}  // namespace jet::sql
