#include "table/Table.h"

#include "format/UsageMap.h"
#include "table/Database.h"

namespace jet {

Table::Table(const Database& db, std::shared_ptr<const TableDef> def, std::string name)
    : db_(db), def_(std::move(def)), name_(std::move(name)) {}

const std::vector<RowLocation>& Table::rowLocations() const {
    if (scanned_) return rows_;
    Pager& pager = db_.pager();
    const Format& f = db_.format();
    UsageMap owned = UsageMap::read(pager, f, def_->ownedMap());
    std::vector<RowLocation> rows;
    for (uint32_t p : owned.pages()) {
        if (p >= pager.pageCount())
            throw CorruptError("table '" + name_ + "' has data on page " + std::to_string(p) +
                               ", beyond the end of the file");
        DataPage page(f, pager.read(p));
        if (!page.isDataPage() || page.owner() != def_->page()) continue;
        uint16_t n = page.slotCount();
        for (unsigned k = 0; k < n; ++k) {
            uint16_t flags = page.slotFlags(k);
            if (flags == slot_flag::Deleted || flags == slot_flag::Moved) continue;
            rows.push_back({p, uint8_t(k)});
        }
    }
    rows_ = std::move(rows);
    scanned_ = true;
    return rows_;
}

std::span<const uint8_t> Table::rowBytes(RowLocation location) const { return db_.rowBytes(location, def_->page()); }

RowReader Table::reader(RowLocation location) const { return RowReader(db_.format(), *def_, rowBytes(location)); }

}  // namespace jet
