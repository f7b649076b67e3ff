#pragma once
// Fixed-width integer access to byte buffers. The file format is little-endian except
// for index entries, which are big-endian; both directions live here so no other file
// does its own shifting.

#include <cstdint>
#include <cstring>

namespace jet {

inline uint16_t le16(const uint8_t* p) { return uint16_t(p[0] | (p[1] << 8)); }
inline uint32_t le24(const uint8_t* p) { return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16); }
inline uint32_t le32(const uint8_t* p) {
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}
inline uint64_t le64(const uint8_t* p) { return uint64_t(le32(p)) | (uint64_t(le32(p + 4)) << 32); }
inline int16_t lei16(const uint8_t* p) { return int16_t(le16(p)); }
inline int32_t lei32(const uint8_t* p) { return int32_t(le32(p)); }
inline int64_t lei64(const uint8_t* p) { return int64_t(le64(p)); }
inline float lef32(const uint8_t* p) { uint32_t u = le32(p); float f; std::memcpy(&f, &u, 4); return f; }
inline double lef64(const uint8_t* p) { uint64_t u = le64(p); double d; std::memcpy(&d, &u, 8); return d; }

inline uint32_t be24(const uint8_t* p) { return (uint32_t(p[0]) << 16) | (uint32_t(p[1]) << 8) | uint32_t(p[2]); }
inline uint32_t be32(const uint8_t* p) {
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | uint32_t(p[3]);
}

inline void putLe16(uint8_t* p, uint16_t v) { p[0] = uint8_t(v); p[1] = uint8_t(v >> 8); }
inline void putLe24(uint8_t* p, uint32_t v) { p[0] = uint8_t(v); p[1] = uint8_t(v >> 8); p[2] = uint8_t(v >> 16); }
inline void putLe32(uint8_t* p, uint32_t v) { putLe16(p, uint16_t(v)); putLe16(p + 2, uint16_t(v >> 16)); }
inline void putLe64(uint8_t* p, uint64_t v) { putLe32(p, uint32_t(v)); putLe32(p + 4, uint32_t(v >> 32)); }
inline void putLeF32(uint8_t* p, float f) { uint32_t u; std::memcpy(&u, &f, 4); putLe32(p, u); }
inline void putLeF64(uint8_t* p, double d) { uint64_t u; std::memcpy(&u, &d, 8); putLe64(p, u); }
inline void putBe24(uint8_t* p, uint32_t v) { p[0] = uint8_t(v >> 16); p[1] = uint8_t(v >> 8); p[2] = uint8_t(v); }
inline void putBe32(uint8_t* p, uint32_t v) { p[0] = uint8_t(v >> 24); p[1] = uint8_t(v >> 16); p[2] = uint8_t(v >> 8); p[3] = uint8_t(v); }

}  // namespace jet
