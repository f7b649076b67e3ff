// The statistics of the function library's numeric core, grouped by statistic, against
// values computed apart from it (Python's fractions and 130-digit decimals): each
// ordinary result as the run time writes the double, the decimal type's to 50 digits
// rounded half to even, and the binary type's within a unit of its 77th digit.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include <boost/multiprecision/cpp_dec_float.hpp>
#include <boost/multiprecision/cpp_int.hpp>

#include "host/numbers/NumberScan.h"
#include "host/numbers/ResultText.h"
#include "host/numbers/Statistics.h"
#include "lang/StringHelpers.h"

using namespace host::numbers;

namespace {

class Texts final : public CellTexts {
public:
    Texts(std::initializer_list<std::string> texts)
    {
        for (const std::string& text : texts)
            add(text);
    }
    void add(const std::string& text) { texts_.emplace_back(text.begin(), text.end()); }
    std::size_t size() const override { return texts_.size(); }
    std::u16string_view text(std::size_t index) const override { return texts_[index]; }

private:
    std::vector<std::u16string> texts_;
};

// Numbers among words, blanks and a comma decimal; 1, 2, 4 and 3.5.
const Texts kMixed{"1", "2", "abc", "4", " 3,5 ", ""};
const Texts kTens{"10", "20", "30"};
const Texts kFractions{"2.5", "0.3", "7", "11.25", "0.004"};

Texts counting(int last)
{
    Texts texts{};
    for (int i = 1; i <= last; ++i)
        texts.add(std::to_string(i));
    return texts;
}

StatisticResult run(Statistic statistic, NumberType type, const CellTexts& texts)
{
    return computeStatistic(statistic, type, texts);
}

// The binary type's digits agree with the 100-digit truth to a unit in the 77th digit.
::testing::AssertionResult withinBinaryPrecision(const std::string& result, const std::string& truth)
{
    using Float = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<120>>;
    if (result.empty())
        return ::testing::AssertionFailure() << "no result";
    const Float got(result), expected(truth);
    if (abs(got - expected) <= abs(expected) * Float("1e-76"))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << result << " is not " << truth;
}

struct Expected {
    Statistic statistic;
    const Texts* texts;
    std::string ordinary;
    std::string decimal;
    std::string binary;  // exactly this, or the truth to 100 digits when binaryRounded
    bool binaryRounded = false;
};

void expectAllTypes(const std::vector<Expected>& cases)
{
    for (const Expected& c : cases) {
        SCOPED_TRACE(c.decimal);
        EXPECT_EQ(run(c.statistic, NumberType::Ordinary, *c.texts).text, c.ordinary);
        EXPECT_EQ(run(c.statistic, NumberType::Decimal, *c.texts).text, c.decimal);
        const std::string binary = run(c.statistic, NumberType::Binary, *c.texts).text;
        if (c.binaryRounded)
            EXPECT_TRUE(withinBinaryPrecision(binary, c.binary));
        else
            EXPECT_EQ(binary, c.binary);
    }
}

}  // namespace

