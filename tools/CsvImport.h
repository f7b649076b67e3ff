#pragma once
// Appends the rows of an RFC 4180 CSV file to an existing table, the inverse of the CSV
// export: the header names the columns (any order, any subset; names without case),
// values come in the forms the export prints (ISO dates, hex for binary and OLE data,
// 1/0 or True/False for Yes/No), an empty unquoted field is Null and "" an empty text.
// All rows go in one transaction: every row or, on any error, none. Rows are written as
// they are read, so memory does not grow with the file.

#include <istream>
#include <string>
#include <vector>

#include "jet/Connection.h"

namespace sheetwright::cli {

struct CsvField {
    std::string text;
    bool quoted = false;
};
using CsvRecord = std::vector<CsvField>;

// Reads CSV records from a stream a block at a time.
class CsvReader {
public:
    explicit CsvReader(std::istream& in) : in_(in), buffer_(kBlock) {}

    // Reads the next record into `record`, reusing the storage of its fields; false at the
    // end of the input. Throws std::runtime_error for a quote that is never closed or text
    // after a closing quote.
    bool next(CsvRecord& record);
    // Nothing but the end of the input follows.
    bool atEnd() { return peek() == EOF; }

private:
    static constexpr size_t kBlock = 1 << 16;
    int get() { return pos_ < end_ || refill() ? static_cast<unsigned char>(buffer_[pos_++]) : EOF; }
    int peek() { return pos_ < end_ || refill() ? static_cast<unsigned char>(buffer_[pos_]) : EOF; }
    bool refill();
    // Appends the run of ordinary characters that starts here to `out`.
    void takeRun(std::string& out, bool quoted);

    std::istream& in_;
    std::vector<char> buffer_;
    size_t pos_ = 0, end_ = 0;
};

// Appends every record to the table. Throws jet::RuntimeError for a value that does not
// fit or a duplicate key (nothing is written then) and std::runtime_error for malformed
// CSV, naming the line.
size_t importCsv(std::istream& in, jet::Connection& connection, const std::string& table);

}  // namespace sheetwright::cli
