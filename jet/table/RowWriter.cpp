#include "table/RowWriter.h"

#include <algorithm>

#include "base/Bytes.h"
#include "jet/RuntimeError.h"

namespace jet {

namespace {

constexpr uint32_t minimumRowLength = 4;

uint32_t fixedWidth(const Column& c) {
    uint32_t size = fixedSizeOf(c.typeCode);
    return size ? size : c.length;
}

}  // namespace

std::vector<uint8_t> encodeRow(const Format& f, const TableDef& def, const std::vector<StoredValue>& values) {
    const auto& columns = def.columns();
    const uint32_t n = f.rowFieldSize();
    const uint16_t columnCount = def.maxColumns();
    const uint32_t maskSize = (columnCount + 7u) / 8u;
    const uint16_t varCount = def.varColumns();

    uint32_t fixedEnd = 0;
    for (const Column& c : columns)
        if (c.isFixed() && c.type() != ColumnType::Bool) fixedEnd = std::max<uint32_t>(fixedEnd, c.fixedOffset + fixedWidth(c));

    std::vector<uint8_t> row(n + fixedEnd, 0);
    if (n == 1) row[0] = uint8_t(columnCount);
    else putLe16(row.data(), columnCount);
    std::vector<uint8_t> mask(maskSize, 0);
    std::vector<const StoredValue*> bySlot(varCount, nullptr);

    for (size_t i = 0; i < columns.size(); ++i) {
        const Column& c = columns[i];
        const StoredValue& v = values.at(i);
        if (v.present) mask[c.number / 8] |= uint8_t(1u << (c.number % 8));
        if (c.type() == ColumnType::Bool) continue;
        if (c.isFixed()) {
            if (!v.present) continue;
            const uint32_t width = fixedWidth(c);
            uint8_t* at = row.data() + n + c.fixedOffset;
            size_t take = std::min<size_t>(v.bytes.size(), width);
            std::copy_n(v.bytes.begin(), take, at);
            if (c.type() == ColumnType::Text) {
                // Fixed text is padded with spaces in the column's encoding.
                const size_t step = f.isJet3() ? 1 : 2;
                for (size_t k = take; k + step <= width; k += step) at[k] = ' ';
            }
        } else if (v.present && c.varIndex < varCount) {
            bySlot[c.varIndex] = &v;
        }
    }

    std::vector<uint32_t> offsets(varCount + 1u);
    if (varCount > 0) {
        for (uint16_t k = 0; k < varCount; ++k) {
            offsets[k] = uint32_t(row.size());
            if (bySlot[k]) row.insert(row.end(), bySlot[k]->bytes.begin(), bySlot[k]->bytes.end());
        }
        offsets[varCount] = uint32_t(row.size());  // end of data
    }
    const uint32_t eod = uint32_t(row.size());
    auto tooLarge = [] { return RuntimeError(err::Unspecified, "Record is too large."); };
    if (eod > f.maxRowSize) throw tooLarge();

    if (varCount == 0) {
        while (row.size() + maskSize < minimumRowLength) row.push_back(0);
    } else if (!f.isJet3()) {
        uint8_t two[2];
        putLe16(two, uint16_t(eod));
        row.insert(row.end(), two, two + 2);
        for (int k = varCount - 1; k >= 0; --k) {
            putLe16(two, uint16_t(offsets[k]));
            row.insert(row.end(), two, two + 2);
        }
        putLe16(two, varCount);
        row.insert(row.end(), two, two + 2);
    } else {
        const uint32_t base = eod + 1 + varCount + 1 + maskSize;
        uint32_t slots = 0;
        for (;;) {
            uint32_t next = (base + slots - 1) / 256;
            if (next == slots) break;
            slots = next;
        }
        const uint32_t realJumps = eod / 256;
        if (slots < realJumps || slots - realJumps > 1) throw tooLarge();
        row.push_back(uint8_t(eod));
        for (int k = varCount - 1; k >= 0; --k) row.push_back(uint8_t(offsets[k]));
        for (uint32_t k = realJumps; k < slots; ++k) row.push_back(0xFF);
        for (int j = int(realJumps) - 1; j >= 0; --j) {
            uint32_t slot = 0;
            while (offsets[slot] < 256u * uint32_t(j + 1)) ++slot;  // eod (slot varCount) always qualifies
            row.push_back(uint8_t(slot));
        }
        row.push_back(uint8_t(varCount));
    }
    row.insert(row.end(), mask.begin(), mask.end());
    if (row.size() > f.maxRowSize) throw tooLarge();
    return row;
}

}  // namespace jet