TEST(NumberScan, TakesAWholeTextAsToPointLeavesItAndNothingElse)
{
    struct Case {
        std::string text;
        bool number;
        double value;
    };
    const std::vector<Case> cases = {
        {"42", true, 42},           {" -3,25  ", true, -3.25},  {"+.5", true, 0.5},     {"7.", true, 7},
        {"1e3", true, 1000},        {"2,5E-2", true, 0.025},    {"-0", true, 0},        {"000123.4500", true, 123.45},
        {"", false, 0},             {"   ", false, 0},          {"abc", false, 0},      {"1.000,5", false, 0},
        {"1 000", false, 0},        {"\t5", false, 0},          {"5%", false, 0},       {"1e", false, 0},
        {"e5", false, 0},           {".", false, 0},            {"-", false, 0},        {"0x10", false, 0},
        {"12.05.2024", false, 0},   {"True", false, 0},         {"1e+", false, 0},      {"--1", false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const std::u16string text(c.text.begin(), c.text.end());
        ScannedNumber number;
        ASSERT_EQ(scanNumber(text, number), c.number);
        if (c.number) {
            EXPECT_EQ(toDouble(number, text), c.value);
        }
        // The same verdict and value for the text after ToPoint.
        QString pointed = QString::fromStdString(c.text);
        const std::u16string afterToPoint = lang::ToPoint(pointed).toStdU16String();
        ScannedNumber again;
        EXPECT_EQ(scanNumber(afterToPoint, again), c.number);
        if (c.number) {
            EXPECT_EQ(toDouble(again, afterToPoint), c.value);
        }
    }
}

TEST(NumberScan, GivesTheDoubleTheCLibraryGivesAndMarksWhatDoublesCannotHold)
{
    for (const char* text : {"0.1", "123456789012345678901234567890", "0.1000000000000000055511151231257827",
                             "2.2250738585072014e-308", "9007199254740993", "1.7976931348623157e308", "4.9e-324",
                             "3.14159265358979323846264338327950288", "1e22", "1e23", "-8.5e-7"}) {
        SCOPED_TRACE(text);
        const std::string ascii(text);
        const std::u16string wide(ascii.begin(), ascii.end());
        ScannedNumber number;
        ASSERT_TRUE(scanNumber(wide, number));
        EXPECT_EQ(toDouble(number, wide), std::strtod(text, nullptr));
    }
    ScannedNumber huge, tiny;
    ASSERT_TRUE(scanNumber(u"-1e400", huge) && scanNumber(u"1e-400", tiny));
    EXPECT_EQ(toDouble(huge, u"-1e400"), -HUGE_VAL);
    EXPECT_EQ(toDouble(tiny, u"1e-400"), 0.0);
}

TEST(NumberScan, AgreesWithAPatternAndStrtodOnRandomTexts)
{
    // The same rule written as a pattern, over texts made of the characters that matter.
    const std::regex number(R"( *[+-]?([0-9]+[.,]?[0-9]*|[.,][0-9]+)([eE][+-]?[0-9]+)? *)");
    const std::string alphabet = "0123456789000999+-.,eE x";
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        const int length = int(random() % 12);
        for (int k = 0; k < length; ++k)
            text += alphabet[random() % alphabet.size()];
        SCOPED_TRACE(text);
        const std::u16string wide(text.begin(), text.end());
        ScannedNumber scanned;
        const bool isNumber = std::regex_match(text, number);
        ASSERT_EQ(scanNumber(wide, scanned), isNumber);
        if (isNumber) {
            std::string pointed = text;
            std::replace(pointed.begin(), pointed.end(), ',', '.');
            EXPECT_EQ(toDouble(scanned, wide), std::strtod(pointed.c_str(), nullptr));
        }
    }
}

TEST(ResultText, OrdinaryAsTheRunTimeWritesDoublesAndExtendedWithEveryDigit)
{
    EXPECT_EQ(ordinaryText(0.1 + 0.2), "0.3");
    EXPECT_EQ(ordinaryText(1e15), "1E+15");
    EXPECT_EQ(ordinaryText(999999999999999.0), "999999999999999");
    EXPECT_EQ(ordinaryText(0.0001), "0.0001");
    EXPECT_EQ(ordinaryText(-0.00001), "-1E-05");
    EXPECT_EQ(ordinaryText(123456789012345678.0), "1.23456789012346E+17");

    const auto extended = [](std::string digits, int64_t lead, bool exact, bool negative = false) {
        DigitText text;
        text.digits = std::move(digits);
        text.leadingExponent = lead;
        text.exact = exact;
        text.negative = negative;
        return extendedText(text, 50);
    };
    EXPECT_EQ(extended("", 0, true), "0");
    EXPECT_EQ(extended("15", 0, true, true), "-1.5");
    EXPECT_EQ(extended("1", -4, true), "0.0001");
    EXPECT_EQ(extended("123", -5, true), "1.23E-05");
    // A whole number in full while it ends in at most 50 zeros, if it is exact.
    EXPECT_EQ(extended("26525285981219105863630848", 32, true), "265252859812191058636308480000000");
    EXPECT_EQ(extended("1", 50, true), "100000000000000000000000000000000000000000000000000");
    EXPECT_EQ(extended("1", 51, true), "1E+51");
    EXPECT_EQ(extended("1", 400, true), "1E+400");
    // A rounded one never shows zeros its digits do not vouch for.
    EXPECT_EQ(extended("12", 49, false), "12000000000000000000000000000000000000000000000000");
    EXPECT_EQ(extended("12", 50, false), "1.2E+50");
}

