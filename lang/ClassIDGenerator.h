#pragma once
// Hands out the debug identities of objects that want one: 1 for the first, then 2, 3...
// Going past the largest 32-bit number is run-time error 6, as the counter it stands for
// would overflow.

#include <cstdint>

namespace lang {

class ClassIDGenerator {
public:
    explicit ClassIDGenerator(int32_t last = 0) : last_(last) {}
    int32_t next();

    // The one generator of the program (the module the language items share).
    static ClassIDGenerator& shared();

private:
    int32_t last_;
};

}  // namespace lang
