#pragma once
// The two on-disk formats the engine reads and writes.

#include <cstdint>

namespace jet {

enum class Version : uint8_t {
    Jet3,  // Access 97: 2048-byte pages, single-byte text in the database code page
    Jet4,  // Access 2000-2003: 4096-byte pages, UCS-2 text with the compressed form
};

}  // namespace jet
