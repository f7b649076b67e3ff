#include "host/numbers/Statistic.h"

namespace host::numbers {

// The run time's numbers: invalid argument (5), overflow (6), out of memory (7) and
// division by zero (11), which is what a spreadsheet's #DIV/0! is.
int32_t errorNumberOf(Refusal refusal)
{
    switch (refusal) {
    case Refusal::None: return 0;
    case Refusal::NoNumbers:
    case Refusal::NegativeNumber:
    case Refusal::NotPositiveNumber: return 5;
    case Refusal::TooFewNumbers: return 11;
    case Refusal::BeyondOrdinary:
    case Refusal::BeyondExtended: return 6;
    case Refusal::ResultTooLarge: return 7;
    }
    return 5;
}

const char* descriptionOf(Refusal refusal)
{
    switch (refusal) {
    case Refusal::None: return "";
    case Refusal::NoNumbers: return "The list holds no numbers";
    case Refusal::TooFewNumbers: return "The statistic needs at least two numbers";
    case Refusal::NegativeNumber: return "The statistic takes no negative numbers";
    case Refusal::NotPositiveNumber: return "The statistic takes only numbers above zero";
    case Refusal::BeyondOrdinary: return "A number or the result is beyond the range of ordinary numbers";
    case Refusal::BeyondExtended: return "A number is beyond the range of the extended number types";
    case Refusal::ResultTooLarge: return "The exact result is too large to compute";
    }
    return "";
}

}  // namespace host::numbers