TEST(Statistics, SumProductAndAverage)
{
    expectAllTypes({
        {Statistic::Sum, &kMixed, "10.5", "10.5", "10.5"},
        {Statistic::Sum, &kFractions, "21.054", "21.054", "21.054"},
        {Statistic::Product, &kMixed, "28", "28", "28"},
        {Statistic::Product, &kFractions, "0.23625", "0.23625", "0.23625"},
        {Statistic::Average, &kMixed, "2.625", "2.625", "2.625"},
        {Statistic::Average, &kFractions, "4.2108", "4.2108", "4.2108"},
        {Statistic::Average, &kTens, "20", "20", "20"},
    });
    // 1e20 + 1 - 1e20: exact in the extended types, and the compensated double sum keeps it.
    const Texts cancelling{"1e20", "1", "-1e20"};
    for (NumberType type : {NumberType::Ordinary, NumberType::Decimal, NumberType::Binary})
        EXPECT_EQ(run(Statistic::Sum, type, cancelling).text, "1");
    // A third: rounded to each type's digits.
    const Texts thirds{"1", "1", "2"};
    EXPECT_EQ(run(Statistic::Average, NumberType::Ordinary, thirds).text, "1.33333333333333");
    EXPECT_EQ(run(Statistic::Average, NumberType::Decimal, thirds).text, "1." + std::string(49, '3'));
    EXPECT_EQ(run(Statistic::Average, NumberType::Binary, thirds).text, "1." + std::string(76, '3'));
}

TEST(Statistics, GeometricAndHarmonicMeans)
{
    expectAllTypes({
        {Statistic::GeometricMean, &kMixed, "2.30032663379121", "2.3003266337912060050858926356643507348739455927489",
         "2.3003266337912060050858926356643507348739455927489307391064343129827820985130506539810590819320053827", true},
        {Statistic::GeometricMean, &kTens, "18.1712059283214", "18.171205928321396588912117563272605024282104631412",
         "18.171205928321396588912117563272605024282104631412196714813342979313097394593018656471417041264170721", true},
        {Statistic::GeometricMean, &kFractions, "0.749332144977788",
         "0.74933214497778834250188413349418360658014818322425",
         "0.74933214497778834250188413349418360658014818322424919568026794273457765810243411791851791923000093798", true},
        {Statistic::HarmonicMean, &kMixed, "1.96491228070175", "1.9649122807017543859649122807017543859649122807018",
         "1.9649122807017543859649122807017543859649122807017543859649122807017543859649122807017543859649122807", true},
        {Statistic::HarmonicMean, &kFractions, "0.0196877460968262",
         "0.019687746096826210327629095363692046150576882211028",
         "0.019687746096826210327629095363692046150576882211027637845473068413355166939586744834310428880361004513", true},
    });
    // Exact roots come out whole, and a long list of large numbers does not overflow.
    const Texts powers{"2", "8"};
    for (NumberType type : {NumberType::Ordinary, NumberType::Decimal, NumberType::Binary})
        EXPECT_EQ(run(Statistic::GeometricMean, type, powers).text, "4");
    Texts large{};
    for (int i = 0; i < 400; ++i)
        large.add("1e300");
    EXPECT_EQ(run(Statistic::GeometricMean, NumberType::Ordinary, large).text, "1E+300");
    EXPECT_EQ(run(Statistic::GeometricMean, NumberType::Decimal, large).text, "1E+300");
}

