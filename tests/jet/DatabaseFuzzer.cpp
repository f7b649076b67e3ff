// libFuzzer target: a mutated database file is opened from memory and read completely
// (catalogue, every table's rows and values, the text of every value, the integrity
// check). Damage must end in a RuntimeError; anything else, a crash, a hang or a
// sanitizer report, is a bug.
//
// Seeds are the fixture files; see the README's development section for the command.

#include <cstddef>
#include <cstdint>

#include "ado/Schema.h"
#include "jet/Checker.h"
#include "table/Database.h"
#include "table/Table.h"
#include "table/ValueReader.h"
#include "testkit/TestFiles.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace jet;
    std::unique_ptr<Database> db;
    try {
        db = testkit::openInMemory(std::vector<uint8_t>(data, data + size));
    } catch (const RuntimeError&) {
        return 0;
    }
    Locale locale{",", Locale::DateOrder::DayMonthYear, '.'};
    for (const CatalogEntry& e : db->catalog().entries()) {
        if (!e.isTable()) continue;
        try {
            auto table = db->openTable(e.name);
            for (RowLocation loc : table->rowLocations()) {
                RowReader row = table->reader(loc);
                for (const Column& c : table->def().columns()) {
                    Variant v = readValue(*db, c, row.column(c));
                    if (!v.isNull()) v.toString(locale);
                }
            }
        } catch (const RuntimeError&) {
        }
    }
    try {
        tablesSchema(*db, {});
    } catch (const RuntimeError&) {
    }
    check(*db);
    return 0;
}
