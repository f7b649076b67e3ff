#include "table/RowReader.h"

#include <string>

#include "base/Bytes.h"
#include "pager/Pager.h"

namespace jet {

RowReader::RowReader(const Format& f, uint16_t varColumns, std::span<const uint8_t> row) : f_(f), row_(row) {
    const uint32_t n = f.rowFieldSize();
    const uint32_t len = uint32_t(row.size());
    if (len < n) throw CorruptError("a row is shorter than its column count");
    columnCount_ = n == 1 ? row[0] : le16(row.data());
    maskSize_ = (columnCount_ + 7u) / 8u;
    if (len < n + maskSize_) throw CorruptError("a row is shorter than its null mask");
    hasVarSection_ = varColumns != 0;
    if (!hasVarSection_) {
        trailerStart_ = len - maskSize_;
        return;
    }
    if (len < n + maskSize_ + n) throw CorruptError("a row is shorter than its variable-column count");
    if (f.isJet3()) {
        varCount_ = row[len - maskSize_ - 1];
        const uint32_t slots = (len - 1) / 256;
        // Offset 0 sits just before the jump table; the eod byte comes after the last offset.
        if (uint64_t(maskSize_) + slots + 2 + varCount_ > len || len - maskSize_ - slots - 2 < varCount_ + 1u)
            throw CorruptError("a row's variable-offset table does not fit in it");
        const uint32_t p0 = len - maskSize_ - slots - 2;
        uint32_t realJumps = slots;
        if ((p0 - varCount_) / 256 < slots && slots > 0) realJumps = slots - 1;
        jet3Offsets_.resize(varCount_ + 1u);
        uint32_t used = 0;
        for (uint32_t k = 0; k <= varCount_; ++k) {
            while (used < realJumps && k == row[len - maskSize_ - 2 - used]) ++used;
            jet3Offsets_[k] = uint16_t(row[p0 - k] + 256 * used);
            // Every offset is needed to place the jumps, so their order is checked here.
            if (k > 0 && jet3Offsets_[k] < jet3Offsets_[k - 1])
                throw CorruptError("a row's variable offsets are out of order");
        }
        trailerStart_ = p0 - varCount_;
    } else {
        varCount_ = le16(row.data() + len - maskSize_ - 2);
        uint64_t trailer = uint64_t(maskSize_) + 2 + 2ull * varCount_ + 2;
        if (trailer + n > len) throw CorruptError("a row's variable-offset table does not fit in it");
        trailerStart_ = uint32_t(len - trailer);
    }
    if (endOfData() > trailerStart_) throw CorruptError("a row's variable data runs into its trailer");
}

bool RowReader::maskBit(uint16_t number) const {
    if (number >= columnCount_) return false;
    uint8_t byte = row_[row_.size() - maskSize_ + number / 8];
    return byte & (1u << (number % 8));
}

uint32_t RowReader::endOfData() const {
    if (!hasVarSection_) return trailerStart_;
    if (f_.isJet3()) return jet3Offsets_[varCount_];
    return le16(row_.data() + trailerStart_);
}

uint32_t RowReader::varOffset(uint16_t k) const {
    if (f_.isJet3()) return jet3Offsets_[k];
    return le16(row_.data() + row_.size() - maskSize_ - 4 - 2 * size_t(k));
}

ColumnBytes RowReader::column(const Column& c) const {
    ColumnBytes out;
    if (c.number >= columnCount_) return out;
    out.present = maskBit(c.number);
    if (c.typeCode == uint8_t(ColumnType::Bool) || !out.present) return out;
    if (c.isFixed()) {
        uint32_t size = fixedSizeOf(c.typeCode);
        if (size == 0) size = c.length;
        uint32_t start = f_.rowFieldSize() + c.fixedOffset;
        if (uint64_t(start) + size > trailerStart_)
            throw CorruptError("column '" + c.name + "' lies outside its row");
        out.bytes = row_.subspan(start, size);
        return out;
    }
    if (!hasVarSection_ || c.varIndex >= varCount_) {
        out.present = false;
        return out;
    }
    uint32_t start = varOffset(c.varIndex);
    uint32_t end = c.varIndex + 1u < varCount_ ? varOffset(uint16_t(c.varIndex + 1)) : endOfData();
    if (start < f_.rowFieldSize() || start > end || end > trailerStart_)
        throw CorruptError("column '" + c.name + "' has a value outside its row");
    out.bytes = row_.subspan(start, end - start);
    return out;
}

}  // namespace jet
