#include "CellRanges.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace sheetwright::cli {

namespace {

// Beyond these no table has a column or a record.
constexpr std::size_t kMaxLetters = 4;
constexpr std::size_t kMaxRowDigits = 9;

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return std::string();
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// "BC12" -> column 55, row 12.
bool parseCell(const std::string& text, int32_t& column, int32_t& row)
{
    std::size_t i = 0;
    column = 0;
    while (i < text.size() && std::isalpha(static_cast<unsigned char>(text[i]))) {
        column = column * 26 + (std::toupper(static_cast<unsigned char>(text[i])) - 'A' + 1);
        ++i;
    }
    const std::size_t letters = i;
    row = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) {
        row = row * 10 + (text[i] - '0');
        ++i;
    }
    const std::size_t digits = i - letters;
    return i == text.size() && letters >= 1 && letters <= kMaxLetters && digits >= 1 && digits <= kMaxRowDigits &&
           row >= 1;
}

}  // namespace

std::vector<CellRange> parseCellRanges(const std::string& text)
{
    std::vector<CellRange> ranges;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = text.find(',', start);
        const std::string part = trimmed(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
        const std::size_t colon = part.find(':');
        const std::string first = part.substr(0, colon);
        const std::string last = colon == std::string::npos ? first : part.substr(colon + 1);
        int32_t c1 = 0, r1 = 0, c2 = 0, r2 = 0;
        if (!parseCell(first, c1, r1) || !parseCell(last, c2, r2))
            throw std::invalid_argument("'" + part + "' is not a range such as B2:C10");
        ranges.push_back({std::min(c1, c2), std::min(r1, r2), std::max(c1, c2), std::max(r1, r2)});
        if (comma == std::string::npos)
            return ranges;
        start = comma + 1;
    }
}

}  // namespace sheetwright::cli
