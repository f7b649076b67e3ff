#include "format/TableDefSerializer.h"

#include <algorithm>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/CodePage.h"
#include "pager/Pager.h"

namespace jet {

namespace {

constexpr uint32_t jet4Magic = 1625;          // header, column and logical index descriptors
constexpr uint32_t jet4IndexMagic = 1923;     // physical index descriptors
constexpr uint32_t jet4HeaderMagicOffset = 0x0C;
constexpr uint32_t jet4HeaderOneOffset = 0x18;
constexpr uint32_t jet4ColumnMagicOffset = 1;
constexpr uint32_t jet4ColumnNumberAgain = 9;
constexpr uint32_t jet3ColumnNumberAgain = 5;
constexpr uint32_t jet3ColumnOne = 7;
constexpr uint32_t jet4CollationPad = 2;      // after the LCID: a zero byte, then the order's version
constexpr size_t indexColumnSlots = 10;
constexpr uint16_t unusedSlot = 0xFFFF;
constexpr uint16_t endMarker = 0xFFFF;
constexpr size_t maxNameBytes = 64 * 2;

class StreamWriter {
public:
    std::vector<uint8_t>& bytes() { return out_; }
    uint8_t* append(std::span<const uint8_t> b) {
        size_t at = out_.size();
        out_.insert(out_.end(), b.begin(), b.end());
        return out_.data() + at;
    }
    // A part as stored, or zeros of its size when it is new.
    uint8_t* appendPart(const std::vector<uint8_t>& raw, uint32_t size) {
        size_t at = out_.size();
        out_.resize(at + size, 0);
        std::copy_n(raw.begin(), std::min<size_t>(raw.size(), size), out_.begin() + at);
        return out_.data() + at;
    }

private:
    std::vector<uint8_t> out_;
};

void appendName(StreamWriter& w, const Format& f, const CodePage& cp, const std::string& name) {
    std::vector<uint8_t> bytes;
    if (f.isJet3()) {
        std::optional<std::string> b = cp.fromUtf8(name);
        if (!b)
            throw RuntimeError(err::Unspecified, "The name '" + name + "' has characters that code page " +
                                                     std::to_string(cp.number()) + " cannot hold.");
        bytes.assign(b->begin(), b->end());
    } else {
        for (char16_t c : utf8ToUtf16(name)) {
            bytes.push_back(uint8_t(c));
            bytes.push_back(uint8_t(c >> 8));
        }
    }
    if (bytes.size() > maxNameBytes) throw RuntimeError(err::Unspecified, "The name '" + name + "' is too long.");
    uint8_t len[2];
    putLe16(len, uint16_t(bytes.size()));
    w.append({len, f.nameLengthSize()});
    w.append(bytes);
}

void writeHeader(uint8_t* h, const Format& f, const TableDefLayout& L, const TableDef& d, bool fresh) {
    if (fresh) {
        h[0] = page_type::TableDef;
        h[1] = 0x01;
        if (!f.isJet3()) {
            putLe32(h + jet4HeaderMagicOffset, jet4Magic);
            h[jet4HeaderOneOffset] = 1;
        }
    }
    putLe32(h + L.rowCount, d.rowCount());
    putLe32(h + L.autoNumber, d.autoNumber());
    h[L.tableType] = d.tableType();
    putLe16(h + L.maxColumns, d.maxColumns());
    putLe16(h + L.varColumns, d.varColumns());
    putLe16(h + L.columnCount, uint16_t(d.columns().size()));
    putLe32(h + L.logicalIndexCount, uint32_t(d.logicalIndexes().size()));
    putLe32(h + L.physicalIndexCount, uint32_t(d.physicalIndexes().size()));
    putLe32(h + L.ownedMap, d.ownedMap());
    putLe32(h + L.freeMap, d.freeMap());
}

void writeColumn(uint8_t* b, const Format& f, const TableDefLayout& L, const Column& c) {
    if (c.raw.empty()) {
        if (f.isJet3()) {
            putLe16(b + jet3ColumnNumberAgain, c.number);
            putLe16(b + jet3ColumnOne, 1);
        } else {
            putLe32(b + jet4ColumnMagicOffset, jet4Magic);
            putLe16(b + jet4ColumnNumberAgain, c.number);
        }
    }
    b[L.colType] = c.typeCode;
    putLe16(b + L.colNumber, c.number);
    putLe16(b + L.colVarIndex, c.varIndex);
    b[L.colFlags] = c.flags;
    putLe16(b + L.colFixedOffset, c.fixedOffset);
    putLe16(b + L.colLength, c.length);
    if (f.isJet3()) {
        putLe16(b + L.colCollation, c.collation);
        putLe16(b + L.colCodePage, c.codePage);
        return;
    }
    b[L.colExtraFlags] = c.extraFlags;
    if (c.typeCode == uint8_t(ColumnType::Numeric)) {
        b[L.colPrecision] = c.precision;
        b[L.colScale] = c.scale;
    } else {
        putLe16(b + L.colCollation, c.collation);
        b[L.colCollation + jet4CollationPad + 1] = c.collationVersion;
    }
}

void writePhysicalIndex(uint8_t* b, const Format& f, const TableDefLayout& L, const PhysicalIndex& x) {
    const bool fresh = x.raw.empty();
    if (fresh && !f.isJet3()) putLe32(b, jet4IndexMagic);
    for (size_t k = 0; k < indexColumnSlots; ++k) {
        uint8_t* slot = b + L.pixColumns + 3 * k;
        if (k < x.columns.size()) {
            const IndexColumn& c = x.columns[k];
            // Access leaves other non-zero bytes for "ascending"; they mean the same.
            if (fresh || le16(slot) != c.columnNumber || (slot[2] != 0) != c.ascending) {
                putLe16(slot, c.columnNumber);
                slot[2] = c.ascending ? 1 : 0;
            }
        } else if (fresh || le16(slot) != unusedSlot) {
            putLe16(slot, unusedSlot);
            slot[2] = 0;
        }
    }
    putLe32(b + L.pixOwnedMap, x.ownedMap);
    putLe32(b + L.pixRootPage, x.rootPage);
    b[L.pixFlags] = x.flags;
}

void writeLogicalIndex(uint8_t* b, const Format& f, const TableDefLayout& L, const LogicalIndex& x) {
    if (x.raw.empty() && !f.isJet3()) putLe32(b, jet4Magic);
    putLe32(b + L.lixNumber, uint32_t(x.number));
    putLe32(b + L.lixPhysical, x.physicalIndex);
    b[L.lixRelatedType] = x.relatedType;
    putLe32(b + L.lixRelatedIndex, uint32_t(x.relatedIndex));
    putLe32(b + L.lixRelatedTable, x.relatedTable);
    b[L.lixCascadeUpdate] = x.cascadeUpdate;
    b[L.lixCascadeDelete] = x.cascadeDelete;
    b[L.lixKind] = x.kind;
}

}  // namespace

std::vector<uint8_t> serializeTableDef(const Format& f, const CodePage& cp, const TableDef& d) {
    const TableDefLayout& L = TableDefLayout::of(f.version);
    StreamWriter w;

    const bool fresh = d.stream().size() < f.tdefHeaderSize;
    std::vector<uint8_t> header = fresh ? std::vector<uint8_t>()
                                        : std::vector<uint8_t>(d.stream().begin(), d.stream().begin() + f.tdefHeaderSize);
    writeHeader(w.appendPart(header, f.tdefHeaderSize), f, L, d, fresh);

    for (const PhysicalIndex& x : d.physicalIndexes())
        putLe32(w.appendPart(x.countBlock, f.indexCountBlockSize) + 4, x.distinctKeys);

    // Descriptors go back in the order the file had them; new ones follow.
    std::vector<const Column*> columns;
    for (const Column& c : d.columns()) columns.push_back(&c);
    std::stable_sort(columns.begin(), columns.end(),
                     [](const Column* a, const Column* b) { return a->descriptorIndex < b->descriptorIndex; });
    for (const Column* c : columns) writeColumn(w.appendPart(c->raw, f.columnDescriptorSize), f, L, *c);
    for (const Column* c : columns) appendName(w, f, cp, c->name);

    for (const PhysicalIndex& x : d.physicalIndexes())
        writePhysicalIndex(w.appendPart(x.raw, f.physicalIndexSize), f, L, x);
    for (const LogicalIndex& x : d.logicalIndexes()) writeLogicalIndex(w.appendPart(x.raw, f.logicalIndexSize), f, L, x);
    for (const LogicalIndex& x : d.logicalIndexes()) appendName(w, f, cp, x.name);

    for (const LongValueMaps& m : d.longValueMaps()) {
        uint8_t e[10];
        putLe16(e, m.columnNumber);
        putLe32(e + 2, m.ownedMap);
        putLe32(e + 6, m.freeMap);
        w.append(e);
    }
    uint8_t end[2];
    putLe16(end, endMarker);
    w.append(end);

    std::vector<uint8_t>& out = w.bytes();
    putLe32(out.data() + L.length, uint32_t(out.size()));
    return std::move(out);
}

uint32_t tableDefPageCount(const Format& f, size_t streamLength) {
    if (streamLength <= f.pageSize) return 1;
    const size_t perContinuation = f.pageSize - 8;
    return uint32_t(1 + (streamLength - f.pageSize + perContinuation - 1) / perContinuation);
}

std::vector<std::vector<uint8_t>> tableDefPageImages(const Format& f, std::span<const uint8_t> stream,
                                                     std::span<const uint32_t> pages) {
    if (pages.size() != tableDefPageCount(f, stream.size()))
        throw std::logic_error("a table definition is laid out over the wrong number of pages");
    std::vector<std::vector<uint8_t>> images;
    size_t pos = 0;
    for (size_t i = 0; i < pages.size(); ++i) {
        std::vector<uint8_t> page(f.pageSize, 0);
        const size_t start = i == 0 ? 0 : 8;
        const size_t n = std::min(stream.size() - pos, size_t(f.pageSize) - start);
        std::copy_n(stream.begin() + pos, n, page.begin() + start);
        pos += n;
        page[0] = page_type::TableDef;
        page[1] = 0x01;
        if (f.isJet3()) {
            page[2] = 'V';
            page[3] = 'C';
        } else {
            // The first page counts its header into the definition's length, a continuation
            // page counts it on its own.
            const int64_t used = i == 0 ? int64_t(stream.size()) : int64_t(n) + 8;
            putLe16(page.data() + 2, uint16_t(std::max<int64_t>(0, int64_t(f.pageSize) - 8 - used)));
        }
        putLe32(page.data() + 4, i + 1 < pages.size() ? pages[i + 1] : 0);
        images.push_back(std::move(page));
    }
    return images;
}

}  // namespace jet
