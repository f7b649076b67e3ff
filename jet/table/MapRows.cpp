#include "table/MapRows.h"

#include <algorithm>
#include <stdexcept>

#include "format/DataPageWriter.h"
#include "format/UsageMap.h"
#include "table/Database.h"
#include "table/Transaction.h"

namespace jet {

namespace {

constexpr uint32_t usageMapOwner = 0;
constexpr uint32_t globalMapPage = 1;
constexpr uint32_t inlineHeader = 5;  // type byte and start page
// How many recently made tables' map pages are tried before a new page is taken.
constexpr size_t recentTables = 3;

}  // namespace

bool MapRows::place(uint32_t page, const std::vector<uint8_t>& row, uint8_t& slot) {
    Pager& pager = t_.database().pager();
    const Format& f = t_.database().format();
    if (page <= globalMapPage || page >= pager.pageCount()) return false;
    DataPage view(f, pager.read(page));
    if (!view.isDataPage() || view.owner() != usageMapOwner) return false;
    for (unsigned k = 0; k < view.slotCount(); ++k) {
        if (view.slotFlags(k) != 0 || !view.row(k).empty()) continue;
        DataPageWriter writer(f, pager.writable(page));
        if (!writer.replace(k, row, 0)) return false;
        slot = uint8_t(k);
        return true;
    }
    if (!DataPageWriter::canAppend(view, uint32_t(row.size()))) return false;
    slot = DataPageWriter(f, pager.writable(page)).append(row);
    return true;
}

// Usage-map pages are listed nowhere; the ones in use are found through the maps of the
// catalogue and of the tables made last, whose pages most likely still have room.
std::vector<uint32_t> MapRows::candidatePages() {
    Database& db = t_.database();
    std::vector<uint32_t> pages;
    if (lastPage_) pages.push_back(lastPage_);
    std::vector<uint32_t> tables;
    for (const CatalogEntry& e : db.catalog().entries())
        if (e.isTable()) tables.push_back(e.tdefPage());
    std::sort(tables.begin(), tables.end(), std::greater<>());
    tables.resize(std::min(tables.size(), recentTables));
    tables.push_back(2);
    for (uint32_t page : tables) {
        try {
            auto def = db.tableDef(page);
            pages.push_back(RowLocation::fromPointer(def->ownedMap()).page);
        } catch (const RuntimeError&) {
            // A damaged definition offers no page; another one will.
        }
    }
    return pages;
}

uint32_t MapRows::create() {
    Database& db = t_.database();
    const Format& f = db.format();
    const std::vector<uint8_t> row(inlineHeader + f.inlineMapBytes, 0);
    uint8_t slot = 0;
    for (uint32_t candidate : candidatePages())
        if (place(candidate, row, slot)) return RowLocation{lastPage_ = candidate, slot}.pointer();
    const uint32_t page = t_.allocator().allocate();
    DataPageWriter(f, db.pager().writable(page)).initialize(usageMapOwner);
    if (!place(page, row, slot)) throw std::logic_error("a map row does not fit on an empty page");
    return RowLocation{lastPage_ = page, slot}.pointer();
}

MapRows::Contents MapRows::contents(uint32_t rowPointer) {
    Database& db = t_.database();
    UsageMap map = UsageMap::read(db.pager(), db.format(), rowPointer);
    Contents c;
    for (uint32_t page : map.pages())
        if (page < db.pager().pageCount()) c.pages.push_back(page);
    for (uint32_t page : map.mapPages())
        if (page != 0) c.mapPages.push_back(page);
    return c;
}

void MapRows::remove(uint32_t rowPointer) {
    Database& db = t_.database();
    const Format& f = db.format();
    const RowLocation at = RowLocation::fromPointer(rowPointer);
    if (at.page <= globalMapPage || at.page >= db.pager().pageCount()) return;
    DataPage view(f, db.pager().read(at.page));
    if (!view.isDataPage() || view.owner() != usageMapOwner || at.slot >= view.slotCount() || view.slotFlags(at.slot) != 0)
        return;
    DataPageWriter(f, db.pager().writable(at.page)).replace(at.slot, {}, 0);
    for (unsigned k = 0; k < view.slotCount(); ++k)
        if (view.slotFlags(k) != slot_flag::Deleted && !view.row(k).empty()) return;
    t_.allocator().release(at.page);
    if (lastPage_ == at.page) lastPage_ = 0;
}

}  // namespace jet
