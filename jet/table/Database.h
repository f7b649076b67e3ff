#pragma once
// An open database file: the pager over it, its header, its code page, the catalogue and
// the definitions of the tables used so far. Tables and record sets borrow it.
//
// Invariants:
//  - A Database exists only for a file that passed the checks done before trusting one:
//    a supported version, a size that is a whole number (at least 3) of pages, and a
//    catalogue on page 2 with the columns the engine needs.
//  - Table definitions are parsed once and shared; a parsed definition never changes: when
//    a transaction changes a table's counters or schema, the cache gets a new one and
//    earlier holders keep the one they had.

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "format/CodePage.h"
#include "format/DataPage.h"
#include "format/Format.h"
#include "format/Header.h"
#include "format/TableDef.h"
#include "os/Env.h"
#include "pager/Pager.h"
#include "table/Catalog.h"

namespace jet {

class Table;

class Database {
public:
    // Opens a file. Throws RuntimeError -2147467259 when it cannot be found or opened or
    // is not a database of a supported format, CorruptError when it is damaged.
    static std::unique_ptr<Database> open(const std::string& path, Env& env = Env::posix());
    // Opens an already opened file (tests and the fuzzer hand in memory files); such a
    // database is never written.
    static std::unique_ptr<Database> open(std::unique_ptr<File> file, const std::string& path);

    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const Header& header() const { return header_; }
    const Format& format() const { return Format::of(header_.version()); }
    Version version() const { return header_.version(); }
    Pager& pager() const { return *pager_; }
    const std::string& path() const { return pager_->path(); }
    // The database's code page: Jet 3 text and names.
    const CodePage& codePage() const { return *codePage_; }
    // The code page of a column's Jet 3 text (its own when it names one).
    const CodePage& codePageOf(const Column& column) const;

    const Catalog& catalog() const { return *catalog_; }
    // The definition whose first page is `page`, parsed once.
    std::shared_ptr<const TableDef> tableDef(uint32_t page) const;
    // A user or system table by name (case-insensitive). Throws RuntimeError -2147217865
    // when there is none.
    std::shared_ptr<Table> openTable(std::string_view name) const;

    // Starts a write transaction on the pager, taking write access first (Pager.h). Writers
    // go through jet::Transaction, which ends it.
    void beginWrite();
    // Parses a definition again after a transaction changed its counters (or rolled back).
    void reloadTableDef(uint32_t page);
    // After a schema change: the definition is parsed afresh when next asked for (a dropped
    // table's is simply gone), and the catalogue is read again.
    void forgetTableDef(uint32_t page) { defs_.erase(page); }
    void reloadCatalog();

    // The bytes of a live row given by the slot that identifies it, following an overflow
    // header to where the data lives. `owner` is the table's TDEF page; a row on a page
    // of another owner is a CorruptError.
    std::span<const uint8_t> rowBytes(RowLocation location, uint32_t owner) const;

private:
    Database(std::unique_ptr<Pager> pager, Header header);
    static std::unique_ptr<Database> open(std::unique_ptr<Pager> pager);

    std::unique_ptr<Pager> pager_;
    Header header_;
    std::shared_ptr<const CodePage> codePage_;
    std::unique_ptr<Catalog> catalog_;
    mutable std::map<uint32_t, std::shared_ptr<const TableDef>> defs_;
    mutable std::map<uint16_t, std::shared_ptr<const CodePage>> columnCodePages_;
};

}  // namespace jet
