#pragma once
// The error for anything in a file that contradicts the format: the file cannot be trusted.
// Every layer that decodes stored bytes raises it; none of them needs more than this.

#include <string>

#include "jet/RuntimeError.h"

namespace jet {

class CorruptError : public RuntimeError {
public:
    explicit CorruptError(const std::string& detail)
        : RuntimeError(err::Unspecified, "The database file is damaged: " + detail) {}
};

}  // namespace jet
