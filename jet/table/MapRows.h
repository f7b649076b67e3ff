#pragma once
// The usage maps a table definition names live as rows of usage-map pages: data pages with
// owner 0 that many tables share. This makes new, empty maps for a new table or column and
// takes a dropped table's maps away again.
//
// Invariants:
//  - A new map is an inline row (type 0, start page 0, the bitmap size Access uses), put
//    into a retired slot of a usage-map page or appended in a new slot of one that has
//    room, or of a new page.
//  - A map is removed by retiring its slot: the row becomes empty (length 0) but stays
//    live, and the page is repacked, so its bytes are free again and the slots of the other
//    maps keep their numbers. No map is ever shorter than 5 bytes, so an empty row on a
//    usage-map page can only be a retired one. Slots are not marked deleted because a
//    reader of the independent tools misplaces every map row that follows a deleted slot.
//  - A usage-map page whose rows are all retired is given back to the allocator (never
//    page 1, which holds the global map).

#include <cstdint>
#include <vector>

namespace jet {

class Transaction;

class MapRows {
public:
    explicit MapRows(Transaction& transaction) : t_(transaction) {}

    // The row pointer of a new, empty map.
    uint32_t create();
    // Every page the map names (those within the file), and the type-0x05 pages a
    // reference map keeps its bits on.
    struct Contents {
        std::vector<uint32_t> pages;
        std::vector<uint32_t> mapPages;
    };
    Contents contents(uint32_t rowPointer);
    void remove(uint32_t rowPointer);

private:
    // Puts the row on the page, into a retired slot if it has one; false when it has no room.
    bool place(uint32_t page, const std::vector<uint8_t>& row, uint8_t& slot);
    std::vector<uint32_t> candidatePages();

    Transaction& t_;
    uint32_t lastPage_ = 0;  // the page this transaction's last map went to
};

}  // namespace jet
