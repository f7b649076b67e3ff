#pragma once
// The names Jet accepts for tables and columns: at most 64 characters, not starting with a
// blank, none of . ! ` [ ] and no control characters; in a Jet 3 file every character must
// exist in the database's code page, since names are stored in it.

#include <string_view>

namespace jet {

class CodePage;

inline constexpr size_t kMaxObjectNameLength = 64;

// Throws RuntimeError with Jet's syntax-error number and its "not a valid name" text.
void checkObjectName(std::string_view name, const CodePage* jet3CodePage);

}  // namespace jet
