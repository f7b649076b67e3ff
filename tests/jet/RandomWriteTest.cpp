// Random operation sequences on a real table, applied both to the file (through the record
// set, as the table engine writes) and to a model in memory, compared after every step:
// inserts, updates and deletes with memo and OLE values of every size class, and keys that
// collide with a unique index, which must be refused with nothing changed. Both versions.
// The default run is short; the "long" build of this file runs thousands of sequences.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>

#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Recordset.h"
#include "table/Database.h"
#include "table/Table.h"
#include "testkit/Session.h"
#include "testkit/ValueSamples.h"

#ifndef SHEETWRIGHT_LONG_RUN
#define SHEETWRIGHT_LONG_RUN 0
#endif

namespace {

using jet::Variant;

constexpr int sequences = SHEETWRIGHT_LONG_RUN ? 1500 : 40;
constexpr int stepsPerSequence = SHEETWRIGHT_LONG_RUN ? 40 : 30;

// The columns the model follows, by name; PROJ_ID and PROJ_NAME carry unique indexes.
const char* const keyColumn = "PROJ_ID";
const char* const nameColumn = "PROJ_NAME";
const char* const memoColumn = "PROJ_PROP_AUTHOR";
const char* const oleColumn = "RESERVED_BINARY_DATA";
const char* const flagColumn = "PROJ_OPT_CALC_ACT_COSTS";

struct ModelRow {
    Variant name, memo, ole, flag;
    bool operator==(const ModelRow&) const = default;
};
using Model = std::map<int32_t, ModelRow>;

class Sequence {
public:
    Sequence(const std::string& file, uint64_t seed)
        : copy_(file, jet::testkit::TempDir::Place::InMemory), rng_(seed) {
        cn_.Open(copy_.connectionString());
        rs_.Open("SELECT * FROM MSP_PROJECTS", cn_, 2, 4);
        table_ = cn_.database()->openTable("MSP_PROJECTS");
        for (const auto& c : table_->def().columns()) columns_[c.name] = &c;
        version_ = cn_.database()->version();
        for (rs_.MoveFirst(); !rs_.Eof(); rs_.MoveNext()) model_[rs_.Fields()[keyColumn].Value().asLong()] = current();
    }

    void run(int steps) {
        for (int step = 0; step < steps; ++step) {
            const int dice = int(rng_() % 100);
            SCOPED_TRACE("step " + std::to_string(step) + " dice " + std::to_string(dice));
            if (dice < 40 || model_.empty()) insert();
            else if (dice < 75) update();
            else remove();
            compareThroughRecordset();
            if (::testing::Test::HasFailure()) return;
            if (step % 10 == 9) reopenAndCheck();
        }
        reopenAndCheck();
    }

private:
    Variant sample(const char* column) {
        return jet::testkit::sampleValue(*columns_.at(column), version_, rng_, rng_() % 1000000);
    }
    Variant randomName() {
        if (rng_() % 8 == 0) return Variant::null();
        // A small pool, so names collide now and then; sometimes long enough to move the row.
        std::string name = "name " + std::to_string(rng_() % 60);
        if (rng_() % 4 == 0) name += std::string(150 + rng_() % 90, 'n');
        return Variant::string(name);
    }
    ModelRow randomRow() {
        return {randomName(), rng_() % 6 == 0 ? Variant::null() : sample(memoColumn),
                rng_() % 6 == 0 ? Variant::null() : sample(oleColumn), Variant::boolean(rng_() & 1)};
    }
    bool nameTaken(const Variant& name, std::optional<int32_t> except) const {
        if (name.isNull()) return false;
        for (const auto& [id, row] : model_)
            if (id != except && !row.name.isNull() && row.name.asString() == name.asString()) return true;
        return false;
    }
    ModelRow current() {
        auto f = [&](const char* c) { return rs_.Fields()[c].Value(); };
        return {f(nameColumn), f(memoColumn), f(oleColumn), f(flagColumn)};
    }
    void assign(const ModelRow& row) {
        rs_.Fields()[nameColumn].setValue(row.name);
        rs_.Fields()[memoColumn].setValue(row.memo);
        rs_.Fields()[oleColumn].setValue(row.ole);
        rs_.Fields()[flagColumn].setValue(row.flag);
    }
    // Sends the current row; true when it went in, false when the unique indexes refused it.
    bool send(bool expectDuplicate) {
        try {
            rs_.Update();
        } catch (const jet::RuntimeError& e) {
            EXPECT_TRUE(expectDuplicate) << e.number() << " " << e.description();
            EXPECT_EQ(jet::err::IntegrityViolation, e.number());
            rs_.CancelUpdate();
            return false;
        }
        EXPECT_FALSE(expectDuplicate) << "a duplicate key was accepted";
        return true;
    }
    void moveTo(int32_t id) {
        for (rs_.MoveFirst(); !rs_.Eof(); rs_.MoveNext())
            if (rs_.Fields()[keyColumn].Value().asLong() == id) return;
        FAIL() << "row " << id << " is missing";
    }
    int32_t randomExisting() {
        auto it = model_.begin();
        std::advance(it, rng_() % model_.size());
        return it->first;
    }

