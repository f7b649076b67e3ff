#pragma once
// The index part of the integrity checker. For every physical index of a table:
//  - every page of the tree is an index page of this table and in the index's owned map
//    (and the map lists no other page), with an entry mask that agrees with its free space, and the tree has the shape the
//    engine relies on (sorted entries, node entries equal to the greatest entry below,
//    tail rules, one leaf chain in key order);
//  - the leaf entries are exactly the keys rebuilt from the table's live rows, each with
//    the row's slot (an overflowed row keeps its original slot), minus the all-null rows
//    of an "ignore nulls" index;
//  - a unique index holds no two entries with the same key unless it is all null.
// A row whose key holds characters without known sort codes cannot be rebuilt: its entry
// is found by its row pointer and only the bytes known to begin its key are compared.

#include <cstddef>
#include <string>
#include <vector>

namespace jet {

class Table;

struct IndexCheckResult {
    std::vector<std::string> problems;  // each names the index
    size_t indexesChecked = 0;
    size_t entriesChecked = 0;
    size_t keysCheckedInPart = 0;       // rows whose key could only be compared in its known beginning
};

IndexCheckResult checkTableIndexes(const Table& table);

}  // namespace jet
