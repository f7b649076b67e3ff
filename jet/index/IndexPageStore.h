#pragma once
// The pages an index tree lives on. The tree code sees nothing of the file but this, so it
// can be tested on pages in memory, and the writer plugs in its transaction: journaled
// page writes, and page allocation that keeps the index's owned map and the global map
// right.

#include <cstdint>

namespace jet {

class IndexPageReader {
public:
    virtual ~IndexPageReader() = default;
    // Page n; throws CorruptError when it is not in the file.
    virtual const uint8_t* readPage(uint32_t n) = 0;
    // Pages in the file: a bound for walks over links, so a damaged chain cannot loop forever.
    virtual uint32_t pageCount() const = 0;
};

class IndexPageStore : public IndexPageReader {
public:
    // Page n, to be changed in place; the returned buffer holds its current contents.
    virtual uint8_t* writePage(uint32_t n) = 0;
    // A page for this index that no other structure uses (its contents are overwritten):
    // in the index's owned map and marked used in the global map.
    virtual uint32_t allocatePage() = 0;
    // A page the index no longer uses: out of the index's owned map (the integrity checker
    // expects the map to list the tree's pages only); the global map may mark it free.
    virtual void freePage(uint32_t n) = 0;
};

}  // namespace jet
