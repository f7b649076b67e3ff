// Type 0: the statistics in doubles, in one pass over the texts wherever the statistic
// allows; sums are compensated, so adding 0.1 ten times gives 1 to the last digit shown.

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <vector>

#include "host/numbers/NumberScan.h"
#include "host/numbers/ResultText.h"
#include "host/numbers/Statistics.h"
#include "host/numbers/WholeNumbers.h"

namespace host::numbers {

namespace {

// Whole numbers up to here are exact in a double.
constexpr double kExactWholeLimit = 9007199254740992.0;  // 2^53

// Neumaier's compensated sum.
class CompensatedSum {
public:
    void add(double x)
    {
        const double t = sum_ + x;
        compensation_ += std::fabs(sum_) >= std::fabs(x) ? (sum_ - t) + x : (x - t) + sum_;
        sum_ = t;
    }
    double value() const { return sum_ + compensation_; }

private:
    double sum_ = 0;
    double compensation_ = 0;
};

// The key that orders doubles as unsigned integers.
uint64_t orderKey(double value)
{
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits >> 63 ? ~bits : bits | (uint64_t(1) << 63);
}

// The values of two ranks (0-based, low <= high) of an unordered list. A histogram of the
// keys' top 16 bits narrows both ranks to a few buckets first, so only the numbers in
// those are partitioned: two straight passes instead of a selection over everything,
// whose unpredictable comparisons would cost more than reading the texts did.
std::pair<double, double> ranksOf(std::vector<double>& values, std::size_t low, std::size_t high)
{
    constexpr int kShift = 48;
    std::vector<uint32_t> counts(std::size_t(1) << (64 - kShift), 0);
    for (double value : values)
        ++counts[orderKey(value) >> kShift];
    std::size_t before = 0;
    std::size_t bucket = 0;
    while (before + counts[bucket] <= low)
        before += counts[bucket++];
    const std::size_t firstBucket = bucket;
    std::size_t upTo = before + counts[bucket];
    while (upTo <= high)
        upTo += counts[++bucket];
    const std::size_t lastBucket = bucket;
    std::vector<double> candidates;
    candidates.reserve(upTo - before);
    for (double value : values) {
        const std::size_t b = orderKey(value) >> kShift;
        if (b >= firstBucket && b <= lastBucket)
            candidates.push_back(value);
    }
    const auto at = [&](std::size_t rank) {
        std::nth_element(candidates.begin(), candidates.begin() + std::ptrdiff_t(rank - before), candidates.end());
        return candidates[rank - before];
    };
    const double lowValue = at(low);
    return {lowValue, low == high ? lowValue : at(high)};
}

// Calls visit(value, index) for each number of the list; a number out of the range of
// doubles is refused. False when refused or when visit says stop.
template <class Visit>
bool forEachDouble(const CellTexts& texts, Progress& progress, Refusal& refusal, Visit&& visit)
{
    ScannedNumber scanned;
    const std::size_t size = texts.size();
    for (std::size_t i = 0; i < size; ++i) {
        progress.step();
        const std::u16string_view text = texts.text(i);
        if (!scanNumber(text, scanned))
            continue;
        const double value = toDouble(scanned, text);
        if (!std::isfinite(value) || (value == 0 && !scanned.isZero())) {
            refusal = Refusal::BeyondOrdinary;
            return false;
        }
        if (!visit(value, i))
            return false;
    }
    return true;
}

StatisticResult refused(Refusal refusal)
{
    StatisticResult result;
    result.refusal = refusal;
    return result;
}

StatisticResult answer(double value, std::size_t count)
{
    if (!std::isfinite(value))
        return refused(Refusal::BeyondOrdinary);
    StatisticResult result;
    result.text = ordinaryText(value);
    result.count = count;
    return result;
}

class Ordinary {
public:
    Ordinary(const CellTexts& texts, Progress& progress) : texts_(texts), progress_(progress) {}

    StatisticResult compute(Statistic statistic)
    {
        switch (statistic) {
        case Statistic::Sum: return sum(false);
        case Statistic::Average: return sum(true);
        case Statistic::Product: return product();
        case Statistic::GeometricMean: return geometricMean();
        case Statistic::HarmonicMean: return harmonicMean();
        case Statistic::Median: return median();
        case Statistic::Min: return extreme(false);
        case Statistic::Max: return extreme(true);
        case Statistic::LeastCommonMultiple:
        case Statistic::GreatestCommonDivisor:
        case Statistic::Multinomial: return whole(statistic);
        case Statistic::StandardDeviation:
        case Statistic::AverageDeviation:
        case Statistic::Variance: return deviation(statistic);
        }
        return refused(Refusal::NoNumbers);
    }

private:
    template <class Visit>
    bool each(Visit&& visit)
    {
        return forEachDouble(texts_, progress_, refusal_, [&](double value, std::size_t index) {
            ++count_;
            return visit(value, index);
        });
    }

    // Reads every number into `values` (and their sum); false when refused.
    bool collect(std::vector<double>& values, CompensatedSum* total = nullptr)
    {
        values.reserve(texts_.size());
        return each([&](double value, std::size_t) {
            values.push_back(value);
            if (total)
                total->add(value);
            return true;
        });
    }

    StatisticResult done(double value) { return count_ == 0 ? refused(Refusal::NoNumbers) : answer(value, count_); }

