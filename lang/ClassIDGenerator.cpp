#include "lang/ClassIDGenerator.h"

#include <limits>

#include "rt/VbError.h"

namespace lang {

int32_t ClassIDGenerator::next()
{
    if (last_ == std::numeric_limits<int32_t>::max())
        throw rt::vbError(rt::vberr::Overflow);
    return ++last_;
}

ClassIDGenerator& ClassIDGenerator::shared()
{
    static ClassIDGenerator generator;
    return generator;
}

}  // namespace lang
