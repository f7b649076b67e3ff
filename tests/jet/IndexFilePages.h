#pragma once
// Index pages inside a database file held in memory, for tests that change real indexes
// without the writer's transactions. New pages are appended and entered into the index's
// inline owned map; freed pages leave the map and are handed out again first.

#include <stdexcept>
#include <vector>

#include "jet/Bytes.h"
#include "jet/DataPage.h"
#include "jet/Format.h"
#include "jet/IndexPageStore.h"

class FileIndexPages : public jet::IndexPageStore {
public:
    FileIndexPages(std::vector<uint8_t>& file, const jet::Format& f, uint32_t mapPointer)
        : file_(file), f_(f), mapPage_(mapPointer >> 8), mapSlot_(mapPointer & 0xFF) {
        file_.reserve(file_.size() + 400 * f.pageSize);  // page pointers stay valid while appending
    }
    const uint8_t* readPage(uint32_t n) override { return page(n); }
    uint32_t pageCount() const override { return uint32_t(file_.size() / f_.pageSize); }
    uint8_t* writePage(uint32_t n) override { return page(n); }
    uint32_t allocatePage() override {
        uint32_t n;
        if (!reusable_.empty()) {
            n = reusable_.back();
            reusable_.pop_back();
        } else {
            if (file_.size() + f_.pageSize > file_.capacity()) throw std::logic_error("test file would move");
            n = pageCount();
            file_.resize(file_.size() + f_.pageSize);
        }
        setMapBit(n, true);
        return n;
    }
    void freePage(uint32_t n) override {
        setMapBit(n, false);
        reusable_.push_back(n);
    }

private:
    uint8_t* page(uint32_t n) {
        if (n >= pageCount()) throw std::out_of_range("page beyond the file");
        return file_.data() + size_t(n) * f_.pageSize;
    }
    void setMapBit(uint32_t n, bool on) {
        jet::DataPage dp(f_, page(mapPage_));
        auto row = dp.row(mapSlot_);
        uint8_t* map = page(mapPage_) + (row.data() - dp.bytes());
        if (map[0] != 0) throw std::logic_error("the test only edits inline maps");
        const uint32_t bit = n - jet::le32(map + 1);
        if (n < jet::le32(map + 1) || bit / 8 >= row.size() - 5) throw std::logic_error("page outside the inline map");
        if (on)
            map[5 + bit / 8] |= uint8_t(1u << (bit % 8));
        else
            map[5 + bit / 8] &= uint8_t(~(1u << (bit % 8)));
    }

    std::vector<uint8_t>& file_;
    const jet::Format& f_;
    uint32_t mapPage_;
    uint8_t mapSlot_;
    std::vector<uint32_t> reusable_;
};

