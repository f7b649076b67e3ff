#include "index/IndexPageCache.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/CorruptError.h"

namespace jet {

IndexPage& IndexPageCache::page(uint32_t n) {
    auto it = pages_.find(n);
    if (it != pages_.end()) return it->second;
    if (n == 0 || n >= store_.pageCount()) throw CorruptError("an index refers to page " + std::to_string(n));
    return pages_.emplace(n, decodeIndexPage(format_, store_.readPage(n))).first->second;
}

uint32_t IndexPageCache::allocate() {
    const uint32_t n = store_.allocatePage();
    pages_[n] = IndexPage{};
    changed_.insert(n);
    return n;
}

void IndexPageCache::release(uint32_t n) {
    store_.freePage(n);
    pages_.erase(n);
    changed_.erase(n);
}

void IndexPageCache::flush() {
    // In page order, so that the pages reach the pager (and its journal) in file order.
    std::vector<uint32_t> pages(changed_.begin(), changed_.end());
    std::sort(pages.begin(), pages.end());
    for (uint32_t n : pages) {
        encodeIndexPage(format_, pages_.at(n), store_.writePage(n));
        changed_.erase(n);
    }
}

void IndexPageCache::clear() {
    pages_.clear();
    changed_.clear();
}

}  // namespace jet
