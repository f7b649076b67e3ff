#pragma once
// ADO connection strings: "key=value;" pairs, keys compared without case, values trimmed
// and optionally quoted ("..." or '...').

#include <string>
#include <string_view>

namespace jet {

struct ConnectionSettings {
    std::string provider;
    std::string dataSource;
    std::string userId;
    std::string password;          // "Password", or "Jet OLEDB:Database Password" when given

    static ConnectionSettings parse(std::string_view text);
};

}  // namespace jet