TEST(Statistics, MedianMinAndMax)
{
    expectAllTypes({
        {Statistic::Median, &kMixed, "2.75", "2.75", "2.75"},
        {Statistic::Median, &kFractions, "2.5", "2.5", "2.5"},
        {Statistic::Median, &kTens, "20", "20", "20"},
    });
    // The first extreme's place in the list (texts counted) and the value rounded half to even.
    const Texts list{"2.5", "-7", "x", "-7", "3.5", "1e-30"};
    for (NumberType type : {NumberType::Ordinary, NumberType::Decimal, NumberType::Binary}) {
        const StatisticResult min = run(Statistic::Min, type, list);
        const StatisticResult max = run(Statistic::Max, type, list);
        EXPECT_EQ(std::make_pair(min.position, min.roundedExtreme.value_or(99)), std::make_pair(std::size_t(2), int64_t(-7)));
        EXPECT_EQ(std::make_pair(max.position, max.roundedExtreme.value_or(99)), std::make_pair(std::size_t(5), int64_t(4)));
    }
    for (const auto& [text, rounded] : std::map<std::string, int64_t>{{"2.5", 2}, {"-2.5", -2}, {"0.5", 0}, {"-3.5", -4}}) {
        const Texts one{text};
        EXPECT_EQ(run(Statistic::Max, NumberType::Ordinary, one).roundedExtreme, rounded) << text;
        EXPECT_EQ(run(Statistic::Max, NumberType::Decimal, one).roundedExtreme, rounded) << text;
    }
    // Only exact arithmetic sees that this lies above the half.
    const Texts aboveHalf{"2.50000000000000000000001"};
    EXPECT_EQ(run(Statistic::Min, NumberType::Ordinary, aboveHalf).roundedExtreme, 2);
    EXPECT_EQ(run(Statistic::Min, NumberType::Binary, aboveHalf).roundedExtreme, 3);
    // Numbers that differ only beyond 19 digits are told apart.
    const Texts close{"1.00000000000000000000002", "1.00000000000000000000001", "1.00000000000000000000003"};
    EXPECT_EQ(run(Statistic::Min, NumberType::Decimal, close).position, 2u);
    EXPECT_EQ(run(Statistic::Max, NumberType::Decimal, close).position, 3u);
    EXPECT_EQ(run(Statistic::Median, NumberType::Decimal, close).text, "1.00000000000000000000002");
}

TEST(Statistics, OrdinaryMedianIsTheMiddleOfTheSortedNumbers)
{
    std::mt19937_64 random(5);
    for (int round = 0; round < 60; ++round) {
        Texts texts{};
        std::vector<double> values;
        const std::size_t count = 1 + random() % (round < 50 ? 300 : 30000);
        for (std::size_t i = 0; i < count; ++i) {
            // Spread over many magnitudes and signs, or crowded into a narrow band.
            const double value = round % 3 == 0 ? 1000.0 + double(random() % 100) / 1e9
                                                : std::ldexp(double(int64_t(random() % 20001) - 10000), int(random() % 60) - 30);
            char text[64];
            std::snprintf(text, sizeof text, "%.17g", value);
            texts.add(text);
            values.push_back(std::strtod(text, nullptr));
        }
        std::sort(values.begin(), values.end());
        const std::size_t middle = values.size() / 2;
        const double expected = values.size() % 2 ? values[middle] : values[middle - 1] / 2 + values[middle] / 2;
        EXPECT_EQ(run(Statistic::Median, NumberType::Ordinary, texts).text, ordinaryText(expected)) << count;
    }
}

