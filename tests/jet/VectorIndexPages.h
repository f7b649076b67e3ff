#pragma once
// Index pages in a byte vector: a database file read into memory, or pages of the tree
// tests' own. It refuses what a real page store would make fatal (a page freed or never
// allocated, freeing twice) and hands freed pages out again first, so stale contents must
// not matter. In a real file, pages come from its end and enter the index's inline owned
// map, and freed ones leave it.

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "format/DataPage.h"
#include "index/IndexPageStore.h"
#include "index/IndexTreeWriter.h"

class VectorIndexPages : public jet::IndexPageStore {
public:
    // Pages of their own: page 0 stands for the header, page 1 for the table definition
    // (the owner), page 2 is the root of an empty tree.
    static constexpr uint32_t kOwner = 1, kRoot = 2;
    explicit VectorIndexPages(const jet::Format& f) : own_(3 * f.pageSize, 0), file_(own_), f_(f) {
        file_.reserve(file_.size() + 2000 * f.pageSize);
        jet::IndexTreeWriter::writeEmptyRoot(f, kOwner, writePage(kRoot));
    }
    // The pages of a file; `ownedMap` points to the index's map row.
    VectorIndexPages(std::vector<uint8_t>& file, const jet::Format& f, uint32_t ownedMap)
        : file_(file), f_(f), map_(jet::RowLocation::fromPointer(ownedMap)) {
        file_.reserve(file_.size() + 400 * f.pageSize);
    }

    const uint8_t* readPage(uint32_t n) override { return page(n); }
    uint8_t* writePage(uint32_t n) override { return page(n); }
    uint32_t pageCount() const override { return uint32_t(file_.size() / f_.pageSize); }
    uint32_t allocatePage() override {
        uint32_t n = pageCount();
        if (!free_.empty()) n = *free_.begin();
        else if (file_.size() + f_.pageSize > file_.capacity()) throw std::logic_error("the pages would move");  // views into them stay valid
        else file_.resize(file_.size() + f_.pageSize, 0xEE);
        free_.erase(n);
        setMapBit(n, true);
        return n;
    }
    void freePage(uint32_t n) override {
        if (n <= kRoot || !free_.insert(n).second) throw std::logic_error("page " + std::to_string(n) + " freed twice");
        setMapBit(n, false);
    }
    // Every page of the tree: all but the two fixed ones and the freed ones.
    std::set<uint32_t> treePages() const {
        std::set<uint32_t> s;
        for (uint32_t n = kRoot; n < pageCount(); ++n)
            if (!free_.count(n)) s.insert(n);
        return s;
    }

private:
    uint8_t* page(uint32_t n) {
        if (n >= pageCount() || free_.count(n)) throw std::logic_error("page " + std::to_string(n) + " is not allocated");
        return file_.data() + size_t(n) * f_.pageSize;
    }
    void setMapBit(uint32_t n, bool on) {
        if (map_.page == 0) return;
        jet::DataPage dp(f_, page(map_.page));
        uint8_t* map = page(map_.page) + dp.slotOffset(map_.slot);
        const uint32_t bit = n - jet::le32(map + 1);
        if (map[0] != 0 || n < jet::le32(map + 1) || bit / 8 >= dp.row(map_.slot).size() - 5)
            throw std::logic_error("the test only edits inline maps, within their window");
        map[5 + bit / 8] = uint8_t(on ? map[5 + bit / 8] | (1u << (bit % 8)) : map[5 + bit / 8] & ~(1u << (bit % 8)));
    }

    std::vector<uint8_t> own_;
    std::vector<uint8_t>& file_;
    const jet::Format& f_;
    jet::RowLocation map_{};
    std::set<uint32_t> free_;
};
