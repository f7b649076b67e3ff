#include "format/PageFiller.h"

#include "format/DataPageWriter.h"
#include "format/PageAllocator.h"
#include "format/UsageMap.h"
#include "pager/Pager.h"

namespace jet {

PageFiller::PageFiller(Pager& pager, const Format& format, uint32_t owner, uint32_t ownedMap, uint32_t freeMap,
                       PageAllocator& allocator, bool afterDeletedRows)
    : pager_(pager), f_(format), owner_(owner), owned_(pager, format, ownedMap, allocator), allocator_(allocator),
      afterDeletedRows_(afterDeletedRows) {
    if (freeMap != 0) free_.emplace(pager, format, freeMap, allocator);
    freeMapPointer_ = freeMap;
}

bool PageFiller::fits(uint32_t page, uint32_t length) const {
    if (page >= pager_.pageCount()) return false;
    DataPage view(f_, pager_.read(page));
    if (!view.isDataPage() || view.owner() != owner_) return false;
    if (!afterDeletedRows_)
        for (unsigned k = 0; k < view.slotCount(); ++k)
            if (view.isDeleted(k)) return false;
    return DataPageWriter::canAppend(view, length);
}

uint32_t PageFiller::pageFor(uint32_t length, std::optional<uint32_t> avoid) {
    if (current_ != 0 && current_ != avoid && fits(current_, length)) return current_;
    if (free_) {
        UsageMap candidates = UsageMap::read(pager_, f_, freeMapPointer_);
        for (uint32_t page : candidates.pages()) {
            if (page == avoid) continue;
            if (fits(page, length)) return current_ = page;
            free_->remove(page);
        }
    }
    const uint32_t page = allocator_.allocate();
    DataPageWriter(f_, pager_.writable(page)).initialize(owner_);
    owned_.add(page);
    if (free_) free_->add(page);
    return current_ = page;
}

void PageFiller::released(uint32_t page) {
    DataPageWriter writer(f_, pager_.writable(page));
    if (!writer.holdsNothing()) return;
    writer.initialize(owner_);
    if (free_) free_->add(page);
}

}  // namespace jet