TEST(Statistics, DeviationsAndVariance)
{
    expectAllTypes({
        {Statistic::Variance, &kMixed, "1.89583333333333", "1.8958333333333333333333333333333333333333333333333",
         "1.8958333333333333333333333333333333333333333333333333333333333333333333333333333333333333333333333333", true},
        {Statistic::Variance, &kFractions, "23.3120832", "23.3120832", "23.3120832"},
        {Statistic::Variance, &kTens, "100", "100", "100"},
        {Statistic::StandardDeviation, &kMixed, "1.37689263682153", "1.3768926368215255051514521927180183677365316529829",
         "1.3768926368215255051514521927180183677365316529829192183679121760497230858682406867953218079532767121", true},
        {Statistic::StandardDeviation, &kFractions, "4.82825881659217",
         "4.8282588165921677318436172019577156269056736886311",
         "4.8282588165921677318436172019577156269056736886311402912362357541364964003809639610175943194115990576", true},
        {Statistic::StandardDeviation, &kTens, "10", "10", "10"},
        {Statistic::AverageDeviation, &kMixed, "1.125", "1.125", "1.125"},
        {Statistic::AverageDeviation, &kFractions, "3.93136", "3.93136", "3.93136"},
        {Statistic::AverageDeviation, &kTens, "6.66666666666667", "6.6666666666666666666666666666666666666666666666667",
         "6.6666666666666666666666666666666666666666666666666666666666666666666666666666666666666666666666666667", true},
    });
    // A constant list far from zero: no cancellation in any type.
    const Texts constant{"1000000.1", "1000000.1", "1000000.1"};
    for (NumberType type : {NumberType::Ordinary, NumberType::Decimal, NumberType::Binary})
        EXPECT_EQ(run(Statistic::StandardDeviation, type, constant).text, "0");
}

TEST(Statistics, WholeNumberStatisticsTruncateAndStayExact)
{
    expectAllTypes({
        {Statistic::LeastCommonMultiple, &kMixed, "12", "12", "12"},
        {Statistic::GreatestCommonDivisor, &kMixed, "1", "1", "1"},
        {Statistic::Multinomial, &kMixed, "12600", "12600", "12600"},
        // 2, 0, 7, 11 and 0
        {Statistic::LeastCommonMultiple, &kFractions, "0", "0", "0"},
        {Statistic::GreatestCommonDivisor, &kFractions, "1", "1", "1"},
        {Statistic::Multinomial, &kFractions, "6046560", "6046560", "6046560"},
        {Statistic::GreatestCommonDivisor, &kTens, "10", "10", "10"},
    });
    // Binomials of large numbers: C(10^8, 10^4), and C(10^20 + 3000, 3000) past 64 bits.
    const auto digitsOfMultinomial = [](const Texts& texts) {
        const std::string text = run(Statistic::Multinomial, NumberType::Decimal, texts).text;
        return std::to_string(text.size()) + " " + text.substr(0, 25) + " " + text.substr(text.size() - 25);
    };
    EXPECT_EQ(digitsOfMultinomial({"99990000", "10000"}), "44341 2131045465794482936582866 9933704131193452826240000");
    EXPECT_EQ(digitsOfMultinomial({"1e20", "3000"}), "50870 2410010448772669855476526 7379137654296875000000001");
}

TEST(Statistics, ExactWhereDoublesCannotBe)
{
    // 0.1 added ten times.
    Texts tenths{};
    for (int i = 0; i < 10; ++i)
        tenths.add("0.1");
    Texts manyTenths{};
    for (int i = 0; i < 100000; ++i)
        manyTenths.add("0.1");
    for (NumberType type : {NumberType::Decimal, NumberType::Binary}) {
        EXPECT_EQ(run(Statistic::Sum, type, tenths).text, "1");
        EXPECT_EQ(run(Statistic::Sum, type, manyTenths).text, "10000");
        EXPECT_EQ(run(Statistic::Product, type, tenths).text, "1E-10");
    }
    // Beyond 2^53 even the ordinary type computes products, LCMs and multinomials exactly.
    const Texts multinomial{"10", "20", "30"};
    const Texts twoFactors{"123456789", "987654321"};
    for (NumberType type : {NumberType::Ordinary, NumberType::Decimal, NumberType::Binary}) {
        SCOPED_TRACE(int(type));
        EXPECT_EQ(run(Statistic::Product, type, counting(30)).text, "265252859812191058636308480000000");
        EXPECT_EQ(run(Statistic::LeastCommonMultiple, type, counting(50)).text, "3099044504245996706400");
        EXPECT_EQ(run(Statistic::Multinomial, type, multinomial).text, "3553261127084984957001360");
        EXPECT_EQ(run(Statistic::Product, type, twoFactors).text, "121932631112635269");
    }
    // Up to 2^53 the ordinary type writes its double.
    EXPECT_EQ(run(Statistic::Product, NumberType::Ordinary, counting(18)).text, "6.402373705728E+15");
}