    void insert() {
        const int32_t id = int32_t(rng_() % 90);
        ModelRow row = randomRow();
        rs_.AddNew();
        rs_.Fields()[keyColumn].setValue(Variant::longValue(id));
        assign(row);
        if (send(model_.count(id) || nameTaken(row.name, std::nullopt))) model_[id] = row;
    }
    void update() {
        const int32_t id = randomExisting();
        moveTo(id);
        ModelRow row = model_[id];
        int32_t newId = id;
        switch (rng_() % 5) {
        case 0: row.name = randomName(); break;
        case 1: row.memo = sample(memoColumn); break;
        case 2: row.ole = sample(oleColumn); break;
        case 3: newId = int32_t(rng_() % 90); break;
        default: row = randomRow(); break;
        }
        if (newId != id) rs_.Fields()[keyColumn].setValue(Variant::longValue(newId));
        assign(row);
        const bool duplicate = (newId != id && model_.count(newId)) || nameTaken(row.name, id);
        if (send(duplicate)) {
            model_.erase(id);
            model_[newId] = row;
        }
    }
    void remove() {
        const int32_t id = randomExisting();
        moveTo(id);
        rs_.Delete(1);
        model_.erase(id);
    }

    void compareThroughRecordset() {
        ASSERT_EQ(int(model_.size()), rs_.RecordCount());
        Model seen;
        if (rs_.RecordCount() > 0)
            for (rs_.MoveFirst(); !rs_.Eof(); rs_.MoveNext()) seen[rs_.Fields()[keyColumn].Value().asLong()] = current();
        ASSERT_EQ(model_.size(), seen.size());
        for (const auto& [id, row] : model_) {
            ASSERT_TRUE(seen.count(id)) << id;
            EXPECT_TRUE(seen[id] == row) << "row " << id << " differs";
        }
    }
    void reopenAndCheck() {
        rs_.Close();
        rs_.Open("SELECT * FROM MSP_PROJECTS", cn_, 2, 4);
        compareThroughRecordset();
        EXPECT_EQ("", jet::testkit::issuesOf(jet::check(*cn_.database())));
    }

    jet::testkit::WritableCopy copy_;
    std::mt19937_64 rng_;
    jet::Connection cn_;
    jet::Recordset rs_;
    std::shared_ptr<jet::Table> table_;  // keeps the definition the column pointers point into
    std::map<std::string, const jet::Column*> columns_;
    jet::Version version_ = jet::Version::Jet4;
    Model model_;
};

class RandomWrites : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(BothVersions, RandomWrites, ::testing::Values("test2V1997.mdb", "test2V2003.mdb"));

TEST_P(RandomWrites, TheFileFollowsTheModelAfterEveryStep) {
    for (int k = 0; k < sequences; ++k) {
        SCOPED_TRACE("sequence " + std::to_string(k));
        Sequence(GetParam(), 0x5EED0000u + uint64_t(k)).run(stepsPerSequence);
        if (HasFailure()) return;
    }
    std::printf("%d sequences of %d steps on %s\n", sequences, stepsPerSequence, GetParam());
}

}  // namespace
