// Times each statistic of the function library over a million cell texts in each number
// type, against the floor: a loop that only reads the same texts as numbers (scan and
// convert to double) and does nothing with them. The ratio is time / floor.
//
//   build/bench/statistics_bench [ITEMS] [RUNS] [TYPES] [ONLY]
//
// ITEMS defaults to 1000000, RUNS (default 5) runs of each are taken and the median kept,
// TYPES is a list of number types such as "012" (default: all three), ONLY keeps the
// statistics whose name contains it ("SUM"). On a busy machine count instructions instead
// of time: each statistic alone under callgrind, comparing the inclusive cost of
// computeStatistic with that of parseOnly, the floor:
//   valgrind --tool=callgrind --callgrind-out-file=cg.out build/bench/statistics_bench 200000 1 0 SUM
//   callgrind_annotate --inclusive=yes cg.out | grep -E 'computeStatistic|parseOnly'
// Every list has
// about 5% texts that are not numbers (words, blanks), as real selections do.
//   general   positive decimals with two places, some with a decimal comma
//   near one  1 ± up to 0.0005, so that a product of a million stays within doubles
//   small     whole numbers 1 to 12 (their LCM stays 27720)
//   sparse    zeros with fifteen ones and some halves (a multinomial of 15!)
// A product or LCM in the ordinary type that passes 2^53 is computed exactly instead; the
// lists are chosen so that the ordinary timings measure the double arithmetic.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "host/numbers/NumberScan.h"
#include "host/numbers/Statistics.h"

using namespace host::numbers;
using Clock = std::chrono::steady_clock;

namespace {

class Texts final : public CellTexts {
public:
    std::size_t size() const override { return texts_.size(); }
    std::u16string_view text(std::size_t index) const override { return texts_[index]; }
    void add(const std::string& text) { texts_.emplace_back(text.begin(), text.end()); }

private:
    std::vector<std::u16string> texts_;
};

enum class Shape { General, NearOne, Small, Sparse };

Texts generate(Shape shape, std::size_t items)
{
    std::mt19937_64 random(20240611);
    std::uniform_int_distribution<int> percent(0, 99);
    Texts texts;
    std::size_t ones = 0;
    char buffer[64];
    for (std::size_t i = 0; i < items; ++i) {
        const int roll = percent(random);
        if (roll < 3) {
            texts.add(roll == 0 ? "" : "n/a");
            continue;
        }
        if (roll < 5) {
            texts.add("Total");
            continue;
        }
        switch (shape) {
        case Shape::General: {
            const uint64_t cents = 1 + random() % 100000;
            std::snprintf(buffer, sizeof buffer, roll < 20 ? "%llu,%02llu" : "%llu.%02llu",
                          (unsigned long long)(cents / 100), (unsigned long long)(cents % 100));
            break;
        }
        case Shape::NearOne:
            std::snprintf(buffer, sizeof buffer, "%.4f", 1.0 + (double(random() % 1001) - 500.0) / 1e6);
            break;
        case Shape::Small: std::snprintf(buffer, sizeof buffer, "%d", int(1 + random() % 12)); break;
        case Shape::Sparse:
            std::snprintf(buffer, sizeof buffer, "%s", (ones < 15 && i % 50000 == 7) ? (++ones, "1") : (roll < 50 ? "0" : "0.5"));
            break;
        }
        texts.add(buffer);
    }
    return texts;
}

struct Row {
    const char* name;
    Statistic statistic;
    Shape shape;
};

const Row kRows[] = {
    {"Summ (SUM)", Statistic::Sum, Shape::General},
    {"Much (PRODUCT)", Statistic::Product, Shape::NearOne},
    {"Mid (AVERAGE)", Statistic::Average, Shape::General},
    {"MidGeo (GEOMEAN)", Statistic::GeometricMean, Shape::General},
    {"MidHarmonic (HARMEAN)", Statistic::HarmonicMean, Shape::General},
    {"Median (MEDIAN)", Statistic::Median, Shape::General},
    {"Min (MIN)", Statistic::Min, Shape::General},
    {"Max (MAX)", Statistic::Max, Shape::General},
    {"MinDevCrat (LCM)", Statistic::LeastCommonMultiple, Shape::Small},
    {"MaxCrat (GCD)", Statistic::GreatestCommonDivisor, Shape::Small},
    {"Multunomial (MULTINOMIAL)", Statistic::Multinomial, Shape::Sparse},
    {"SquareDivisor (STDEV)", Statistic::StandardDeviation, Shape::General},
    {"Divisor (AVEDEV)", Statistic::AverageDeviation, Shape::General},
    {"Dispersion (VAR)", Statistic::Variance, Shape::General},
};

template <class Work>
double medianSeconds(int runs, Work&& work)
{
    std::vector<double> times;
    for (int r = 0; r < runs; ++r) {
        const auto start = Clock::now();
        work();
        times.push_back(std::chrono::duration<double>(Clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// The floor: reads every text as a number and does nothing else with it.
__attribute__((noinline)) double parseOnly(const Texts& texts)
{
    ScannedNumber number;
    double total = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::u16string_view text = texts.text(i);
        if (scanNumber(text, number))
            total += toDouble(number, text);
    }
    return total;
}

double floorSeconds(const Texts& texts, int runs)
{
    volatile double sink = 0;
    return medianSeconds(runs, [&] { sink = parseOnly(texts); });
}

}  // namespace

int main(int argc, char** argv)
{
    const std::size_t items = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1000000;
    const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
    const std::string types = argc > 3 ? argv[3] : "012";
    const std::string only = argc > 4 ? argv[4] : "";
    const char* typeNames[] = {"ordinary", "decimal", "binary"};
    const char* shapeNames[] = {"general", "near one", "small", "sparse"};

    std::vector<const Row*> rows;
    for (const Row& row : kRows) {
        if (std::string(row.name).find(only) != std::string::npos)
            rows.push_back(&row);
    }
    // Only the lists the chosen statistics read are made and timed.
    std::vector<Texts> lists(4);
    std::vector<double> floors(4, 0.0);
    std::printf("%zu cell texts, median of %d runs; floor = scan and convert only\n", items, runs);
    for (const Row* row : rows) {
        const std::size_t shape = std::size_t(row->shape);
        if (lists[shape].size() == 0) {
            lists[shape] = generate(row->shape, items);
            floors[shape] = floorSeconds(lists[shape], runs);
            std::printf("floor %-9s %8.1f ms\n", shapeNames[shape], floors[shape] * 1e3);
        }
    }
    std::printf("\n%-27s %-9s %11s %8s %9s  %s\n", "statistic", "type", "ms", "ratio", "length", "result");
    for (const Row* row : rows) {
        const Texts& texts = lists[std::size_t(row->shape)];
        const double floor = floors[std::size_t(row->shape)];
        for (char t : types) {
            const int type = t - '0';
            if (type < 0 || type > 2)
                continue;
            StatisticResult result;
            const double time =
                medianSeconds(runs, [&] { result = computeStatistic(row->statistic, NumberType(type), texts); });
            const std::string shown = result.text.size() > 24 ? result.text.substr(0, 21) + "..." : result.text;
            std::printf("%-27s %-9s %11.1f %8.2f %9zu  %s\n", row->name, typeNames[type], time * 1e3, time / floor,
                        result.text.size(), result.refusal == Refusal::None ? shown.c_str() : descriptionOf(result.refusal));
            std::fflush(stdout);
        }
    }
    return 0;
}
