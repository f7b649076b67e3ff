#pragma once
// Index pages in memory for the tree tests. It refuses what a real page store would make
// fatal: reading or writing a page that was freed or never allocated, freeing twice.

#include <map>
#include <set>
#include <stdexcept>
#include <vector>

#include "jet/Format.h"
#include "jet/IndexPageStore.h"
#include "jet/IndexTreeWriter.h"

class IndexMemoryPages : public jet::IndexPageStore {
public:
    // Page 0 stands for the file header and page 1 for the table definition; the root is page 2.
    explicit IndexMemoryPages(const jet::Format& f) : format_(f) {
        pages_.resize(3, std::vector<uint8_t>(f.pageSize));
        live_ = {0, 1, 2};
        jet::IndexTreeWriter::writeEmptyRoot(f, kOwner, pages_[kRoot].data());
    }

    static constexpr uint32_t kOwner = 1;
    static constexpr uint32_t kRoot = 2;

    const uint8_t* readPage(uint32_t n) override { return checked(n).data(); }
    uint32_t pageCount() const override { return uint32_t(pages_.size()); }
    uint8_t* writePage(uint32_t n) override {
        ++writes_;
        return checked(n).data();
    }
    uint32_t allocatePage() override {
        // Reuse freed pages first, as the real allocator may: stale contents must not matter.
        if (!free_.empty()) {
            const uint32_t n = *free_.begin();
            free_.erase(free_.begin());
            live_.insert(n);
            return n;
        }
        pages_.emplace_back(format_.pageSize, uint8_t(0xEE));
        live_.insert(uint32_t(pages_.size() - 1));
        return uint32_t(pages_.size() - 1);
    }
    void freePage(uint32_t n) override {
        if (n <= kRoot || !live_.erase(n)) throw std::logic_error("freeing page " + std::to_string(n) + " twice");
        free_.insert(n);
    }

    // Pages the tree holds: everything allocated and not freed, the root included.
    std::set<uint32_t> treePages() const {
        std::set<uint32_t> s(live_);
        s.erase(0);
        s.erase(1);
        return s;
    }
    uint8_t* raw(uint32_t n) { return pages_.at(n).data(); }
    size_t writes() const { return writes_; }

private:
    std::vector<uint8_t>& checked(uint32_t n) {
        if (!live_.count(n)) throw std::logic_error("page " + std::to_string(n) + " is not allocated");
        return pages_[n];
    }

    const jet::Format& format_;
    std::vector<std::vector<uint8_t>> pages_;
    std::set<uint32_t> live_, free_;
    size_t writes_ = 0;
};
