// The CSV reader of load reads its input a block at a time: every character that ends a
// field or a record, or escapes a quote, must be read the same wherever a block ends.
#include <gtest/gtest.h>

#include <sstream>

#include "CsvImport.h"

namespace {

using sheetwright::cli::CsvReader;
using sheetwright::cli::CsvRecord;

// Records as text, a field in brackets when it was quoted: "a|[b]" for a,"b".
std::vector<std::string> parse(const std::string& csv) {
    std::istringstream in(csv);
    CsvReader reader(in);
    CsvRecord record;
    std::vector<std::string> out;
    while (reader.next(record)) {
        std::string line;
        for (size_t i = 0; i < record.size(); ++i)
            line += (i ? "|" : "") + (record[i].quoted ? "[" + record[i].text + "]" : record[i].text);
        out.push_back(line);
    }
    return out;
}

TEST(CsvReader, FieldsAndRecordsEndTheSameWhereverABlockEnds) {
    // The tail ,"q""r"CRLF next,"" slides across the end of the first 64 KB block.
    for (size_t pad = 65520; pad < 65545; ++pad) {
        const std::string long_(pad, 'p');
        EXPECT_EQ((std::vector<std::string>{"h", long_ + "|[q\"r]", "next|[]"}),
                  parse("h\n" + long_ + ",\"q\"\"r\"\r\nnext,\"\"\n"))
            << pad;
    }
    const std::string big(200000, 'x');
    EXPECT_EQ((std::vector<std::string>{"[" + big + "\n" + big + "]", "a\rb|"}),
              parse("\"" + big + "\n" + big + "\"\na\rb,"))
        << "a quoted field over several blocks; a lone CR is text";
    EXPECT_THROW(parse("a,\"" + big), std::runtime_error) << "never closed";
    EXPECT_THROW(parse(big + ",\"q\"r\n"), std::runtime_error) << "text after a closing quote";
}

}  // namespace
