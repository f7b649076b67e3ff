#pragma once
// Keeps every index of a table in step with its rows, for the writer: the entries a row
// insert, update or delete adds and removes, planned and checked before anything is
// written, then applied.
//
// Rules kept:
//  - A plan is refused as a whole (RuntimeError, nothing written) when a key cannot be
//    computed exactly (the error names the index and the character), when a primary key
//    or required index would get a null, when a unique index already holds the key for
//    another row, or when a text index uses a collating order whose keys are unknown.
//  - An "ignore nulls" index gets no entry for a row whose key columns are all null; rows
//    whose key is all null never collide in a unique index.
//  - An entry always names the row's own slot (an overflowed row keeps its original one),
//    and is exactly what the integrity checker rebuilds from the row.
//  - Deleting a row whose old key cannot be rebuilt (characters without known codes,
//    written by Jet itself) finds its entry by the row pointer instead.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "format/IndexEntry.h"
#include "format/TableDef.h"
#include "index/IndexPageStore.h"
#include "table/IndexRowKey.h"
#include "table/RowReader.h"

namespace jet {

class Database;

// What one row change does to one physical index.
struct IndexEntryChange {
    uint32_t index = 0;                        // physical index number
    std::optional<std::vector<uint8_t>> remove;  // key of the entry to remove
    bool removeByRow = false;                  // remove the row's entry whatever its key
    std::optional<std::vector<uint8_t>> insert;  // key of the entry to add
    bool newDistinctKey = false;               // no entry had this key before (the TDEF statistic)
};

struct IndexPlan {
    IndexRowPointer row;
    std::vector<IndexEntryChange> changes;  // only indexes that change
};

class IndexMaintainer {
public:
    // The pages of one physical index: its tree is read and changed through them, new pages
    // go into its owned map.
    using PagesOf = std::function<IndexPageStore&(const PhysicalIndex&)>;

    IndexMaintainer(const Database& db, const TableDef& def, std::string tableName, PagesOf pagesOf);

    // Plans for a row given as stored bytes (the new row as it will be written).
    IndexPlan planInsert(std::span<const uint8_t> row, IndexRowPointer at);
    IndexPlan planUpdate(std::span<const uint8_t> oldRow, std::span<const uint8_t> newRow, IndexRowPointer at);
    IndexPlan planDelete(std::span<const uint8_t> row, IndexRowPointer at);

    // Applies a plan made against the indexes as they are now.
    void apply(const IndexPlan& plan);

private:
    struct Index {
        const PhysicalIndex* physical;
        std::string name;  // as users know it: the logical index's name
        bool primaryKey;
        std::unique_ptr<IndexRowKey> keys;
    };

    IndexPlan plan(const RowReader* before, const RowReader* after, IndexRowPointer at);
    void refuseUnknownCollation() const;
    std::optional<std::vector<uint8_t>> newKey(const Index& x, const RowReader& row) const;
    bool checkNewKey(const Index& x, const std::vector<uint8_t>& key, IndexRowPointer at) const;
    std::optional<std::vector<uint8_t>> oldKey(const Index& x, const RowReader& row, bool& byRow) const;
    [[noreturn]] void refuse(const Index& x, const std::string& why, int32_t number) const;

    const Database& db_;
    const TableDef& def_;
    std::string tableName_;
    PagesOf pagesOf_;
    std::vector<Index> indexes_;
};

}  // namespace jet
