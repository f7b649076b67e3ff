#include "base/Rc4.h"

#include <utility>

namespace jet {

void rc4Apply(const uint8_t* key, size_t keyLen, uint8_t* data, size_t len) {
    uint8_t s[256];
    for (int i = 0; i < 256; ++i) s[i] = uint8_t(i);
    uint8_t j = 0;
    for (int i = 0; i < 256; ++i) {
        j = uint8_t(j + s[i] + key[size_t(i) % keyLen]);
        std::swap(s[i], s[j]);
    }
    uint8_t a = 0, b = 0;
    for (size_t k = 0; k < len; ++k) {
        a = uint8_t(a + 1);
        b = uint8_t(b + s[a]);
        std::swap(s[a], s[b]);
        data[k] ^= s[uint8_t(s[a] + s[b])];
    }
}

}  // namespace jet
