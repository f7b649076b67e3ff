#pragma once
// ADO connection strings: "key=value;" pairs, keys compared without case, values trimmed
// and optionally quoted ("..." or '...'). A value the key cannot take is refused.

#include <cstddef>
#include <string>
#include <string_view>

namespace jet {

struct ConnectionSettings {
    std::string provider;
    std::string dataSource;
    std::string userId;
    std::string password;          // "Password", or "Jet OLEDB:Database Password" when given
    size_t maxBufferKb = 0;        // "Jet OLEDB:Max Buffer Size": the page cache in KB, 64 or more
                                   // (0: the default)

    static ConnectionSettings parse(std::string_view text);
};

}  // namespace jet
