#pragma once
// The decoded pages of one index tree while it is being changed. A page is decoded once,
// changed in its decoded form as often as the tree needs, and encoded back into its store
// by flush(): a transaction that adds a million entries decodes and encodes each page it
// touches once, not once per entry.
//
// Rules kept:
//  - While pages are held here, the store's bytes of a changed page are stale: whoever
//    reads the tree in the meantime reads it through this cache, and flush() runs before
//    anything else reads the store (the transaction's commit).
//  - A page the tree gives up leaves the cache and is never written back.

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

#include "format/Format.h"
#include "format/IndexPage.h"
#include "index/IndexPageStore.h"

namespace jet {

class IndexPageCache {
public:
    IndexPageCache(const Format& format, IndexPageStore& store) : format_(format), store_(store) {}

    const Format& format() const { return format_; }
    uint32_t pageCount() const { return store_.pageCount(); }
    // Page n decoded; the reference stays valid until the page is released or the cache
    // cleared. Throws CorruptError when n lies outside the file or holds no index page.
    IndexPage& page(uint32_t n);
    // Page n was changed and is to be written back.
    void changed(uint32_t n) { changed_.insert(n); }
    // A new page for the tree (in the index's map, see IndexPageStore), empty and changed.
    uint32_t allocate();
    // A page the tree no longer uses.
    void release(uint32_t n);
    // Encodes every changed page into the store.
    void flush();
    // Forgets every decoded page (changes not flushed are lost).
    void clear();

private:
    const Format& format_;
    IndexPageStore& store_;
    std::unordered_map<uint32_t, IndexPage> pages_;
    std::unordered_set<uint32_t> changed_;
};

}  // namespace jet
