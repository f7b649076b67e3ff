#pragma once
// Byte strings written as hex in the index tests ("7F 80 00 00 01"), as keys are printed
// where their layout is described.

#include <cstdint>
#include <string>
#include <vector>

inline std::vector<uint8_t> hex(const char* s) {
    std::vector<uint8_t> out;
    for (const char* p = s; *p;) {
        if (*p == ' ') {
            ++p;
            continue;
        }
        out.push_back(uint8_t(std::stoi(std::string(p, 2), nullptr, 16)));
        p += 2;
    }
    return out;
}
