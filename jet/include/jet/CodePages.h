#pragma once
// The Windows code pages the engine converts single-byte text with: Jet 3 text and names
// are stored in one. Windows-1252 and Windows-1251 are built in, and any other single-byte
// page iconv knows can be used. The engine never picks one itself: the program chooses its
// ANSI code page and hands the number to createDatabase.

#include <array>
#include <cstdint>

namespace jet {

// The character of every byte of the code page, as the engine decodes it: a byte the code
// page leaves undefined gives the C1 control of the same value, so no byte is ever lost.
// Throws RuntimeError (-2147467259) for a code page the engine cannot convert.
std::array<char32_t, 256> codePageCharacters(uint16_t number);

}  // namespace jet
