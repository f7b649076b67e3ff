#pragma once
// The pages of one physical index inside a write transaction: journaled page writes, new
// pages allocated at the end of the file and added to the index's owned map, pages the tree
// gives up taken out of it (their global-map bit stays "in use": nothing guesses whether a
// page is still referenced).

#include "format/PageAllocator.h"
#include "format/UsageMapWriter.h"
#include "index/IndexPageStore.h"
#include "pager/Pager.h"

namespace jet {

class TableIndexPages final : public IndexPageStore {
public:
    TableIndexPages(Pager& pager, const Format& format, uint32_t ownedMap, PageAllocator& allocator)
        : pager_(pager), owned_(pager, format, ownedMap, allocator), allocator_(allocator) {}

    const uint8_t* readPage(uint32_t n) override { return pager_.read(n); }
    uint32_t pageCount() const override { return pager_.pageCount(); }
    uint8_t* writePage(uint32_t n) override { return pager_.writable(n); }
    uint32_t allocatePage() override {
        const uint32_t page = allocator_.allocate();
        owned_.add(page);
        return page;
    }
    void freePage(uint32_t n) override { owned_.remove(n); }

private:
    Pager& pager_;
    UsageMapWriter owned_;
    PageAllocator& allocator_;
};

}  // namespace jet
