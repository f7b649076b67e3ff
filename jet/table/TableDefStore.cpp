#include "table/TableDefStore.h"

#include <algorithm>

#include "format/TableDefSerializer.h"
#include "table/Database.h"
#include "table/Transaction.h"

namespace jet {

uint32_t storeTableDef(Transaction& t, const TableDef& def, uint32_t firstPage) {
    Database& db = t.database();
    const Format& f = db.format();
    const std::vector<uint8_t> stream = serializeTableDef(f, db.codePage(), def);

    std::vector<uint32_t> pages = def.pages();
    if (pages.empty()) pages.push_back(firstPage);
    const size_t needed = tableDefPageCount(f, stream.size());
    while (pages.size() < needed) pages.push_back(t.allocator().allocate());
    for (size_t i = needed; i < pages.size(); ++i) t.allocator().release(pages[i]);
    pages.resize(needed);

    const auto images = tableDefPageImages(f, stream, pages);
    for (size_t i = 0; i < pages.size(); ++i) std::copy(images[i].begin(), images[i].end(), db.pager().writable(pages[i]));
    t.schemaChanged(pages.front());
    return pages.front();
}

}  // namespace jet
