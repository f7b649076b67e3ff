#include "sql/ObjectNames.h"

#include <string>

#include "base/Utf.h"
#include "format/CodePage.h"
#include "jet/RuntimeError.h"

namespace jet {

namespace {

bool forbidden(char32_t c) {
    return c < 0x20 || c == 0x7F || c == '.' || c == '!' || c == '`' || c == '[' || c == ']';
}

}  // namespace

void checkObjectName(std::string_view name, const CodePage* jet3CodePage) {
    const auto invalid = [&] {
        return RuntimeError(err::SyntaxError,
                            "'" + std::string(name) +
                                "' is not a valid name. Make sure that it does not include invalid characters or "
                                "punctuation and that it is not too long.");
    };
    if (name.empty() || name.front() == ' ') throw invalid();
    size_t characters = 0;
    for (size_t pos = 0; pos < name.size();) {
        const char32_t c = nextCodePoint(name, pos);
        if (forbidden(c) || c == 0xFFFD) throw invalid();
        ++characters;
    }
    if (characters > kMaxObjectNameLength) throw invalid();
    if (jet3CodePage && !jet3CodePage->fromUtf8(name)) throw invalid();
}

}  // namespace jet
