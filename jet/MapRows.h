#pragma once
// The usage maps a table definition names live as rows of usage-map pages: data pages with
// owner 0 that many tables share. This makes new, empty maps for a new table or column and
// takes a dropped table's maps away again.
//
// Invariants:
//  - A new map is an inline row (type 0, start page 0, the bitmap size Access uses),
//    appended in a new slot of a usage-map page that has room, or of a new one.
//  - A map is removed by marking its slot deleted; the row keeps its place, so the slots of
//    other maps on the page never move. A usage-map page whose rows are all deleted is
//    given back to the allocator (never page 1, which holds the global map).

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
    bool hasRoom(uint32_t page, uint32_t length);
    std::vector<uint32_t> candidatePages();

    Transaction& t_;
    uint32_t lastPage_ = 0;  // the page this transaction's last map went to
};

}  // namespace jet
