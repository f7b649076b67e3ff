// Types 1 and 2: the statistics in exact decimal arithmetic, handing what cannot stay
// exact (quotients, roots, the geometric and harmonic means) to the type's rounding.

#include <algorithm>
#include <deque>
#include <vector>

#include "host/numbers/ExactReader.h"
#include "host/numbers/ExtendedArithmetic.h"
#include "host/numbers/ResultText.h"
#include "host/numbers/Statistics.h"
#include "host/numbers/WholeNumbers.h"

namespace host::numbers {

namespace {

StatisticResult refused(Refusal refusal)
{
    StatisticResult result;
    result.refusal = refusal;
    return result;
}

// A number kept beyond the reader's next text: its big mantissa gets a home of its own.
class KeptNumbers {
public:
    explicit KeptNumbers(std::size_t expected) { numbers_.reserve(expected); }

    void keep(const ExactNumber& number)
    {
        ExactNumber kept = number;
        if (number.big) {
            bigs_.push_back(*number.big);
            kept.big = &bigs_.back();
        }
        numbers_.push_back(kept);
    }
    std::vector<ExactNumber>& numbers() { return numbers_; }

private:
    std::vector<ExactNumber> numbers_;
    std::deque<Integer> bigs_;  // a deque keeps the addresses the numbers point to
};

// The number rounded half to even to a whole number, when that fits 64 bits.
std::optional<int64_t> roundedToWhole(const ExactNumber& number)
{
    Integer value;
    number.mantissaInto(value);
    if (number.exponent >= 0) {
        multiplyByPowerOfTen(value, uint64_t(number.exponent));
    } else {
        const Integer& divisor = powerOfTen(uint64_t(-number.exponent));
        Integer quotient, remainder;
        mpz_tdiv_qr(quotient.backend().data(), remainder.backend().data(), value.backend().data(),
                    divisor.backend().data());
        const int order = mpz_cmp(Integer(abs(remainder) * 2).backend().data(), divisor.backend().data());
        if (order > 0 || (order == 0 && mpz_odd_p(quotient.backend().data())))
            quotient += number.negative ? -1 : 1;
        value = std::move(quotient);
    }
    if (!mpz_fits_slong_p(value.backend().data()))
        return std::nullopt;
    return int64_t(mpz_get_si(value.backend().data()));
}

class Extended {
public:
    Extended(NumberType type, const CellTexts& texts, Progress& progress)
        : texts_(texts),
          progress_(progress),
          reader_(texts, progress),
          arithmetic_(type == NumberType::Binary ? makeBinaryArithmetic() : makeDecimalArithmetic())
    {
    }

    StatisticResult compute(Statistic statistic)
    {
        switch (statistic) {
        case Statistic::Sum: return sum();
        case Statistic::Average: return average();
        case Statistic::Product: return product();
        case Statistic::GeometricMean:
        case Statistic::HarmonicMean: return mean(statistic);
        case Statistic::Median: return median();
        case Statistic::Min: return extreme(false);
        case Statistic::Max: return extreme(true);
        case Statistic::LeastCommonMultiple:
        case Statistic::GreatestCommonDivisor:
        case Statistic::Multinomial: return whole(statistic);
        case Statistic::StandardDeviation:
        case Statistic::Variance: return variance(statistic);
        case Statistic::AverageDeviation: return averageDeviation();
        }
        return refused(Refusal::NoNumbers);
    }

private:
    template <class Visit>
    bool each(Visit&& visit)
    {
        return reader_.forEach(
            [&](const ExactNumber& number, std::size_t index) {
                ++count_;
                return visit(number, index);
            },
            refusal_);
    }

    StatisticResult answer(const DigitText& digits)
    {
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        StatisticResult result;
        result.text = extendedText(digits, arithmetic_->digits());
        result.count = count_;
        return result;
    }

    bool addToSum(DecimalSum& sum, const ExactNumber& number)
    {
        if (number.big) {
            number.mantissaInto(term_);
            sum.add(term_, number.exponent);
        } else {
            sum.add(number.magnitude, number.negative, number.exponent);
        }
        return true;
    }

    StatisticResult sum()
    {
        DecimalSum total;
        if (!each([&](const ExactNumber& number, std::size_t) { return addToSum(total, number); }))
            return refused(refusal_);
        return answer(total.value().digitText());
    }

    StatisticResult average()
    {
        DecimalSum total;
        if (!each([&](const ExactNumber& number, std::size_t) { return addToSum(total, number); }))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        return answer(arithmetic_->quotient(total.value(), Integer(count_)));
    }

    StatisticResult product()
    {
        WholeFold magnitudes(WholeFold::Operation::Product);
        int64_t exponents = 0;
        bool negative = false;
        if (!each([&](const ExactNumber& number, std::size_t) {
                if (number.big)
                    magnitudes.add(*number.big);
                else
                    magnitudes.add(number.magnitude);
                exponents += number.exponent;
                negative ^= number.negative;
                if (magnitudes.tooLarge())
                    refusal_ = Refusal::ResultTooLarge;
                return !magnitudes.tooLarge();
            }))
            return refused(refusal_);
        Decimal result;
        result.mantissa = magnitudes.result();
        result.exponent = exponents;
        if (negative)
            result.mantissa = -result.mantissa;
        return answer(result.digitText());
    }

