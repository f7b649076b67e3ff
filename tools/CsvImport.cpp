#include "CsvImport.h"

#include <algorithm>
#include <stdexcept>

#include "jet/AdoConstants.h"
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

bool readCsvRecord(std::istream& in, CsvRecord& record) {
    record.clear();
    int c = in.get();
    if (c == EOF) return false;
    CsvField field;
    bool afterQuote = false;
    for (;; c = in.get()) {
        if (c == EOF || c == '\n' || (c == '\r' && in.peek() == '\n')) {
            if (c == '\r') in.get();
            record.push_back(std::move(field));
            return true;
        }
        if (c == ',') {
            record.push_back(std::move(field));
            field = CsvField{};
            afterQuote = false;
            continue;
        }
        if (afterQuote) throw std::runtime_error("text after a closing quote");
        if (c == '"' && field.text.empty() && !field.quoted) {
            field.quoted = true;
            for (;;) {
                int q = in.get();
                if (q == EOF) throw std::runtime_error("a quoted field is never closed");
                if (q == '"') {
                    if (in.peek() == '"') {
                        in.get();
                        field.text += '"';
                        continue;
                    }
                    break;
                }
                field.text += char(q);
            }
            afterQuote = true;
            continue;
        }
        field.text += char(c);
    }
}

size_t importCsv(std::istream& in, jet::Recordset& rs) {
    CsvRecord header;
    if (!readCsvRecord(in, header)) throw std::runtime_error("the CSV file is empty: it needs a header line");
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
    try {
        while (readCsvRecord(in, record)) {
            ++line;
            if (record.size() == 1 && record[0].text.empty() && !record[0].quoted && in.peek() == EOF) break;
            if (record.size() != columns.size())
                throw std::runtime_error("record " + std::to_string(rows + 1) + " has " + std::to_string(record.size()) +
                                         " fields, the header " + std::to_string(columns.size()));
            rs.AddNew();
            for (size_t k = 0; k < columns.size(); ++k) {
                const CsvField& f = record[k];
                jet::Field field = rs.Fields().Item(columns[k]);
                if (f.text.empty() && !f.quoted) field.setValue(jet::Variant::null());
                else if (binary[k]) field.setValue(jet::Variant::bytes(fromHex(f.text, field.Name())));
                else field.setValue(jet::Variant::string(f.text));
            }
            ++rows;
        }
    } catch (const jet::RuntimeError& e) {
        throw jet::RuntimeError(e.number(), "line " + std::to_string(line) + ": " + e.description());
    } catch (const std::runtime_error& e) {
        throw std::runtime_error("line " + std::to_string(line) + ": " + e.what());
    }
    rs.UpdateBatch(3);
    return rows;
}

}  // namespace sheetwright::cli
