#include "MapRows.h"

#include <algorithm>

#include "DataPageWriter.h"
#include "Database.h"
#include "Transaction.h"
#include "UsageMap.h"

namespace jet {

namespace {

constexpr uint32_t usageMapOwner = 0;
constexpr uint32_t globalMapPage = 1;
constexpr uint32_t inlineHeader = 5;  // type byte and start page
// How many recently made tables' map pages are tried before a new page is taken.
constexpr size_t recentTables = 3;

}  // namespace

bool MapRows::hasRoom(uint32_t page, uint32_t length) {
    Pager& pager = t_.database().pager();
    if (page <= globalMapPage || page >= pager.pageCount()) return false;
    DataPage view(t_.database().format(), pager.read(page));
    return view.isDataPage() && view.owner() == usageMapOwner && DataPageWriter::canAppend(view, length);
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
    std::vector<uint8_t> row(inlineHeader + f.inlineMapBytes, 0);
    uint32_t page = 0;
    for (uint32_t candidate : candidatePages())
        if (hasRoom(candidate, uint32_t(row.size()))) {
            page = candidate;
            break;
        }
    if (page == 0) {
        page = t_.allocator().allocate();
        DataPageWriter(f, db.pager().writable(page)).initialize(usageMapOwner);
    }
    lastPage_ = page;
    const uint8_t slot = DataPageWriter(f, db.pager().writable(page)).append(row);
    return RowLocation{page, slot}.pointer();
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
    if (!view.isDataPage() || view.owner() != usageMapOwner || at.slot >= view.slotCount() || view.isDeleted(at.slot))
        return;
    DataPageWriter writer(f, db.pager().writable(at.page));
    writer.setFlags(at.slot, slot_flag::Deleted);
    if (writer.allDeleted()) {
        t_.allocator().release(at.page);
        if (lastPage_ == at.page) lastPage_ = 0;
    }
}

}  // namespace jet
