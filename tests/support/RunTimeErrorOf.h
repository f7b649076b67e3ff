#pragma once
// The number of the run-time error a piece of code raises, or 0 when it raises none.

#include <cstdint>
#include <functional>

#include "jet/RuntimeError.h"

inline int32_t runTimeErrorOf(const std::function<void()>& code)
{
    try {
        code();
    } catch (const jet::RuntimeError& e) {
        return e.number();
    }
    return 0;
}
