#pragma once
// Index pages read straight from the pager: what reading an index and checking it need.

#include "index/IndexPageStore.h"
#include "pager/Pager.h"

namespace jet {

class PagerIndexPages : public IndexPageReader {
public:
    explicit PagerIndexPages(Pager& pager) : pager_(pager) {}
    const uint8_t* readPage(uint32_t n) override { return pager_.read(n); }
    uint32_t pageCount() const override { return pager_.pageCount(); }

private:
    Pager& pager_;
};

}  // namespace jet
