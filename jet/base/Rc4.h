#pragma once
// RC4 as the file format uses it: the mask over the header's fields and the encryption of
// the pages of an encoded database. Applying it twice with the same key gives the input.

#include <cstddef>
#include <cstdint>

namespace jet {

void rc4Apply(const uint8_t* key, size_t keyLen, uint8_t* data, size_t len);

}  // namespace jet
