#include "host/numbers/Statistics.h"

namespace host::numbers {

StatisticResult computeStatistic(Statistic statistic, NumberType type, const CellTexts& texts, Progress::Sink sink)
{
    // Only the mean deviation walks its numbers twice.
    const int passes = statistic == Statistic::AverageDeviation ? 2 : 1;
    Progress progress(texts.size(), passes, std::move(sink));
    StatisticResult result = type == NumberType::Ordinary ? computeOrdinary(statistic, texts, progress)
                                                          : computeExtended(statistic, type, texts, progress);
    progress.finish();
    return result;
}

}  // namespace host::numbers
