#include "jet/CodePages.h"

#include "format/CodePage.h"

namespace jet {

std::array<char32_t, 256> codePageCharacters(uint16_t number) {
    const std::shared_ptr<const CodePage> page = CodePage::get(number);
    std::array<char32_t, 256> characters;
    for (int b = 0; b < 256; ++b) characters[size_t(b)] = page->toUnicode(uint8_t(b));
    return characters;
}

}  // namespace jet
