#include "format/TableDef.h"

#include <algorithm>
#include <set>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "format/CodePage.h"
#include "format/TextCodec.h"
#include "pager/Pager.h"

namespace jet {

namespace {

// Reads the definition stream front to back; running past its end is a CorruptError.
class StreamReader {
public:
    explicit StreamReader(const std::vector<uint8_t>& s) : s_(s) {}
    size_t pos() const { return pos_; }
    bool atEnd(size_t n = 1) const { return pos_ + n > s_.size(); }
    const uint8_t* take(size_t n, const char* what) {
        if (pos_ + n > s_.size()) throw CorruptError(std::string("a table definition ends inside ") + what);
        const uint8_t* p = s_.data() + pos_;
        pos_ += n;
        return p;
    }

private:
    const std::vector<uint8_t>& s_;
    size_t pos_ = 0;
};

std::string readName(StreamReader& r, const Format& f, const CodePage& cp) {
    if (f.isJet3()) {
        uint8_t n = *r.take(1, "a name");
        return cp.toUtf8({r.take(n, "a name"), n});
    }
    uint16_t n = le16(r.take(2, "a name"));
    return decodeText(Version::Jet4, cp, {r.take(n, "a name"), n});
}

uint32_t fieldAt(const uint8_t* base, uint32_t offset, int size) {
    if (offset == UINT32_MAX) return 0;
    switch (size) {
    case 1: return base[offset];
    case 2: return le16(base + offset);
    default: return le32(base + offset);
    }
}

}  // namespace

uint32_t fixedSizeOf(uint8_t typeCode) {
    switch (ColumnType(typeCode)) {
    case ColumnType::Bool: return 0;
    case ColumnType::Byte: return 1;
    case ColumnType::Int: return 2;
    case ColumnType::Long: return 4;
    case ColumnType::Money: return 8;
    case ColumnType::Float: return 4;
    case ColumnType::Double: return 8;
    case ColumnType::DateTime: return 8;
    case ColumnType::Guid: return 16;
    case ColumnType::Numeric: return 17;
    default: return 0;
    }
}

TableDef TableDef::read(Pager& pager, const Format& f, const CodePage& cp, uint32_t page) {
    std::vector<uint8_t> stream;
    std::vector<uint32_t> pages;
    std::set<uint32_t> seen;
    for (uint32_t p = page; p != 0;) {
        if (!seen.insert(p).second) throw CorruptError("the definition of table page " + std::to_string(page) + " loops");
        const uint8_t* b = pager.read(p);
        if (b[0] != page_type::TableDef)
            throw CorruptError("page " + std::to_string(p) + " should hold a table definition but has type " +
                               std::to_string(b[0]));
        pages.push_back(p);
        if (p == page) stream.insert(stream.end(), b, b + f.pageSize);
        else stream.insert(stream.end(), b + 8, b + f.pageSize);
        p = le32(b + 4);
    }
    TableDef def = parse(f, cp, std::move(stream));
    def.pages_ = std::move(pages);
    return def;
}

TableDef TableDef::parse(const Format& f, const CodePage& cp, std::vector<uint8_t> stream) {
    const TableDefLayout& L = TableDefLayout::of(f.version);
    TableDef d;
    d.version_ = f.version;
    d.stream_ = std::move(stream);
    StreamReader r(d.stream_);
    const uint8_t* h = r.take(f.tdefHeaderSize, "its header");
    d.declaredLength_ = le32(h + L.length);
    d.rowCount_ = le32(h + L.rowCount);
    d.autoNumber_ = le32(h + L.autoNumber);
    d.tableType_ = h[L.tableType];
    d.maxColumns_ = le16(h + L.maxColumns);
    d.varColumns_ = le16(h + L.varColumns);
    uint16_t columnCount = le16(h + L.columnCount);
    uint32_t logicalCount = le32(h + L.logicalIndexCount);
    uint32_t physicalCount = le32(h + L.physicalIndexCount);
    d.ownedMap_ = le32(h + L.ownedMap);
    d.freeMap_ = le32(h + L.freeMap);

    // Each announced structure takes at least its fixed size, so counts the stream cannot
    // hold are refused before anything is reserved for them.
    size_t room = d.stream_.size() - r.pos();
    if (uint64_t(physicalCount) * (f.indexCountBlockSize + f.physicalIndexSize) > room ||
        uint64_t(logicalCount) * f.logicalIndexSize > room || uint64_t(columnCount) * f.columnDescriptorSize > room)
        throw CorruptError("a table definition announces more columns or indexes than it holds");

    d.physical_.resize(physicalCount);
    for (uint32_t i = 0; i < physicalCount; ++i) {
        const uint8_t* b = r.take(f.indexCountBlockSize, "an index count block");
        d.physical_[i].number = i;
        d.physical_[i].countBlock.assign(b, b + f.indexCountBlockSize);
        d.physical_[i].distinctKeys = le32(b + 4);
    }

    d.columns_.resize(columnCount);
    for (uint16_t i = 0; i < columnCount; ++i) {
        const uint8_t* b = r.take(f.columnDescriptorSize, "a column descriptor");
        Column& c = d.columns_[i];
        c.raw.assign(b, b + f.columnDescriptorSize);
        c.descriptorIndex = i;
        c.typeCode = b[L.colType];
        c.number = le16(b + L.colNumber);
        c.varIndex = le16(b + L.colVarIndex);
        c.collation = le16(b + L.colCollation);
        c.flags = b[L.colFlags];
        c.fixedOffset = le16(b + L.colFixedOffset);
        c.length = le16(b + L.colLength);
        if (f.isJet3()) {
            c.codePage = uint16_t(fieldAt(b, L.colCodePage, 2));
        } else {
            c.extraFlags = b[L.colExtraFlags];
            if (c.typeCode == uint8_t(ColumnType::Numeric)) {
                c.precision = b[L.colPrecision];
                c.scale = b[L.colScale];
                c.collation = 0;
            } else {
                c.collationVersion = b[L.colCollation + 3];
            }
        }
    }
    for (auto& c : d.columns_) c.name = readName(r, f, cp);

    for (uint32_t i = 0; i < physicalCount; ++i) {
        const uint8_t* b = r.take(f.physicalIndexSize, "an index descriptor");
        PhysicalIndex& x = d.physical_[i];
        x.raw.assign(b, b + f.physicalIndexSize);
        for (int k = 0; k < 10; ++k) {
            uint16_t col = le16(b + L.pixColumns + 3 * k);
            if (col == 0xFFFF) continue;
            x.columns.push_back({col, b[L.pixColumns + 3 * k + 2] != 0});
        }
        x.ownedMap = le32(b + L.pixOwnedMap);
        x.rootPage = le32(b + L.pixRootPage);
        x.flags = b[L.pixFlags];
    }

    d.logical_.resize(logicalCount);
    for (uint32_t i = 0; i < logicalCount; ++i) {
        const uint8_t* b = r.take(f.logicalIndexSize, "a logical index descriptor");
        LogicalIndex& x = d.logical_[i];
        x.raw.assign(b, b + f.logicalIndexSize);
        x.number = lei32(b + L.lixNumber);
        x.physicalIndex = le32(b + L.lixPhysical);
        x.relatedType = b[L.lixRelatedType];
        x.relatedIndex = lei32(b + L.lixRelatedIndex);
        x.relatedTable = le32(b + L.lixRelatedTable);
        x.cascadeUpdate = b[L.lixCascadeUpdate];
        x.cascadeDelete = b[L.lixCascadeDelete];
        x.kind = b[L.lixKind];
    }
    for (auto& x : d.logical_) x.name = readName(r, f, cp);

    while (!r.atEnd(2)) {
        uint16_t col = le16(r.take(2, "the long-value map list"));
        if (col == 0xFFFF) {
            d.hasEndMarker_ = true;
            break;
        }
        const uint8_t* b = r.take(8, "the long-value map list");
        d.longValueMaps_.push_back({col, le32(b), le32(b + 4)});
    }
    d.parsedLength_ = uint32_t(r.pos());

    std::sort(d.columns_.begin(), d.columns_.end(),
              [](const Column& a, const Column& b) { return a.number < b.number; });
    return d;
}

const Column* TableDef::findColumn(std::string_view name) const {
    for (const auto& c : columns_)
        if (equalsIgnoreCase(c.name, name)) return &c;
    return nullptr;
}

const Column* TableDef::columnByNumber(uint16_t number) const {
    auto it = std::lower_bound(columns_.begin(), columns_.end(), number,
                               [](const Column& c, uint16_t n) { return c.number < n; });
    return it != columns_.end() && it->number == number ? &*it : nullptr;
}

const LongValueMaps* TableDef::longValueMapsOf(uint16_t columnNumber) const {
    for (const auto& m : longValueMaps_)
        if (m.columnNumber == columnNumber) return &m;
    return nullptr;
}

bool TableDef::columnIsIndexed(uint16_t columnNumber) const {
    for (const auto& x : physical_)
        for (const auto& c : x.columns)
            if (c.columnNumber == columnNumber) return true;
    return false;
}

TableDef TableDef::blank(Version version, uint8_t tableType) {
    TableDef d;
    d.version_ = version;
    d.tableType_ = tableType;
    d.hasEndMarker_ = true;
    return d;
}

void TableDef::addColumn(Column column) {
    uint16_t next = 0;
    for (const auto& c : columns_) next = std::max<uint16_t>(next, uint16_t(c.descriptorIndex + 1));
    column.descriptorIndex = next;
    auto at = std::upper_bound(columns_.begin(), columns_.end(), column.number,
                               [](uint16_t n, const Column& c) { return n < c.number; });
    columns_.insert(at, std::move(column));
}

void TableDef::removeColumn(uint16_t number) {
    std::erase_if(columns_, [&](const Column& c) { return c.number == number; });
}

void TableDef::renameColumn(uint16_t number, std::string name) {
    for (auto& c : columns_)
        if (c.number == number) c.name = std::move(name);
}

void TableDef::addPhysicalIndex(PhysicalIndex index) {
    index.number = uint32_t(physical_.size());
    physical_.push_back(std::move(index));
}

void TableDef::addLogicalIndex(LogicalIndex index) { logical_.push_back(std::move(index)); }

void TableDef::removeLongValueMaps(uint16_t columnNumber) {
    std::erase_if(longValueMaps_, [&](const LongValueMaps& m) { return m.columnNumber == columnNumber; });
}

}  // namespace jet
