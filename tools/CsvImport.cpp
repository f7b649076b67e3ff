#include "CsvImport.h"

#include <algorithm>
#include <stdexcept>

#include "jet/AdoConstants.h"
#include "jet/Recordset.h"
#include "jet/RuntimeError.h"

namespace sheetwright::cli {

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::vector<uint8_t> fromHex(const std::string& text, const std::string& column) {
    std::vector<uint8_t> out;
    if (text.size() % 2 != 0) throw std::runtime_error("the value of column '" + column + "' is not hexadecimal data");
    for (size_t i = 0; i < text.size(); i += 2) {
        int hi = hexValue(text[i]), lo = hexValue(text[i + 1]);
        if (hi < 0 || lo < 0) throw std::runtime_error("the value of column '" + column + "' is not hexadecimal data");
        out.push_back(uint8_t(hi * 16 + lo));
    }
    return out;
}

}  // namespace

bool CsvReader::refill() {
    if (!in_) return false;
    in_.read(buffer_.data(), std::streamsize(buffer_.size()));
    pos_ = 0;
    end_ = size_t(in_.gcount());
    return end_ > 0;
}

void CsvReader::takeRun(std::string& out, bool quoted) {
    for (;;) {
        const char* start = buffer_.data() + pos_;
        const char* stop = start;
        const char* last = buffer_.data() + end_;
        if (quoted) {
            while (stop < last && *stop != '"') ++stop;
        } else {
            while (stop < last && *stop != ',' && *stop != '\n' && *stop != '\r') ++stop;
        }
        out.append(start, stop);
        pos_ += size_t(stop - start);
        if (stop < last || !refill()) return;
    }
}

bool CsvReader::next(CsvRecord& record) {
    int c = get();
    if (c == EOF) {
        record.clear();
        return false;
    }
    size_t used = 0;
    auto nextField = [&]() -> CsvField& {
        if (used == record.size()) record.emplace_back();
        CsvField& f = record[used++];
        f.text.clear();
        f.quoted = false;
        return f;
    };
    CsvField* field = &nextField();
    bool afterQuote = false;
    for (;; c = get()) {
        if (c == EOF || c == '\n' || (c == '\r' && peek() == '\n')) {
            if (c == '\r') get();
            record.resize(used);
            return true;
        }
        if (c == ',') {
            field = &nextField();
            afterQuote = false;
            continue;
        }
        if (afterQuote) throw std::runtime_error("text after a closing quote");
        if (c == '"' && field->text.empty() && !field->quoted) {
            field->quoted = true;
            for (;;) {
                takeRun(field->text, true);
                if (get() == EOF) throw std::runtime_error("a quoted field is never closed");
                if (peek() != '"') break;
                get();
                field->text += '"';
            }
            afterQuote = true;
            continue;
        }
        field->text += char(c);
        takeRun(field->text, false);
    }
}

size_t importCsv(std::istream& in, jet::Connection& connection, const std::string& table) {
    jet::Recordset rs;
    rs.Open("SELECT * FROM [" + table + "]", connection, jet::ado::OpenKeyset, jet::ado::LockOptimistic);
    CsvReader reader(in);
    CsvRecord header;
    if (!reader.next(header)) throw std::runtime_error("the CSV file is empty: it needs a header line");
    std::vector<int32_t> columns;
    std::vector<bool> binary;
    for (const CsvField& name : header) {
        jet::Field field = rs.Fields().Item(name.text);  // error 3265 for a name the table lacks
        int32_t index = 0;
        while (rs.Fields().Item(index).Name() != field.Name()) ++index;
        if (std::find(columns.begin(), columns.end(), index) != columns.end())
            throw std::runtime_error("the CSV header names column '" + name.text + "' twice");
        columns.push_back(index);
        binary.push_back(field.Type() == jet::ado_type::VarBinary || field.Type() == jet::ado_type::LongVarBinary);
    }
    CsvRecord record;
    size_t rows = 0, line = 1;
    connection.BeginTrans();
    try {
        while (reader.next(record)) {
            ++line;
            if (record.size() == 1 && record[0].text.empty() && !record[0].quoted && reader.atEnd()) break;
            if (record.size() != columns.size())
                throw std::runtime_error("record " + std::to_string(rows + 1) + " has " + std::to_string(record.size()) +
                                         " fields, the header " + std::to_string(columns.size()));
            rs.AddNew();
            for (size_t k = 0; k < columns.size(); ++k) {
                const CsvField& f = record[k];
                jet::Field field = rs.Fields().Item(columns[k]);
                if (f.text.empty() && !f.quoted) field.setValue(jet::Variant::null());
                else if (binary[k]) field.setValue(jet::Variant::bytes(fromHex(f.text, field.Name())));
                else field.setText(f.text);
            }
            rs.Update();
            ++rows;
        }
    } catch (const jet::RuntimeError& e) {
        connection.RollbackTrans();
        throw jet::RuntimeError(e.number(), "line " + std::to_string(line) + ": " + e.description());
    } catch (const std::runtime_error& e) {
        connection.RollbackTrans();
        throw std::runtime_error("line " + std::to_string(line) + ": " + e.what());
    }
    connection.CommitTrans();
    return rows;
}

}  // namespace sheetwright::cli
