#pragma once
// The list a statistic reads: the texts of the selected cells, in the order they were
// gathered. The numeric core sees them as UTF-16 views so that it never copies a text.

#include <cstddef>
#include <string_view>

namespace host::numbers {

class CellTexts {
public:
    virtual ~CellTexts() = default;
    virtual std::size_t size() const = 0;
    // Valid until the list changes.
    virtual std::u16string_view text(std::size_t index) const = 0;
};

}  // namespace host::numbers
