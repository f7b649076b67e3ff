#pragma once
// Inserts, updates and deletes rows of one table inside the caller's write transaction,
// with all the bookkeeping a row change needs: long values, data pages and their maps,
// overflow rows, every index, and the definition's counters. The Recordset, the
// command-line loader and the catalogue writer all change rows through it.
//
// Rules kept:
//  - Everything is checked before anything is changed that a failure could not take back:
//    values against their columns, the row against the size limit, every index (duplicate
//    keys, nulls in required keys, keys that cannot be encoded exactly). A refused change
//    throws; pages it may already have touched in the transaction (a long value, a new
//    page) are undone by the caller's rollback, which every caller does.
//  - A row keeps its identity (page, slot) for its whole life: an update that no longer
//    fits moves the data to a slot flagged 0x8000 and leaves a 0x4000 pointer in the
//    original slot; a second move points the header at the newest place and deletes the
//    previous one, so there is never a chain.
//  - The row count moves with each insert and delete; a COUNTER column gets the last value
//    plus one, and an explicit larger value raises the counter; the distinct-key statistic
//    of an index grows when a key it did not hold arrives.
//  - Old long values are deleted when replaced and when their row is deleted.

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "format/DataPage.h"
#include "format/PageFiller.h"
#include "format/TableDef.h"
#include "format/TableDefWriter.h"
#include "jet/Variant.h"
#include "table/RowWriter.h"

namespace jet {

class Database;
class IndexMaintainer;
class LongValueWriter;
class PageAllocator;
class TableIndexPages;

class TableWriter {
public:
    TableWriter(const Database& db, std::shared_ptr<const TableDef> def, std::string name, PageAllocator& allocator);
    ~TableWriter();
    TableWriter(const TableWriter&) = delete;
    TableWriter& operator=(const TableWriter&) = delete;

    const TableDef& def() const { return *def_; }
    const std::string& name() const { return name_; }

    // A new row; `values` is indexed like def().columns(), Empty meaning "not given" (Null,
    // or the next number of a COUNTER column). Returns the row's location.
    RowLocation insert(const std::vector<Variant>& values);
    // Changes the given columns (position in def().columns(), value) of a live row.
    void update(RowLocation row, const std::vector<std::pair<size_t, Variant>>& changes);
    void remove(RowLocation row);
    // Gives a live row `number` in the COUNTER column at position `column`, raising the
    // table's counter to it: for rows written before the column was added, which hold no
    // value for it. Ordinary updates may not change a COUNTER value.
    void numberRow(RowLocation row, size_t column, int32_t number);
    // Writes a live row again in the table's current layout, its values unchanged. For rows
    // written while the table had no variable-length column (`varColumnsWritten` 0): they
    // have no variable section, which readers of a table that has one would misparse.
    // Keys stay the same, so no index changes.
    void relayOut(RowLocation row, uint16_t varColumnsWritten);

private:
    void rewrite(RowLocation row, const std::vector<std::pair<size_t, Variant>>& changes);
    StoredValue store(size_t column, const Variant& value, bool keepInline, std::vector<std::vector<uint8_t>>& written);
    std::vector<uint8_t> layOut(std::vector<StoredValue>& values, const std::vector<Variant>& converted,
                                std::vector<std::vector<uint8_t>>& written);
    Variant convert(size_t column, const Variant& value) const;
    LongValueWriter& longValues(const Column& column);
    void removeLongValue(const Column& column, std::span<const uint8_t> field);
    void removeLongValues(std::span<const uint8_t> row);
    void place(RowLocation row, std::span<const uint8_t> bytes);
    void deleteSlot(RowLocation at);

    const Database& db_;
    std::shared_ptr<const TableDef> def_;
    std::string name_;
    PageAllocator& allocator_;
    PageFiller rows_;
    TableDefWriter counters_;
    std::map<uint32_t, std::unique_ptr<TableIndexPages>> indexPages_;
    std::unique_ptr<IndexMaintainer> indexes_;
    std::map<uint16_t, std::unique_ptr<LongValueWriter>> longValues_;
};

}  // namespace jet