    StatisticResult sum(bool mean)
    {
        CompensatedSum total;
        if (!each([&](double value, std::size_t) {
                total.add(value);
                return true;
            }))
            return refused(refusal_);
        return done(mean && count_ > 0 ? total.value() / double(count_) : total.value());
    }

    StatisticResult product()
    {
        double running = 1;
        bool zeroFactor = false;
        if (!each([&](double value, std::size_t) {
                running *= value;
                zeroFactor |= value == 0;
                return true;
            }))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        // Beyond 2^53, or lost below the smallest normal double, the product is no longer
        // what the numbers give: it is computed exactly instead.
        const double magnitude = std::fabs(running);
        if (!(magnitude <= kExactWholeLimit) || (magnitude < DBL_MIN && !zeroFactor))
            return exactly(Statistic::Product);
        return answer(running, count_);
    }

    StatisticResult geometricMean()
    {
        // The running product keeps its binary exponent apart, so a long list neither
        // overflows nor loses precision in logarithms of every number.
        double mantissa = 1;
        int64_t exponent = 0;
        if (!each([&](double value, std::size_t) {
                if (value <= 0) {
                    refusal_ = Refusal::NotPositiveNumber;
                    return false;
                }
                int e = 0;
                mantissa = std::frexp(mantissa * value, &e);
                exponent += e;
                return true;
            }))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        const int64_t n = int64_t(count_);
        // 2^(exponent / n) with the whole part of the quotient taken out exactly.
        int64_t whole = exponent / n;
        int64_t rest = exponent % n;
        if (rest < 0) {
            rest += n;
            --whole;
        }
        const double root = std::exp2((double(rest) + std::log2(mantissa)) / double(n));
        return answer(std::ldexp(root, int(std::clamp<int64_t>(whole, -4000, 4000))), count_);
    }

    StatisticResult harmonicMean()
    {
        CompensatedSum reciprocals;
        if (!each([&](double value, std::size_t) {
                if (value <= 0) {
                    refusal_ = Refusal::NotPositiveNumber;
                    return false;
                }
                reciprocals.add(1 / value);
                return true;
            }))
            return refused(refusal_);
        return done(double(count_) / reciprocals.value());
    }

    StatisticResult median()
    {
        std::vector<double> values;
        if (!collect(values))
            return refused(refusal_);
        if (values.empty())
            return refused(Refusal::NoNumbers);
        const std::size_t middle = values.size() / 2;
        const auto [lower, upper] = ranksOf(values, values.size() % 2 == 0 ? middle - 1 : middle, middle);
        return answer(lower / 2 + upper / 2, count_);
    }

    StatisticResult extreme(bool maximum)
    {
        double best = 0;
        std::size_t position = 0;
        if (!each([&](double value, std::size_t index) {
                if (position == 0 || (maximum ? value > best : value < best)) {
                    best = value;
                    position = index + 1;
                }
                return true;
            }))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        StatisticResult result = answer(best, count_);
        result.position = position;
        const double rounded = std::nearbyint(best);  // the default mode rounds half to even
        if (std::fabs(rounded) < 9.2e18)
            result.roundedExtreme = int64_t(rounded);
        return result;
    }

    StatisticResult whole(Statistic statistic)
    {
        WholeStatistic whole(statistic);
        bool beyondExact = false;
        if (!each([&](double value, std::size_t) {
                if (value < 0) {
                    refusal_ = Refusal::NegativeNumber;
                    return false;
                }
                const double truncated = std::trunc(value);
                beyondExact = truncated > kExactWholeLimit;
                if (!beyondExact)
                    whole.add(uint64_t(truncated));
                return !beyondExact;
            }))
            return beyondExact ? exactly(statistic) : refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        if (whole.tooLarge())
            return exactly(statistic);
        const Integer result = whole.result();
        if (whole.tooLarge() || result > Integer(uint64_t(kExactWholeLimit)))
            return exactly(statistic);
        return answer(result.convert_to<double>(), count_);
    }

    StatisticResult deviation(Statistic statistic)
    {
        // The mean while reading, then the deviations from it in a second pass, which
        // keeps the cancellation of the one-pass formula out.
        std::vector<double> values;
        CompensatedSum total;
        if (!collect(values, &total))
            return refused(refusal_);
        if (values.empty())
            return refused(Refusal::NoNumbers);
        if (statistic != Statistic::AverageDeviation && values.size() < 2)
            return refused(Refusal::TooFewNumbers);
        const double n = double(values.size());
        const double mean = total.value() / n;
        CompensatedSum deviations;
        for (double value : values) {
            const double d = value - mean;
            deviations.add(statistic == Statistic::AverageDeviation ? std::fabs(d) : d * d);
        }
        if (statistic == Statistic::AverageDeviation)
            return answer(deviations.value() / n, count_);
        const double variance = deviations.value() / (n - 1);
        return answer(statistic == Statistic::Variance ? variance : std::sqrt(variance), count_);
    }

    StatisticResult exactly(Statistic statistic)
    {
        return computeExtended(statistic, NumberType::Decimal, texts_, progress_);
    }

    const CellTexts& texts_;
    Progress& progress_;
    Refusal refusal_ = Refusal::None;
    std::size_t count_ = 0;
};

}  // namespace

StatisticResult computeOrdinary(Statistic statistic, const CellTexts& texts, Progress& progress)
{
    return Ordinary(texts, progress).compute(statistic);
}

}  // namespace host::numbers
