#include "jet/Checker.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "base/Bytes.h"
#include "base/Utf.h"
#include "check/IndexCheck.h"
#include "format/UsageMap.h"
#include "table/Database.h"
#include "table/LongValue.h"
#include "table/Table.h"
#include "table/ValueReader.h"

namespace jet {

namespace {

constexpr uint32_t globalMapPointer = (1u << 8) | 0;
constexpr uint32_t usageMapOwner = 0;
constexpr uint32_t globalMapOwner = 1;

std::string pageName(uint32_t p) { return "page " + std::to_string(p); }

// State of one walk over a file: who claimed which page, which pages were checked.
class Walk {
public:
    Walk(const Database& db, CheckReport& report) : db_(db), r_(report) {}

    void run();

private:
    // A page may belong to one structure only; map rows share their pages, so a claim
    // with the same name twice is fine.
    void claim(uint32_t page, const std::string& owner);
    void checkDataPage(uint32_t page, const std::string& where);
    std::optional<UsageMap> readMap(uint32_t pointer, const std::string& where, const std::string& what);
    void checkCatalogue();
    void checkTable(const CatalogEntry& entry);
    void checkDefinition(const TableDef& def, const std::string& where);
    void checkOwnedPages(const TableDef& def, const UsageMap& owned, const std::string& where);
    void checkRows(const Table& table, const std::string& where);
    void checkGlobalMap();