    StatisticResult mean(Statistic statistic)
    {
        const bool geometric = statistic == Statistic::GeometricMean;
        if (!each([&](const ExactNumber& number, std::size_t) {
                if (number.negative || number.isZero()) {
                    refusal_ = Refusal::NotPositiveNumber;
                    return false;
                }
                if (geometric)
                    arithmetic_->addFactor(number);
                else
                    arithmetic_->addReciprocal(number);
                return true;
            }))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        return answer(geometric ? arithmetic_->geometricMean(count_) : arithmetic_->harmonicMean(count_));
    }

    // Reads every number; false when refused.
    bool collect(KeptNumbers& kept, DecimalSum* total = nullptr)
    {
        return each([&](const ExactNumber& number, std::size_t) {
            kept.keep(number);
            return total ? addToSum(*total, number) : true;
        });
    }

    StatisticResult median()
    {
        KeptNumbers kept(texts_.size());
        if (!collect(kept))
            return refused(refusal_);
        std::vector<ExactNumber>& numbers = kept.numbers();
        if (numbers.empty())
            return refused(Refusal::NoNumbers);
        const auto less = [](const ExactNumber& a, const ExactNumber& b) { return compare(a, b) < 0; };
        const std::size_t middle = numbers.size() / 2;
        std::nth_element(numbers.begin(), numbers.begin() + std::ptrdiff_t(middle), numbers.end(), less);
        DecimalSum total;
        addToSum(total, numbers[middle]);
        if (numbers.size() % 2 == 1)
            return answer(total.value().digitText());
        addToSum(total, *std::max_element(numbers.begin(), numbers.begin() + std::ptrdiff_t(middle), less));
        // Half the sum of the two middle numbers: × 5 / 10, exact in decimal.
        Decimal half = total.value();
        half.mantissa *= 5;
        half.exponent -= 1;
        return answer(half.digitText());
    }

    StatisticResult extreme(bool maximum)
    {
        ExactNumber best;
        Integer bestBig;
        std::size_t position = 0;
        if (!each([&](const ExactNumber& number, std::size_t index) {
                const int order = position == 0 ? 0 : compare(number, best);
                if (position == 0 || (maximum ? order > 0 : order < 0)) {
                    best = number;
                    if (number.big) {
                        bestBig = *number.big;
                        best.big = &bestBig;
                    }
                    position = index + 1;
                }
                return true;
            }))
            return refused(refusal_);
        Decimal value;
        best.mantissaInto(value.mantissa);
        value.exponent = best.exponent;
        StatisticResult result = answer(value.digitText());
        if (position != 0) {
            result.position = position;
            result.roundedExtreme = roundedToWhole(best);
        }
        return result;
    }

    StatisticResult whole(Statistic statistic)
    {
        WholeStatistic whole(statistic);
        uint64_t small = 0;
        Integer big;
        if (!each([&](const ExactNumber& number, std::size_t) {
                if (number.negative && !number.isZero()) {
                    refusal_ = Refusal::NegativeNumber;
                    return false;
                }
                if (wholePart(number, small, big))
                    whole.add(small);
                else
                    whole.add(big);
                return true;
            }))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        Decimal result;
        if (!whole.tooLarge())
            result.mantissa = whole.result();
        if (whole.tooLarge())
            return refused(Refusal::ResultTooLarge);
        return answer(result.digitText());
    }

    // n Σx² - (Σx)², exact, over n(n - 1).
    StatisticResult variance(Statistic statistic)
    {
        DecimalSum total;
        DecimalSum squares;
        Integer square;
        if (!each([&](const ExactNumber& number, std::size_t) {
                number.mantissaInto(square);
                square *= square;
                squares.add(square, 2 * number.exponent);
                return addToSum(total, number);
            }))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        if (count_ < 2)
            return refused(Refusal::TooFewNumbers);
        const Integer n(count_);
        DecimalSum numerator;
        numerator.add(Integer(squares.value().mantissa * n), squares.value().exponent);
        numerator.add(Integer(-(total.value().mantissa * total.value().mantissa)), 2 * total.value().exponent);
        const Integer denominator = n * (n - 1);
        return answer(statistic == Statistic::Variance
                          ? arithmetic_->quotient(numerator.value(), denominator)
                          : arithmetic_->squareRootOfQuotient(numerator.value(), denominator));
    }

    // Σ|n x - Σx| over n², exact: the sum sits at the smallest exponent of all numbers,
    // so every n x aligns to it by a whole power of ten.
    StatisticResult averageDeviation()
    {
        KeptNumbers kept(texts_.size());
        DecimalSum total;
        if (!collect(kept, &total))
            return refused(refusal_);
        if (count_ == 0)
            return refused(Refusal::NoNumbers);
        const Decimal& sum = total.value();
        const Integer n(count_);
        DecimalSum deviations;
        Integer term;
        for (const ExactNumber& number : kept.numbers()) {
            progress_.step();
            number.mantissaInto(term);
            if (!number.isZero())
                multiplyByPowerOfTen(term, uint64_t(number.exponent - sum.exponent));
            term *= n;
            term -= sum.mantissa;
            mpz_abs(term.backend().data(), term.backend().data());
            deviations.add(term, sum.exponent);
        }
        return answer(arithmetic_->quotient(deviations.value(), Integer(n * n)));
    }

    const CellTexts& texts_;
    Progress& progress_;
    ExactReader reader_;
    std::unique_ptr<ExtendedArithmetic> arithmetic_;
    Refusal refusal_ = Refusal::None;
    std::size_t count_ = 0;
    Integer term_;
};

}  // namespace

StatisticResult computeExtended(Statistic statistic, NumberType type, const CellTexts& texts, Progress& progress)
{
    return Extended(type, texts, progress).compute(statistic);
}

}  // namespace host::numbers
