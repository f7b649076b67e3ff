#pragma once
// Changes fields of a stored table definition in place: the counters a row change moves
// (row count, autonumber, distinct keys of an index). The definition is a byte stream over
// a chain of pages (the first page from offset 0, each further page from offset 8), so a
// field is found by its position in the stream and may straddle two pages.

#include <cstdint>
#include <vector>

#include "format/Format.h"
#include "format/TableDef.h"

namespace jet {

class Pager;

class TableDefWriter {
public:
    TableDefWriter(Pager& pager, const Format& format, const TableDef& def);

    uint32_t rowCount() const { return read32(layout_.rowCount); }
    void setRowCount(uint32_t n) { write32(layout_.rowCount, n); }
    uint32_t autoNumber() const { return read32(layout_.autoNumber); }
    void setAutoNumber(uint32_t n) { write32(layout_.autoNumber, n); }
    // The distinct-key statistic of physical index `index`.
    void addDistinctKey(uint32_t index);

private:
    uint32_t read32(uint32_t offset) const;
    void write32(uint32_t offset, uint32_t value);
    std::pair<uint32_t, uint32_t> where(uint32_t offset) const;  // page, offset in page

    Pager& pager_;
    const Format& f_;
    const TableDefLayout& layout_;
    std::vector<uint32_t> pages_;
};

}  // namespace jet