    const Database& db_;
    CheckReport& r_;
    std::map<uint32_t, std::string> claims_;
    std::set<uint32_t> dataPagesChecked_;
    std::map<uint32_t, std::vector<uint32_t>> dataPagesByOwner_;
};

void Walk::claim(uint32_t page, const std::string& owner) {
    auto [it, fresh] = claims_.emplace(page, owner);
    if (!fresh && it->second != owner)
        r_.add(pageName(page), "belongs to both " + it->second + " and " + owner);
}

void Walk::checkDataPage(uint32_t p, const std::string& where) {
    if (!dataPagesChecked_.insert(p).second) return;
    ++r_.pagesChecked;
    const Format& f = db_.format();
    DataPage page(f, db_.pager().read(p));
    uint16_t n = le16(page.bytes() + f.dataRowCountOffset);
    if (n > 255) r_.add(pageName(p), where + ": " + std::to_string(n) + " row slots, more than 255");
    try {
        n = page.slotCount();
    } catch (const CorruptError& e) {
        r_.add(pageName(p), e.description());
        return;
    }
    for (unsigned k = 0; k < n; ++k) {
        if (k > 0 && page.slotOffset(k) > page.slotOffset(k - 1))
            r_.add(pageName(p), "row " + std::to_string(k) + " starts above row " + std::to_string(k - 1));
        try {
            page.row(k);
        } catch (const CorruptError& e) {
            r_.add(pageName(p), e.description());
        }
    }
    int32_t expected = page.computedFreeSpace();
    if (expected != page.freeSpace())
        r_.add(pageName(p), "records " + std::to_string(page.freeSpace()) + " free bytes, but " +
                                std::to_string(expected) + " are free");
}

std::optional<UsageMap> Walk::readMap(uint32_t pointer, const std::string& where, const std::string& what) {
    try {
        UsageMap map = UsageMap::read(db_.pager(), db_.format(), pointer);
        uint32_t rowPage = map.location().page;
        DataPage page(db_.format(), db_.pager().read(rowPage));
        uint32_t expectedOwner = rowPage == 1 ? globalMapOwner : usageMapOwner;
        if (page.owner() != expectedOwner)
            r_.add(where, what + " lies on " + pageName(rowPage) + ", which belongs to another structure");
        claim(rowPage, rowPage == 1 ? "the global usage map" : "usage-map rows");
        checkDataPage(rowPage, "usage-map rows");
        if (map.kind() == UsageMap::Kind::Inline && map.startPage() % 8 != 0)
            r_.add(where, what + " starts at page " + std::to_string(map.startPage()) + ", not a multiple of 8");
        for (uint32_t mp : map.mapPages())
            if (mp) claim(mp, what + " of " + where);
        return map;
    } catch (const RuntimeError& e) {
        r_.add(where, what + ": " + e.description());
        return std::nullopt;
    }
}

void Walk::checkDefinition(const TableDef& def, const std::string& where) {
    if (def.declaredLength() != def.parsedLength())
        r_.add(where, "definition length field says " + std::to_string(def.declaredLength()) + " bytes, the definition has " +
                          std::to_string(def.parsedLength()));
    if (!def.hasEndMarker()) r_.add(where, "definition lacks its final 0xFFFF");
    std::set<uint16_t> numbers, varIndexes;
    std::set<std::string> names;
    for (const Column& c : def.columns()) {
        if (!numbers.insert(c.number).second) r_.add(where, "column number " + std::to_string(c.number) + " is used twice");
        if (c.number >= def.maxColumns())
            r_.add(where, "column '" + c.name + "' has number " + std::to_string(c.number) + ", not below the column count " +
                              std::to_string(def.maxColumns()));
        if (!c.isFixed() && c.type() != ColumnType::Bool) {
            if (!varIndexes.insert(c.varIndex).second)
                r_.add(where, "variable slot " + std::to_string(c.varIndex) + " is used twice");
            if (c.varIndex >= def.varColumns())
                r_.add(where, "column '" + c.name + "' uses variable slot " + std::to_string(c.varIndex) + " of " +
                                  std::to_string(def.varColumns()));
        }
        for (const Column& o : def.columns())
            if (&o != &c && o.number < c.number && equalsIgnoreCase(o.name, c.name))
                r_.add(where, "column name '" + c.name + "' appears twice");
    }
    for (const PhysicalIndex& x : def.physicalIndexes())
        for (const IndexColumn& ic : x.columns)
            if (!def.columnByNumber(ic.columnNumber))
                r_.add(where, "index " + std::to_string(x.number) + " uses column number " + std::to_string(ic.columnNumber) +
                                  ", which does not exist");
    for (const LogicalIndex& x : def.logicalIndexes())
        if (x.physicalIndex >= def.physicalIndexes().size())
            r_.add(where, "index '" + x.name + "' refers to physical index " + std::to_string(x.physicalIndex) +
                              " of " + std::to_string(def.physicalIndexes().size()));
}

void Walk::checkOwnedPages(const TableDef& def, const UsageMap& owned, const std::string& where) {
    const uint32_t count = db_.pager().pageCount();
    for (uint32_t p : owned.pages()) {
        if (p >= count) {
            r_.add(where, "owns " + pageName(p) + ", beyond the end of the file");
            continue;
        }
        DataPage page(db_.format(), db_.pager().read(p));
        if (!page.isDataPage() || page.owner() != def.page()) {
            r_.add(where, "owns " + pageName(p) + ", which is not one of its data pages");
            continue;
        }
        claim(p, "data of " + where);
        checkDataPage(p, where);
    }
    for (uint32_t p : dataPagesByOwner_[def.page()]) {
        if (owned.contains(p)) continue;
        DataPage page(db_.format(), db_.pager().read(p));
        bool live = false;
        try {
            for (unsigned k = 0; k < page.slotCount(); ++k) live |= !page.isDeleted(k);
        } catch (const CorruptError&) {
            live = true;
        }
        if (live) r_.add(where, pageName(p) + " holds rows of the table but is not in its owned map");
    }
}

void Walk::checkRows(const Table& table, const std::string& where) {
    const TableDef& def = table.def();
    const Format& f = db_.format();
    std::vector<RowLocation> rows;
    try {
        rows = table.rowLocations();
    } catch (const RuntimeError& e) {
        r_.add(where, e.description());
        return;
    }
    std::map<uint16_t, std::optional<UsageMap>> lvalMaps;
    for (const auto& m : def.longValueMaps())
        if (m.ownedMap) lvalMaps[m.columnNumber] = readMap(m.ownedMap, where, "long-value map of column " + std::to_string(m.columnNumber));
    for (const auto& [column, map] : lvalMaps)
        if (map)
            for (uint32_t p : map->pages())
                if (p < db_.pager().pageCount()) claim(p, "long values of " + where);

    for (RowLocation loc : rows) {
        ++r_.rowsChecked;
        std::string at = where + " row " + std::to_string(loc.slot) + " of " + pageName(loc.page);
        try {
            DataPage page(f, db_.pager().read(loc.page));
            if (page.isOverflowHeader(loc.slot)) {
                auto header = page.row(loc.slot);
                if (header.size() >= 4) {
                    RowLocation t = RowLocation::fromPointer(le32(header.data()));
                    DataPage tp(f, db_.pager().read(t.page));
                    if (t.slot < tp.slotCount() && !tp.isOverflowTarget(t.slot))
                        r_.add(at, "points to a row that is not marked as moved");
                }
            }
            RowReader row = table.reader(loc);
            if (row.columnCount() > def.maxColumns())
                r_.add(at, "has " + std::to_string(row.columnCount()) + " columns, the table never had more than " +
                               std::to_string(def.maxColumns()));
            uint32_t bits = (row.columnCount() + 7u) / 8u * 8u;
            for (uint32_t b = row.columnCount(); b < bits; ++b)
                if (row.row()[row.row().size() - 1] >> (b % 8) & 1)
                    r_.add(at, "has null-mask bits set above its column count");
            for (uint16_t k = 0; k + 1u < row.varCount(); ++k)
                if (row.varOffset(k) > row.varOffset(uint16_t(k + 1)))
                    r_.add(at, "has variable offsets out of order");
            for (const Column& c : def.columns()) {
                ColumnBytes stored = row.column(c);
                if (c.isLongValue() && stored.present) {
                    std::vector<RowLocation> lval;
                    readLongValue(db_, stored.bytes, &lval);
                    auto m = lvalMaps.find(c.number);
                    for (RowLocation l : lval) {
                        checkDataPage(l.page, "long values of " + where);
                        if (m != lvalMaps.end() && m->second && !m->second->contains(l.page))
                            r_.add(at, "column '" + c.name + "' has data on " + pageName(l.page) +
                                           ", outside the column's long-value map");
                    }
                }
                readValue(db_, c, stored);
            }
        } catch (const RuntimeError& e) {
            r_.add(at, e.description());
        }
    }
    // Access itself leaves MSysACEs and MSysQueries miscounted now and then (the data
    // pages are right), so only tables of the user are held to their count.
    if (!def.isSystemTable() && rows.size() != def.rowCount())
        r_.add(where, "the definition counts " + std::to_string(def.rowCount()) + " rows, the data pages hold " +
                          std::to_string(rows.size()));
}

void Walk::checkTable(const CatalogEntry& e) {
    const std::string where = "table '" + e.name + "'";
    ++r_.tablesChecked;
    if (e.tdefPage() == 0 || e.tdefPage() >= db_.pager().pageCount()) {
        r_.add(where, "its catalogue Id " + std::to_string(e.id) + " names no page of the file");
        return;
    }
    std::shared_ptr<const TableDef> def;
    try {
        def = db_.tableDef(e.tdefPage());
    } catch (const RuntimeError& ex) {
        r_.add(where, ex.description());
        return;
    }
    for (uint32_t p : def->pages()) claim(p, "the definition of " + where);
    checkDefinition(*def, where);
    auto owned = readMap(def->ownedMap(), where, "owned-pages map");
    auto free = readMap(def->freeMap(), where, "free-space map");
    if (owned) {
        checkOwnedPages(*def, *owned, where);
        if (free)
            for (uint32_t p : free->pages())
                if (!owned->contains(p)) r_.add(where, "free-space map lists " + pageName(p) + ", which the table does not own");
    }
    for (const auto& m : def->longValueMaps())
        if (m.freeMap) readMap(m.freeMap, where, "long-value free-space map of column " + std::to_string(m.columnNumber));
    for (const PhysicalIndex& x : def->physicalIndexes()) {
        std::string what = "index " + std::to_string(x.number);
        if (x.rootPage == 0 || x.rootPage >= db_.pager().pageCount())
            r_.add(where, what + " has its root on " + pageName(x.rootPage) + ", outside the file");
        if (auto map = readMap(x.ownedMap, where, what + " map"))
            for (uint32_t p : map->pages()) {
                if (p >= db_.pager().pageCount()) r_.add(where, what + " owns " + pageName(p) + ", beyond the end of the file");
                else claim(p, what + " of " + where);
            }
    }
    Table table(db_, def, e.name);
    checkRows(table, where);
    for (const std::string& problem : checkTableIndexes(table).problems) r_.add(where, problem);
}

void Walk::checkCatalogue() {
    std::map<int32_t, std::vector<const CatalogEntry*>> byParent;
    for (const auto& e : db_.catalog().entries()) byParent[e.parentId].push_back(&e);
    for (auto& [parent, entries] : byParent) {
        std::sort(entries.begin(), entries.end(),
                  [](auto* a, auto* b) { return compareIgnoreCase(a->name, b->name) < 0; });
        for (size_t i = 1; i < entries.size(); ++i)
            if (equalsIgnoreCase(entries[i - 1]->name, entries[i]->name))
                r_.add("catalogue", "the name '" + entries[i]->name + "' is used twice in one container");
    }
    std::set<uint32_t> tdefs;
    for (const auto& e : db_.catalog().entries()) {
        if (!e.isTable()) continue;
        if (!tdefs.insert(e.tdefPage()).second)
            r_.add("catalogue", "two tables share the definition on " + pageName(e.tdefPage()));
        checkTable(e);
    }
}

void Walk::checkGlobalMap() {
    auto global = readMap(globalMapPointer, "the global usage map", "row 0 of page 1");
    if (!global) return;
    for (const auto& [page, owner] : claims_)
        if (global->contains(page)) r_.add(pageName(page), "belongs to " + owner + " but is marked free");
}

void Walk::run() {
    const uint32_t count = db_.pager().pageCount();
    claim(0, "the file header");
    claim(1, "the global usage map");
    for (uint32_t p = 2; p < count; ++p) {
        DataPage page(db_.format(), db_.pager().read(p));
        if (page.isDataPage() && page.owner() != usageMapOwner && page.owner() != LvalOwner)
            dataPagesByOwner_[page.owner()].push_back(p);
    }
    checkCatalogue();
    checkGlobalMap();
}

}  // namespace

CheckReport check(const Database& db) {
    CheckReport report;
    Walk(db, report).run();
    return report;
}

CheckReport check(const std::string& path) {
    try {
        auto db = Database::open(path);
        return check(*db);
    } catch (const RuntimeError& e) {
        CheckReport report;
        report.add(path, e.description());
        return report;
    }
}

}  // namespace jet
