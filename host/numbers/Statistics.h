#pragma once
// The statistics over a list of cell texts, in one of the three number types. The texts
// that are numbers (NumberScan) take part; the others are skipped, as spreadsheets skip
// text cells. A statistic that has no numbers, or refuses one of them, gives an empty
// text and the reason.

#include "host/numbers/CellTexts.h"
#include "host/numbers/Progress.h"
#include "host/numbers/Statistic.h"

namespace host::numbers {

StatisticResult computeStatistic(Statistic statistic, NumberType type, const CellTexts& texts,
                                 Progress::Sink progress = {});

// The two halves computeStatistic chooses between. In ordinary arithmetic a product, LCM
// or multinomial beyond 2^53, which a double cannot hold exactly, is computed again in
// the decimal type and written in full.
StatisticResult computeOrdinary(Statistic statistic, const CellTexts& texts, Progress& progress);
StatisticResult computeExtended(Statistic statistic, NumberType type, const CellTexts& texts, Progress& progress);

}  // namespace host::numbers
