#pragma once
// What the numeric core computes and what it answers. The statistics are the ones
// spreadsheet users know: SUM, PRODUCT, AVERAGE, GEOMEAN, HARMEAN, MEDIAN, MIN, MAX, LCM,
// GCD, MULTINOMIAL, STDEV (sample), AVEDEV and VAR (sample).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace host::numbers {

enum class Statistic {
    Sum,
    Product,
    Average,
    GeometricMean,
    HarmonicMean,
    Median,
    Min,
    Max,
    LeastCommonMultiple,
    GreatestCommonDivisor,
    Multinomial,
    StandardDeviation,
    AverageDeviation,
    Variance,
};

// The host's number types: 0 computes in doubles, 1 in arbitrary-precision decimal
// arithmetic, 2 in arbitrary-precision binary arithmetic.
enum class NumberType { Ordinary, Decimal, Binary };

// Why a statistic gives no result.
enum class Refusal {
    None,
    NoNumbers,          // the list holds no number
    TooFewNumbers,      // STDEV and VAR need two
    NegativeNumber,     // LCM, GCD and MULTINOMIAL take none
    NotPositiveNumber,  // GEOMEAN and HARMEAN take only numbers above zero
    BeyondOrdinary,     // a number, or the result, is beyond the range of doubles
    BeyondExtended,     // a number's exponent is beyond what the extended types take
    ResultTooLarge,     // an exact result would not fit in memory
};

struct StatisticResult {
    std::string text;  // empty when refused
    Refusal refusal = Refusal::None;
    std::size_t count = 0;  // the numbers the statistic took
    // Min and Max: the 1-based place of the first extreme in the list (0 when there is
    // none) and the extreme rounded half to even, when it fits 64 bits.
    std::size_t position = 0;
    std::optional<int64_t> roundedExtreme;
};

// The host's error number for a refusal and the text that explains it.
int32_t errorNumberOf(Refusal refusal);
const char* descriptionOf(Refusal refusal);

}  // namespace host::numbers
