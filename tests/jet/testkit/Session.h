#pragma once
// A database and a connection on it, as the table engine holds them, with the shortcuts the
// tests of the ADO-like surface share: statements and their refusals, a record set on a
// table, rows sent in one batch, a column's values, the integrity checker's verdict, and
// the number of the error a call raises. Either on a file a test made or on a writable copy
// of a fixture.

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jet/Checker.h"
#include "jet/Connection.h"
#include "jet/Recordset.h"
#include "jet/RuntimeError.h"
#include "table/Database.h"
#include "table/Table.h"
#include "testkit/TestFiles.h"

namespace jet::testkit {

// The number of the run-time error the code raises, or 0 when it raises none.
inline int32_t errorNumberOf(const std::function<void()>& code) {
    try {
        code();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

// What the integrity checker found, a line per issue: "" when the file is clean.
inline std::string issuesOf(const CheckReport& report) {
    std::string found;
    for (const auto& i : report.issues) found += i.where + ": " + i.problem + "\n";
    return found;
}

struct Session {
    using Row = std::vector<std::pair<std::string, Variant>>;

    explicit Session(std::string file) : path(std::move(file)) { reopen(); }
    static Session onCopyOf(const std::string& fixture, TempDir::Place place = TempDir::Place::Disk) {
        return Session(fixture, place);
    }

    void reopen() { cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + path); }
    // Lets go of the file, so that it can be compared or handed to other readers.
    void close() {
        if (rs.State() == 1) rs.Close();
        cn.Close();
    }
    Database& db() { return *cn.database(); }
    const TableDef& def(const std::string& table) { return db().openTable(table)->def(); }
    const CatalogEntry& entry(const std::string& table) { return *db().catalog().findTable(table); }
    void execute(const std::string& sql) { cn.Execute(sql, nullptr, -1); }
    // The error number a statement fails with (0 when it succeeds); lastError keeps its text.
    int32_t errorOf(const std::string& sql) {
        try {
            execute(sql);
        } catch (const RuntimeError& e) {
            lastError = e.description();
            return e.number();
        }
        return 0;
    }
    // `rs` on every row of a table, by default with the table engine's cursor and lock.
    void open(const std::string& table, int cursor = 2, int lock = 4) {
        if (rs.State() == 1) rs.Close();
        rs.Open("SELECT * FROM [" + table + "]", cn, cursor, lock, -1);
    }
    Field field(const std::string& name) { return rs.Fields()[name]; }
    std::string text(const std::string& name) { return field(name).Value().toString(); }
    // Every value of a column, in physical order.
    std::vector<Variant> column(const std::string& table, const std::string& name) {
        Recordset r;
        r.Open("SELECT * FROM [" + table + "]", cn, 2, 4, -1);
        std::vector<Variant> values;
        for (r.MoveFirst(); !r.Eof(); r.MoveNext()) values.push_back(r.Fields()[name].Value());
        return values;
    }
    // New rows with the values given by column name, sent at once.
    void addRows(const std::string& table, const std::vector<Row>& rows) {
        Recordset r;
        r.Open("SELECT * FROM [" + table + "]", cn, 2, 4, -1);
        for (const Row& row : rows) {
            r.AddNew();
            for (const auto& [name, v] : row) r.Fields()[name].setValue(v);
        }
        r.UpdateBatch(3);
    }
    void expectClean() { EXPECT_EQ("", issuesOf(check(db()))); }

    std::optional<WritableCopy> copy;  // the fixture's copy the session works on, if any
    std::string path;
    Connection cn;
    Recordset rs;
    std::string lastError;

private:
    Session(const std::string& fixture, TempDir::Place place) : copy(std::in_place, fixture, place), path(copy->path()) {
        reopen();
    }
};

}  // namespace jet::testkit
