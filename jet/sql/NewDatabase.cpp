#include "jet/NewDatabase.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "format/CodePage.h"
#include "format/DataPageWriter.h"
#include "format/Header.h"
#include "format/TableDefSerializer.h"
#include "index/IndexTreeWriter.h"
#include "jet/DateSerial.h"
#include "pager/Pager.h"
#include "sql/SystemTables.h"
#include "table/CatalogWriter.h"
#include "table/Database.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"

namespace jet {

namespace {

constexpr uint32_t globalMapPage = 1;
constexpr uint32_t globalMapOwner = 1;
constexpr uint32_t inlineHeader = 5;
constexpr uint16_t defaultCodePage = 1251;
constexpr uint16_t jet4HeaderCodePage = 1252;

// The fixed ids of the objects every database has.
constexpr int32_t kTopLevel = 0x0F000000;
constexpr int32_t kTables = 0x0F000001;
constexpr int32_t kDatabases = 0x0F000002;
constexpr int32_t kRelationships = 0x0F000003;
constexpr int32_t kDatabaseObject = 0x10000000;
constexpr int32_t kSystemFlags = INT32_MIN;  // 0x80000000

// The built-in identities of the permission rows. Jet 3 files carry them as below; Jet 4
// files carry the values that go with the reference creation date of Header::newPage.
struct Sids {
    std::vector<uint8_t> systemOwner, admin, fullGroup, limitedGroup;
};
const Sids& sidsOf(Version v) {
    static const Sids jet3{{0x02, 0x03}, {0x03, 0x01}, {0x02, 0x01}, {0x02, 0x04}};
    static const Sids jet4{{0x06, 0xEA}, {0x07, 0xE8}, {0x06, 0xE8}, {0x06, 0xED}};
    return v == Version::Jet3 ? jet3 : jet4;
}

void setBit(std::vector<uint8_t>& mapRow, uint32_t page) {
    mapRow[inlineHeader + page / 8] |= uint8_t(1u << (page % 8));
}

// Page 1: the global map (a set bit is a free page: every page past the file's end) and
// the all-zero map Access keeps beside it.
void writeGlobalMapPage(const Format& f, uint32_t pageCount, uint8_t* page) {
    DataPageWriter writer(f, page);
    writer.initialize(globalMapOwner);
    std::vector<uint8_t> global(inlineHeader + f.inlineMapBytes, 0);
    for (uint32_t p = pageCount; p < f.inlineMapBytes * 8; ++p) setBit(global, p);
    writer.append(global);
    writer.append(std::vector<uint8_t>(inlineHeader + f.inlineMapBytes, 0));
}

void writeMapPages(const Format& f, const NewFileLayout& layout, Pager& pager) {
    std::vector<std::vector<uint8_t>> rows(NewFileLayout::mapCount,
                                           std::vector<uint8_t>(inlineHeader + f.inlineMapBytes, 0));
    for (const MapMember& m : systemMapMembers(layout)) setBit(rows[m.map], m.page);
    for (uint32_t k = 0; k < NewFileLayout::mapCount; ++k) {
        const RowLocation at = layout.map(k);
        DataPageWriter writer(f, pager.writable(at.page));
        if (at.slot == 0) writer.initialize(0);
        writer.append(rows[k]);
    }
}

// Everything but the rows: header, maps, definitions, empty index roots and data pages.
void writeSkeleton(Pager& pager, Version v, uint16_t codePage) {
    const Format& f = Format::of(v);
    const NewFileLayout layout = NewFileLayout::of(v);
    pager.begin();
    for (uint32_t i = 0; i < layout.pageCount(); ++i) pager.append();
    const std::vector<uint8_t> header = Header::newPage(v, v == Version::Jet3 ? codePage : jet4HeaderCodePage);
    std::memcpy(pager.writable(0), header.data(), header.size());
    writeGlobalMapPage(f, layout.pageCount(), pager.writable(globalMapPage));
    writeMapPages(f, layout, pager);

    const auto cp = CodePage::get(codePage);
    uint32_t index = 0;
    for (SystemTable t : kSystemTables) {
        const TableDef def = systemTableDef(t, v, codePage, layout);
        const uint32_t page = systemTablePage(t);
        const std::vector<uint8_t> stream = serializeTableDef(f, *cp, def);
        const std::vector<uint32_t> pages{page};
        const auto image = tableDefPageImages(f, stream, pages).front();
        std::memcpy(pager.writable(page), image.data(), image.size());
        for (size_t i = 0; i < def.physicalIndexes().size(); ++i)
            IndexTreeWriter::writeEmptyRoot(f, page, pager.writable(layout.indexRoot(index++)));
    }
    DataPageWriter(f, pager.writable(layout.objectsDataPage())).initialize(systemTablePage(SystemTable::Objects));
    DataPageWriter(f, pager.writable(layout.acesDataPage())).initialize(systemTablePage(SystemTable::Aces));
    pager.commit();
}

// The catalogue rows and permission rows, through the table writer so that their index
// entries and the tables' counters are what any later insert would make them.
void writeCatalogue(Database& db) {
    const Sids& sid = sidsOf(db.version());
    const double now = nowSerial();
    Transaction t(db);
    TableWriter& objects = t.table(systemTablePage(SystemTable::Objects), "MSysObjects");
    const auto object = [&](int32_t id, int32_t parent, const char* name, int16_t type, const std::vector<uint8_t>& owner) {
        objects.insert(rowByName(objects.def(), {{"Id", Variant::longValue(id)},
                                                 {"ParentId", Variant::longValue(parent)},
                                                 {"Name", Variant::string(name)},
                                                 {"Type", Variant::integer(type)},
                                                 {"DateCreate", Variant::date(now)},
                                                 {"DateUpdate", Variant::date(now)},
                                                 {"Owner", Variant::bytes(owner)},
                                                 {"Flags", Variant::longValue(kSystemFlags)}}));
    };
    object(kTables, kTopLevel, "Tables", 3, sid.systemOwner);
    object(kDatabases, kTopLevel, "Databases", 3, sid.systemOwner);
    object(kRelationships, kTopLevel, "Relationships", 3, sid.systemOwner);
    object(kDatabaseObject, kDatabases, "MSysDb", 2, sid.admin);
    for (SystemTable st : kSystemTables)
        object(int32_t(systemTablePage(st)), kTables, systemTableName(st), 1, sid.systemOwner);

    TableWriter& aces = t.table(systemTablePage(SystemTable::Aces), "MSysACEs");
    const auto ace = [&](int32_t id, const std::vector<uint8_t>& who, int32_t rights, bool inheritable) {
        aces.insert(rowByName(aces.def(), {{"ObjectId", Variant::longValue(id)},
                                           {"SID", Variant::bytes(who)},
                                           {"ACM", Variant::longValue(rights)},
                                           {"FInheritable", Variant::boolean(inheritable)}}));
    };
    const int32_t msysObjects = 2, msysAces = 3, msysQueries = 4, msysRelationships = 5;
    ace(msysObjects, sid.admin, 393216, false);
    ace(msysAces, sid.admin, 393216, false);
    ace(msysQueries, sid.admin, 393216, false);
    ace(msysRelationships, sid.admin, 917504, false);
    ace(kTables, sid.limitedGroup, 983294, true);
    ace(kTables, sid.admin, 393217, false);
    ace(kRelationships, sid.limitedGroup, 983294, true);
    ace(kRelationships, sid.admin, 393217, false);
    ace(kDatabases, sid.admin, 393216, false);
    ace(kDatabaseObject, sid.admin, 393230, false);
    ace(kDatabaseObject, sid.fullGroup, 14, false);
    ace(msysQueries, sid.fullGroup, 20, false);
    ace(msysRelationships, sid.fullGroup, 20, false);
    ace(msysObjects, sid.fullGroup, 20, false);
    ace(kTables, sid.fullGroup, 1048319, true);
    ace(kRelationships, sid.fullGroup, 1048575, true);
    t.commit();
}

void removeQuietly(Env& env, const std::string& path) {
    try {
        env.remove(path);
    } catch (const RuntimeError&) {
        // Nothing more can be done about a file that cannot even be removed.
    }
}

// The target becomes a copy of `source`, a database file of `pageSize` pages. Creating the
// pager takes the target over or refuses it before changing anything; from then on a
// failure removes the target rather than leave part of a copy.
void replaceDatabaseFile(Env& env, File& source, uint32_t pageSize, const std::string& target) {
    std::unique_ptr<Pager> to = Pager::create(env, target, pageSize);
    try {
        const uint64_t size = source.size();
        to->begin();
        for (uint64_t offset = 0; offset < size; offset += pageSize) {
            const uint32_t page = to->append();
            if (source.readAt(offset, {to->writable(page), pageSize}) != pageSize)
                throw IoError("the source changed while it was being copied");
        }
        to->commit();
    } catch (const RuntimeError&) {
        to.reset();
        removeQuietly(env, target);
        throw;
    }
}

}  // namespace

uint16_t programCodePage() {
    const char* env = std::getenv("SHEETWRIGHT_CODEPAGE");
    if (!env || !*env) return defaultCodePage;
    std::string name(env);
    for (char& c : name) c = char(std::tolower(static_cast<unsigned char>(c)));
    for (const char* prefix : {"windows-", "cp"})
        if (name.rfind(prefix, 0) == 0) name.erase(0, std::strlen(prefix));
    if (name.empty() || name.size() > 5 || name.find_first_not_of("0123456789") != std::string::npos)
        return defaultCodePage;
    const unsigned long number = std::stoul(name);
    try {
        CodePage::get(uint16_t(number));
        return uint16_t(number);
    } catch (const RuntimeError&) {
        return defaultCodePage;
    }
}

void createDatabase(const std::string& path, Version version, uint16_t codePage, Env& env) {
    const Format& f = Format::of(version);
    if (version == Version::Jet4) codePage = jet4HeaderCodePage;
    CodePage::get(codePage);  // refuses a code page the engine cannot convert, before any file exists
    const std::string scratch = path + ".creating";
    try {
        writeSkeleton(*Pager::create(env, scratch, f.pageSize), version, codePage);
        writeCatalogue(*Database::open(scratch, env));
        replaceDatabaseFile(env, *env.open(scratch, OpenMode::ReadOnly), f.pageSize, path);
        env.remove(scratch);
        env.syncDirectory(directoryOf(path));
    } catch (const RuntimeError& e) {
        removeQuietly(env, scratch);
        throw RuntimeError(e.number(), "The database '" + path + "' cannot be created: " + e.description());
    }
}

void createDatabase(const std::string& path, Version version, uint16_t codePage) {
    createDatabase(path, version, codePage, Env::posix());
}

void copyDatabase(const std::string& source, const std::string& target) { copyDatabase(source, target, Env::posix()); }

void copyDatabase(const std::string& source, const std::string& target, Env& env) {
    try {
        const std::unique_ptr<Database> from = Database::open(source, env);
        // The file's own bytes, not the pager's pages: those of an encoded database are decoded.
        replaceDatabaseFile(env, from->pager().file(), from->format().pageSize, target);
    } catch (const RuntimeError& e) {
        throw RuntimeError(e.number(), "The database '" + target + "' cannot be made a copy of '" + source +
                                           "': " + e.description());
    }
}

}  // namespace jet
