#include "ado/ConnectionString.h"

#include "base/Utf.h"

namespace jet {

namespace {

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

}  // namespace

ConnectionSettings ConnectionSettings::parse(std::string_view text) {
    ConnectionSettings out;
    std::string databasePassword;
    bool hasDatabasePassword = false;
    size_t pos = 0;
    while (pos < text.size()) {
        size_t eq = text.find('=', pos);
        if (eq == std::string_view::npos) break;
        std::string_view key = trim(text.substr(pos, eq - pos));
        size_t v = eq + 1;
        while (v < text.size() && (text[v] == ' ' || text[v] == '\t')) ++v;
        std::string value;
        if (v < text.size() && (text[v] == '"' || text[v] == '\'')) {
            // A quoted value may hold ';'; a doubled quote stands for one.
            char q = text[v++];
            while (v < text.size()) {
                if (text[v] == q) {
                    if (v + 1 < text.size() && text[v + 1] == q) {
                        value += q;
                        v += 2;
                        continue;
                    }
                    ++v;
                    break;
                }
                value += text[v++];
            }
            size_t semi = text.find(';', v);
            pos = semi == std::string_view::npos ? text.size() : semi + 1;
        } else {
            size_t semi = text.find(';', v);
            size_t end = semi == std::string_view::npos ? text.size() : semi;
            value = std::string(trim(text.substr(v, end - v)));
            pos = semi == std::string_view::npos ? text.size() : semi + 1;
        }
        if (equalsIgnoreCase(key, "Provider")) out.provider = value;
        else if (equalsIgnoreCase(key, "Data Source")) out.dataSource = value;
        else if (equalsIgnoreCase(key, "User ID")) out.userId = value;
        else if (equalsIgnoreCase(key, "Password")) out.password = value;
        else if (equalsIgnoreCase(key, "Jet OLEDB:Database Password")) {
            databasePassword = value;
            hasDatabasePassword = true;
        }
    }
    if (hasDatabasePassword) out.password = databasePassword;
    return out;
}

}  // namespace jet
