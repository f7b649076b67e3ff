#include "table/Database.h"

#include "base/Bytes.h"
#include "table/Table.h"

namespace jet {

namespace {

constexpr uint32_t catalogPage = 2;
constexpr size_t versionProbeSize = 0x20;

CorruptError cutShort(const std::string& path) {
    return CorruptError("'" + path + "' is cut short: its size is not a whole number of pages");
}

}  // namespace

std::unique_ptr<Database> Database::open(const std::string& path, Env& env) {
    if (!env.exists(path)) throw RuntimeError(err::Unspecified, "Could not find file '" + path + "'.");
    // Opened for reading; the first write asks the pager for write access (Pager.h).
    std::unique_ptr<Pager> pager;
    try {
        pager = Pager::open(env, path, OpenMode::ReadOnly, [&](std::span<const uint8_t> head) {
            return Format::of(Header::detectVersion(head, path)).pageSize;
        });
    } catch (const IoError& e) {
        throw RuntimeError(err::Unspecified, "The database '" + path + "' cannot be opened: " + e.description());
    }
    return open(std::move(pager));
}

std::unique_ptr<Database> Database::open(std::unique_ptr<File> file, const std::string& path) {
    uint8_t probe[versionProbeSize] = {};
    size_t got = file->readAt(0, probe);
    Version version = Header::detectVersion({probe, got}, path);
    const Format& f = Format::of(version);
    if (file->size() % f.pageSize != 0) throw cutShort(path);
    return open(std::make_unique<Pager>(std::move(file), path, f.pageSize));
}

std::unique_ptr<Database> Database::open(std::unique_ptr<Pager> pager) {
    const std::string& path = pager->path();
    uint8_t probe[versionProbeSize] = {};
    if (pager->file().readAt(0, probe) < versionProbeSize) throw cutShort(path);
    Version version = Header::detectVersion(probe, path);
    const Format& f = Format::of(version);
    const uint64_t size = pager->file().size();
    if (size % f.pageSize != 0 || size < 3ull * f.pageSize || pager->pageSize() != f.pageSize) throw cutShort(path);
    if (size / f.pageSize > UINT32_MAX >> 8)
        throw CorruptError("'" + path + "' is larger than any database of its format can be");
    Header header = Header::parse(version, {pager->read(0), f.pageSize});
    std::unique_ptr<Database> db(new Database(std::move(pager), std::move(header)));
    db->catalog_ = std::make_unique<Catalog>(Catalog::read(*db));
    return db;
}

Database::Database(std::unique_ptr<Pager> pager, Header header) : pager_(std::move(pager)), header_(std::move(header)) {
    if (header_.databaseKey() != 0) pager_->setDatabaseKey(header_.databaseKey());
    if (header_.version() == Version::Jet3) {
        codePage_ = CodePage::get(header_.codePage());
    } else {
        // Jet 4 text is Unicode; the header's code page is only informational.
        try {
            codePage_ = CodePage::get(header_.codePage());
        } catch (const RuntimeError&) {
            codePage_ = CodePage::get(1252);
        }
    }
}

Database::~Database() = default;

const CodePage& Database::codePageOf(const Column& column) const {
    if (version() != Version::Jet3 || column.codePage == 0 || column.codePage == codePage_->number())
        return *codePage_;
    auto it = columnCodePages_.find(column.codePage);
    if (it == columnCodePages_.end()) it = columnCodePages_.emplace(column.codePage, CodePage::get(column.codePage)).first;
    return *it->second;
}

std::shared_ptr<const TableDef> Database::tableDef(uint32_t page) const {
    auto it = defs_.find(page);
    if (it != defs_.end()) return it->second;
    auto def = std::make_shared<const TableDef>(TableDef::read(*pager_, format(), *codePage_, page));
    defs_.emplace(page, def);
    return def;
}

void Database::beginWrite() {
    pager_->acquireWriteAccess();
    pager_->begin();
}

void Database::reloadCatalog() { catalog_ = std::make_unique<Catalog>(Catalog::read(*this)); }

void Database::reloadTableDef(uint32_t page) {
    defs_.erase(page);
    tableDef(page);
}

std::shared_ptr<Table> Database::openTable(std::string_view name) const {
    const CatalogEntry* e = catalog_ ? catalog_->findTable(name) : nullptr;
    if (!e)
        throw RuntimeError(err::NoSuchTable, "The Microsoft Jet database engine cannot find the input table or query '" +
                                                 std::string(name) + "'. Make sure it exists and that its name is spelled correctly.");
    if (e->tdefPage() == 0 || e->tdefPage() >= pager_->pageCount())
        throw CorruptError("table '" + e->name + "' points to a definition beyond the end of the file");
    return std::make_shared<Table>(*this, tableDef(e->tdefPage()), e->name);
}

std::span<const uint8_t> Database::rowBytes(RowLocation loc, uint32_t owner) const {
    const Format& f = format();
    DataPage page(f, pager_->read(loc.page));
    auto where = [&] { return "row " + std::to_string(loc.slot) + " of page " + std::to_string(loc.page); };
    if (!page.isDataPage() || page.owner() != owner) throw CorruptError(where() + " does not belong to its table");
    if (loc.slot >= page.slotCount()) throw CorruptError(where() + " does not exist");
    uint16_t flags = page.slotFlags(loc.slot);
    if (flags == slot_flag::Deleted) throw CorruptError(where() + " has been deleted");
    auto row = page.row(loc.slot);
    if (flags != slot_flag::Overflow) return row;
    if (row.size() < 4) throw CorruptError(where() + " is an overflow header without a pointer");
    RowLocation target = RowLocation::fromPointer(le32(row.data()));
    DataPage tp(f, pager_->read(target.page));
    if (!tp.isDataPage() || tp.owner() != owner) throw CorruptError(where() + " points to a row of another table");
    if (target.slot >= tp.slotCount()) throw CorruptError(where() + " points to a row that does not exist");
    // Updates point the header straight at the newest copy, so a second hop means damage.
    uint16_t tflags = tp.slotFlags(target.slot);
    if (tflags == slot_flag::Deleted || tflags == slot_flag::Overflow)
        throw CorruptError(where() + " points to a row that is deleted or moved again");
    return tp.row(target.slot);
}

}  // namespace jet