TEST(Statistics, ExtendedTypesMatchExactRationalsOnRandomLists)
{
    // Reference values from Boost's own rationals (no GMP), each list written as texts
    // in the forms cells take: plain, with a comma, with an exponent.
    using Rational = boost::multiprecision::cpp_rational;
    using Float = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<120>>;
    std::mt19937_64 random(11);
    const auto decimalOf = [](const Rational& value) {
        return Float(boost::multiprecision::numerator(value)) / Float(boost::multiprecision::denominator(value));
    };
    for (int round = 0; round < 150; ++round) {
        Texts texts{}, positive{};
        std::vector<Rational> values, positives;
        const int count = 2 + int(random() % 25);
        for (int i = 0; i < count; ++i) {
            const int64_t mantissa = int64_t(random() % 2000001) - 1000000;
            const int exponent = int(random() % 13) - 8;
            for (const int64_t m : {mantissa, std::abs(mantissa) + 1}) {
                Rational value = m;
                for (int k = 0; k < std::abs(exponent); ++k)
                    value = exponent < 0 ? Rational(value / 10) : Rational(value * 10);
                const std::string text = i % 3 == 0 ? std::to_string(m) + "e" + std::to_string(exponent)
                                                    : decimalOf(value).str(40, std::ios_base::fixed);
                (m == mantissa ? values : positives).push_back(value);
                (m == mantissa ? texts : positive).add(text);
            }
        }
        Rational sum = 0;
        for (const Rational& v : values)
            sum += v;
        const Rational n = int(values.size());
        const Rational mean = sum / n;
        Rational squares = 0, deviations = 0, reciprocals = 0;
        Float logarithms = 0;
        for (const Rational& v : values) {
            squares += (v - mean) * (v - mean);
            deviations += v < mean ? Rational(mean - v) : Rational(v - mean);
        }
        for (const Rational& v : positives) {
            reciprocals += 1 / v;
            logarithms += log(decimalOf(v));
        }
        std::vector<Rational> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        const std::size_t half = sorted.size() / 2;
        const Rational median = sorted.size() % 2 ? sorted[half] : Rational((sorted[half - 1] + sorted[half]) / 2);
        const std::vector<std::tuple<Statistic, const Texts*, Float>> expected = {
            {Statistic::Sum, &texts, decimalOf(sum)},
            {Statistic::Median, &texts, decimalOf(median)},
            {Statistic::Average, &texts, decimalOf(mean)},
            {Statistic::Variance, &texts, decimalOf(squares / (n - 1))},
            {Statistic::StandardDeviation, &texts, sqrt(decimalOf(squares / (n - 1)))},
            {Statistic::AverageDeviation, &texts, decimalOf(deviations / n)},
            {Statistic::HarmonicMean, &positive, decimalOf(n / reciprocals)},
            {Statistic::GeometricMean, &positive, exp(logarithms / Float(count))}};
        for (const auto& [statistic, list, exact] : expected) {
            // Rounded to the nearest: within half a unit of the 50th or 77th digit.
            for (const auto& [type, digits] : {std::pair(NumberType::Decimal, 50), std::pair(NumberType::Binary, 77)}) {
                const std::string text = run(statistic, type, *list).text;
                const double lead = std::floor(log10(abs(exact == 0 ? Float(1) : exact)).convert_to<double>());
                const Float unit = pow(Float(10), Float(lead - digits + 1));
                EXPECT_LE(abs(Float(text) - exact), unit / 2) << int(statistic) << " " << text;
            }
        }
    }
}

