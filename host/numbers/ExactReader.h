#pragma once
// Reads the cell texts of a list as exact decimal numbers for the extended types: one
// scan of each text, with the digits kept in 64 bits; only a number with more
// significant digits than that builds an arbitrary-precision mantissa (into a buffer the
// reader reuses).

#include <cstdint>

#include "host/numbers/CellTexts.h"
#include "host/numbers/Decimal.h"
#include "host/numbers/NumberScan.h"
#include "host/numbers/Progress.h"
#include "host/numbers/Statistic.h"

namespace host::numbers {

// ±magnitude × 10^exponent; when `big` is set it holds the magnitude instead.
struct ExactNumber {
    uint64_t magnitude = 0;
    const Integer* big = nullptr;
    int64_t exponent = 0;
    bool negative = false;

    bool isZero() const { return big == nullptr && magnitude == 0; }
    // The signed mantissa as an arbitrary-precision integer.
    void mantissaInto(Integer& out) const;
    // Numeric order of two numbers: negative, zero or positive.
    friend int compare(const ExactNumber& a, const ExactNumber& b);
};

// The whole part of |number|, truncated toward zero: in `small` when it fits 64 bits
// (then the result is true), otherwise in `big`.
bool wholePart(const ExactNumber& number, uint64_t& small, Integer& big);

class ExactReader {
public:
    // Numbers whose leading digit lies beyond 10^±kMaxExponent are refused: exact sums
    // over them would need mantissas of millions of digits.
    static constexpr int64_t kMaxExponent = 100000;

    ExactReader(const CellTexts& texts, Progress& progress) : texts_(texts), progress_(progress) {}

    // Calls visit(number, index) for each number in list order, stepping the progress.
    // False (with the refusal set) when a number is beyond the extended range or when
    // visit returns false.
    template <class Visit>
    bool forEach(Visit&& visit, Refusal& refusal)
    {
        ScannedNumber scanned;
        ExactNumber number;
        for (std::size_t i = 0; i < texts_.size(); ++i) {
            progress_.step();
            const std::u16string_view text = texts_.text(i);
            if (!scanNumber(text, scanned))
                continue;
            if (!take(scanned, text, number)) {
                refusal = Refusal::BeyondExtended;
                return false;
            }
            if (!visit(number, i))
                return false;
        }
        return true;
    }

private:
    bool take(const ScannedNumber& scanned, std::u16string_view text, ExactNumber& number);

    const CellTexts& texts_;
    Progress& progress_;
    Integer big_;
};

}  // namespace host::numbers
