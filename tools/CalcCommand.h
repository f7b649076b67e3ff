#pragma once
// sheetwright-cli calc FILE TABLE RANGE STATISTIC [--type 0|1|2]: one statistic over
// ranges of a table, computed as the editor computes it (the table engine's Calculate
// and the function library), printed on standard output.

#include <string>
#include <vector>

namespace sheetwright::cli {

// Throws std::invalid_argument for a wrong command line and std::runtime_error (or the
// run time's error) when the statistic cannot be computed.
int calc(const std::vector<std::string>& args);

}  // namespace sheetwright::cli
