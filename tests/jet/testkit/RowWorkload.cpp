#include "RowWorkload.h"

#include <stdexcept>

#include "jet/Checker.h"
#include "table/Database.h"
#include "table/Table.h"
#include "table/TableWriter.h"
#include "table/Transaction.h"
#include "table/ValueReader.h"

namespace jet::testkit {

namespace {

constexpr int32_t firstId = 1000;
const char* const table = "MSP_PROJECTS";

std::string memoOf(uint64_t k, bool rewritten) {
    const size_t sizes[] = {20, 1500, 9000};
    return std::string(sizes[k % 3] + (rewritten ? 7 : 0), char((rewritten ? 'A' : 'a') + k % 26));
}

size_t columnIndex(const TableDef& def, const char* name) {
    for (size_t i = 0; i < def.columns().size(); ++i)
        if (def.columns()[i].name == name) return i;
    throw std::logic_error(std::string("no column ") + name);
}

}  // namespace

std::map<int32_t, std::string> RowWorkload::expected(uint64_t transactions) {
    std::map<int32_t, std::string> rows;
    for (uint64_t k = 1; k <= transactions; ++k) {
        rows[firstId + int32_t(k)] = memoOf(k, false);
        if (k % 3 == 0) rows[firstId + int32_t(k) - 1] = memoOf(k - 1, true);
        if (k % 4 == 0) rows.erase(firstId + int32_t(k) - 2);
    }
    return rows;
}

void RowWorkload::transaction(Database& db, uint64_t k) {
    Transaction tx(db);
    TableWriter& writer = tx.table(table);
    const TableDef& def = writer.def();
    const size_t id = columnIndex(def, "PROJ_ID"), name = columnIndex(def, "PROJ_NAME"),
                 memo = columnIndex(def, "PROJ_PROP_AUTHOR");
    std::vector<Variant> values(def.columns().size());
    values[id] = Variant::longValue(firstId + int32_t(k));
    values[name] = Variant::string("row " + std::to_string(k));
    values[memo] = Variant::string(memoOf(k, false));
    writer.insert(values);
    auto locate = [&](int32_t wanted) -> std::optional<RowLocation> {
        auto t = db.openTable(table);
        for (RowLocation at : t->rowLocations())
            if (readValue(db, def.columns()[id], t->reader(at).column(def.columns()[id])).asLong() == wanted) return at;
        return std::nullopt;
    };
    if (k % 3 == 0)
        if (auto at = locate(firstId + int32_t(k) - 1)) writer.update(*at, {{memo, Variant::string(memoOf(k - 1, true))}});
    if (k % 4 == 0)
        if (auto at = locate(firstId + int32_t(k) - 2)) writer.remove(*at);
    tx.commit();
}

std::map<int32_t, std::string> RowWorkload::rowsOf(Database& db) {
    CheckReport report = check(db);
    if (!report.clean()) throw std::runtime_error("the file does not check clean: " + report.issues.front().where + ": " +
                                                  report.issues.front().problem);
    auto t = db.openTable(table);
    const TableDef& def = t->def();
    const Column& id = def.columns()[columnIndex(def, "PROJ_ID")];
    const Column& memo = def.columns()[columnIndex(def, "PROJ_PROP_AUTHOR")];
    std::map<int32_t, std::string> rows;
    for (RowLocation at : t->rowLocations()) {
        auto reader = t->reader(at);
        const int32_t key = readValue(db, id, reader.column(id)).asLong();
        if (key >= firstId) rows[key] = readValue(db, memo, reader.column(memo)).asString();
    }
    return rows;
}

void RowWorkload::runTransactions(Env& env, const std::string& path, uint64_t next,
                                  const std::function<void(uint64_t)>& committed) {
    auto db = Database::open(path, env);
    for (uint64_t k = next;; ++k) {
        transaction(*db, k);
        committed(k);
    }
}

CommittedState RowWorkload::committedState(const std::string& path) {
    auto db = Database::open(path);
    CommittedState state;
    state.rolledBack = db->pager().recovery().outcome == JournalRecovery::Outcome::RolledBack;
    const auto rows = rowsOf(*db);
    state.transaction = rows.empty() ? 0 : uint64_t(rows.rbegin()->first - firstId);
    if (rows != expected(state.transaction))
        throw std::runtime_error("the rows are not those after transaction " + std::to_string(state.transaction));
    return state;
}

}  // namespace jet::testkit
