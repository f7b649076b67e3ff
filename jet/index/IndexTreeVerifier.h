#pragma once
// Verifies the shape of one index B-tree (the rules listed in IndexTree.h) and collects its
// leaf entries for comparison with the table's rows. Every fault is reported as a line of
// text; a damaged tree is walked as far as it can be without following anything twice.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "format/Format.h"
#include "index/IndexPageStore.h"

namespace jet {

struct IndexTreeReport {
    std::vector<std::string> problems;
    std::vector<std::vector<uint8_t>> entries;  // leaf entries in tree order
    std::vector<uint32_t> pages;                // every page of the tree, root first
    uint32_t depth = 0;                         // levels, 1 for a lone leaf root
    bool sound() const { return problems.empty(); }
};

// `owner` is the TDEF page every page must name; `inOwnedMap` tells whether a page is in
// the index's owned-pages map (pass nullptr to skip that check).
IndexTreeReport verifyIndexTree(const Format& format, IndexPageReader& pages, uint32_t root, uint32_t owner,
                                const std::function<bool(uint32_t)>& inOwnedMap);

}  // namespace jet
