#pragma once
// Single-byte text of Jet 3 files: the bytes of a string in the database's Windows code
// page, converted to and from the engine's UTF-8.
//
// Invariants:
//  - Decoding never fails and never loses a byte: Windows-1252's five undefined bytes
//    decode to U+0081, U+008D, U+008F, U+0090 and U+009D (as Windows' own table does), so
//    they encode back to the same byte; other code pages map an undefined byte to the C1
//    control of the same value for the same reason.
//  - Windows-1252 and Windows-1251 are built in; other single-byte pages are read once
//    through iconv into the same 256-entry table, so no conversion runs iconv per string.

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace jet {

class CodePage {
public:
    // The table of a Windows code page (1252, 1251, or any single-byte page iconv knows).
    // Throws RuntimeError (-2147467259) for a code page the engine cannot convert.
    static std::shared_ptr<const CodePage> get(uint16_t number);

    uint16_t number() const { return number_; }
    char32_t toUnicode(uint8_t byte) const { return table_[byte]; }
    std::string toUtf8(std::span<const uint8_t> bytes) const;
    // The bytes of a UTF-8 string, or nothing when a character has no byte in this page.
    std::optional<std::string> fromUtf8(std::string_view text) const;

    explicit CodePage(uint16_t number, const std::array<char32_t, 256>& table);

private:
    uint16_t number_;
    std::array<char32_t, 256> table_;
    std::unordered_map<char32_t, uint8_t> reverse_;
};

}  // namespace jet