TEST(Statistics, RefusalsGiveNoTextAndTheirReason)
{
    const Texts words{"abc", "", " "};
    const Texts one{"5"};
    const Texts negative{"4", "-6"};
    const Texts zero{"4", "0"};
    const Texts huge{"1", "1e400"};
    const Texts farOut{"1e100001"};
    const Texts giant{"50000000", "50000000"};
    struct Case {
        Statistic statistic;
        const Texts* texts;
        Refusal ordinary;
        Refusal extended;
    };
    const std::vector<Case> cases = {
        {Statistic::Sum, &words, Refusal::NoNumbers, Refusal::NoNumbers},
        {Statistic::Max, &words, Refusal::NoNumbers, Refusal::NoNumbers},
        {Statistic::Median, &words, Refusal::NoNumbers, Refusal::NoNumbers},
        {Statistic::Variance, &one, Refusal::TooFewNumbers, Refusal::TooFewNumbers},
        {Statistic::StandardDeviation, &one, Refusal::TooFewNumbers, Refusal::TooFewNumbers},
        {Statistic::LeastCommonMultiple, &negative, Refusal::NegativeNumber, Refusal::NegativeNumber},
        {Statistic::GreatestCommonDivisor, &negative, Refusal::NegativeNumber, Refusal::NegativeNumber},
        {Statistic::Multinomial, &negative, Refusal::NegativeNumber, Refusal::NegativeNumber},
        {Statistic::GeometricMean, &zero, Refusal::NotPositiveNumber, Refusal::NotPositiveNumber},
        {Statistic::HarmonicMean, &negative, Refusal::NotPositiveNumber, Refusal::NotPositiveNumber},
        {Statistic::Sum, &huge, Refusal::BeyondOrdinary, Refusal::None},
        {Statistic::Average, &farOut, Refusal::BeyondOrdinary, Refusal::BeyondExtended},
        {Statistic::Multinomial, &giant, Refusal::ResultTooLarge, Refusal::ResultTooLarge},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(int(c.statistic));
        const StatisticResult ordinary = run(c.statistic, NumberType::Ordinary, *c.texts);
        EXPECT_EQ(ordinary.refusal, c.ordinary);
        for (NumberType type : {NumberType::Decimal, NumberType::Binary}) {
            const StatisticResult extended = run(c.statistic, type, *c.texts);
            EXPECT_EQ(extended.refusal, c.extended);
            EXPECT_EQ(extended.text.empty(), c.extended != Refusal::None);
        }
        EXPECT_TRUE(ordinary.text.empty());
        EXPECT_EQ(ordinary.position, 0u);
    }
    EXPECT_EQ(run(Statistic::Sum, NumberType::Decimal, huge).text, "1" + std::string(399, '0') + "1");
}

TEST(Statistics, ReportProgressOnLongListsOnlyAndAtMostAHundredAndOneTimes)
{
    Texts longList{};
    for (int i = 0; i < 250000; ++i)
        longList.add(std::to_string(i % 97) + ".5");
    for (Statistic statistic : {Statistic::Sum, Statistic::AverageDeviation, Statistic::Median}) {
        for (NumberType type : {NumberType::Ordinary, NumberType::Binary}) {
            std::vector<int> reports;
            computeStatistic(statistic, type, longList, [&](int percent) { reports.push_back(percent); });
            ASSERT_GE(reports.size(), 50u);
            EXPECT_LE(reports.size(), 101u);
            EXPECT_EQ(reports.front(), 0);
            EXPECT_EQ(reports.back(), 100);
            EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
        }
    }
    int shortReports = 0;
    computeStatistic(Statistic::Sum, NumberType::Ordinary, kTens, [&](int) { ++shortReports; });
    EXPECT_EQ(shortReports, 0);
}
