#include "check/IndexCheck.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "format/IndexEntry.h"
#include "format/UsageMap.h"
#include "index/IndexPagerReader.h"
#include "index/IndexTreeVerifier.h"
#include "table/Database.h"
#include "table/IndexRowKey.h"
#include "table/Table.h"

namespace jet {
namespace {

// Differences listed per index before the rest are only counted.
constexpr size_t kMaxListed = 10;

std::string rowName(IndexRowPointer r) {
    return "page " + std::to_string(r.page) + " slot " + std::to_string(r.row);
}

std::string indexName(const TableDef& def, const PhysicalIndex& x) {
    std::string names;
    for (const LogicalIndex& l : def.logicalIndexes()) {
        if (l.physicalIndex != x.number) continue;
        names += (names.empty() ? "'" : ", '") + l.name + "'";
    }
    return names.empty() ? "index " + std::to_string(x.number) : "index " + names;
}

struct ExpectedEntries {
    std::vector<std::vector<uint8_t>> exact;                         // sorted
    std::map<IndexRowPointer, std::vector<uint8_t>> keyOfRow;        // exact keys by row
    std::map<IndexRowPointer, std::vector<uint8_t>> knownBeginning;  // rows keyed only in part
};

class IndexChecker {
public:
    IndexChecker(const Table& table, IndexCheckResult& result) : table_(table), result_(result) {}

    void check(const PhysicalIndex& x) {
        const Database& db = table_.database();
        const TableDef& def = table_.def();
        name_ = indexName(def, x);
        listed_ = 0;
        // A root outside the file is reported with the table's definition.
        if (x.rootPage == 0 || x.rootPage >= db.pager().pageCount()) return;
        ++result_.indexesChecked;

        IndexRowKey keys(db, def, x);
        if (!keys.layoutProblem().empty()) {
            problem(keys.layoutProblem());
            return;
        }
        std::optional<UsageMap> owned;
        try {
            owned = UsageMap::read(db.pager(), db.format(), x.ownedMap);
        } catch (const RuntimeError&) {
            // A broken map is reported with the table's maps; membership is not checked then.
        }
        PagerIndexPages pages(db.pager());
        std::function<bool(uint32_t)> inMap;
        if (owned) inMap = [&](uint32_t p) { return owned->contains(p); };
        IndexTreeReport tree = verifyIndexTree(db.format(), pages, x.rootPage, def.page(), inMap);
        for (const std::string& p : tree.problems) problem(p);
        if (owned) {
            // Pages an index gives up leave its map, so the map lists the tree and nothing else.
            const std::set<uint32_t> treePages(tree.pages.begin(), tree.pages.end());
            for (uint32_t p : owned->pages())
                if (!treePages.count(p)) problem("its usage map lists page " + std::to_string(p) + ", which is not in the tree");
        }
        result_.entriesChecked += tree.entries.size();

        ExpectedEntries expected = expectedEntries(keys);
        compare(expected, tree.entries);
        if (keys.unique()) checkUnique(tree.entries, keys.allNullKey());
    }

private:
    void problem(const std::string& text) { result_.problems.push_back(name_ + ": " + text); }

    // Lists the first differences of an index in full and counts the others.
    void difference(const std::string& text) {
        if (listed_++ < kMaxListed) problem(text);
    }

    ExpectedEntries expectedEntries(const IndexRowKey& keys) {
        ExpectedEntries e;
        for (const RowLocation& loc : table_.rowLocations()) {
            const IndexRowPointer row{loc.page, loc.slot};
            IndexKey key;
            try {
                key = keys.keyOf(table_.reader(loc));
            } catch (const RuntimeError& ex) {
                difference("the row at " + rowName(row) + " cannot be read for its key: " + ex.description());
                continue;
            }
            if (keys.ignoresNulls() && key.allNull) continue;
            if (!key.exact()) {
                ++result_.keysCheckedInPart;
                e.knownBeginning.emplace(row, std::move(key.bytes));
                continue;
            }
            e.exact.push_back(makeIndexEntry(key.bytes, row));
            e.keyOfRow.emplace(row, std::move(key.bytes));
        }
        std::sort(e.exact.begin(), e.exact.end());
        return e;
    }

    void compare(const ExpectedEntries& expected, std::vector<std::vector<uint8_t>> actual) {
        // Entries of rows keyed only in part: one each, beginning with the known bytes.
        std::map<IndexRowPointer, int> partialSeen;
        std::vector<std::vector<uint8_t>> rest;
        for (auto& entry : actual) {
            const IndexRowPointer row = entryRow(entry);
            auto it = expected.knownBeginning.find(row);
            if (it == expected.knownBeginning.end()) {
                rest.push_back(std::move(entry));
                continue;
            }
            ++partialSeen[row];
            const auto key = entryKey(entry);
            if (key.size() < it->second.size() || !std::equal(it->second.begin(), it->second.end(), key.begin()))
                difference("the entry for " + rowName(row) + " does not begin with the codes of the row's key");
        }
        for (const auto& [row, beginning] : expected.knownBeginning) {
            const int seen = partialSeen[row];
            if (seen != 1) difference("the row at " + rowName(row) + " has " + std::to_string(seen) + " entries, not one");
        }

        std::sort(rest.begin(), rest.end());
        size_t i = 0, j = 0;
        while (i < expected.exact.size() || j < rest.size()) {
            const bool takeExpected =
                j == rest.size() || (i < expected.exact.size() && compareIndexBytes(expected.exact[i], rest[j]) < 0);
            const bool takeActual =
                i == expected.exact.size() || (j < rest.size() && compareIndexBytes(rest[j], expected.exact[i]) < 0);
            if (!takeExpected && !takeActual) {  // equal
                ++i;
                ++j;
            } else if (takeExpected) {
                difference("the row at " + rowName(entryRow(expected.exact[i++])) + " has no entry with its key");
            } else {
                const IndexRowPointer row = entryRow(rest[j++]);
                difference(expected.keyOfRow.count(row) ? "the entry for " + rowName(row) + " differs from the row's key"
                                                        : "an entry refers to " + rowName(row) + ", which holds no row");
            }
        }
        if (listed_ > kMaxListed) problem(std::to_string(listed_ - kMaxListed) + " more differences");
    }

    void checkUnique(const std::vector<std::vector<uint8_t>>& entries, const std::vector<uint8_t>& allNullKey) {
        for (size_t k = 1; k < entries.size(); ++k) {
            const auto a = entryKey(entries[k - 1]), b = entryKey(entries[k]);
            if (compareIndexBytes(a, b) != 0) continue;
            if (!allNullKey.empty() && compareIndexBytes(a, allNullKey) == 0) continue;
            problem("the unique index holds the same key for " + rowName(entryRow(entries[k - 1])) + " and " +
                    rowName(entryRow(entries[k])));
        }
    }

    const Table& table_;
    IndexCheckResult& result_;
    std::string name_;
    size_t listed_ = 0;
};

}  // namespace

IndexCheckResult checkTableIndexes(const Table& table) {
    IndexCheckResult result;
    IndexChecker checker(table, result);
    for (const PhysicalIndex& x : table.def().physicalIndexes()) {
        try {
            checker.check(x);
        } catch (const RuntimeError& e) {
            // The table's rows cannot even be listed: that is reported with the table.
            result.problems.push_back(indexName(table.def(), x) + ": cannot be checked: " + e.description());
        }
    }
    return result;
}

}  // namespace jet
