#pragma once
// The ADO-like connection: a connection string naming a provider and a file, Open and
// Close, and the tables schema. The two providers behave as Jet's do: "3.51" opens Jet 3
// files only and answers a Jet 4 file with -2147467259 (so the caller retries with
// "4.0"); "4.0" opens both.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jet/AdoConstants.h"
#include "jet/Variant.h"

namespace jet {

class Database;
class Env;
class Recordset;

class Connection {
public:
    Connection();
    explicit Connection(Env& env);
    ~Connection();

    const std::string& ConnectionString() const { return connectionString_; }
    void setConnectionString(std::string text);
    int32_t CursorLocation() const { return cursorLocation_; }
    void setCursorLocation(int32_t location) { cursorLocation_ = location; }

    // Empty arguments keep what the connection string says; a non-empty user or password
    // overrides it, as ADO's Open arguments do.
    void Open(const std::string& connectionString = "", const std::string& userId = "",
              const std::string& password = "", int32_t options = -1);
    void Close();
    int32_t State() const { return db_ ? ado::StateOpen : ado::StateClosed; }

    // Runs one of the data-definition statements the SQL front end knows (SqlParser.h):
    // CREATE TABLE, ALTER TABLE ... ADD/DROP/RENAME, DROP TABLE. Each is one transaction,
    // all of it or nothing. `recordsAffected`, when given, is set to 0 as Jet reports for
    // such statements; options are taken as ADO takes them (the program sends -1).
    void Execute(const std::string& commandText, int32_t* recordsAffected = nullptr, int32_t options = -1);

    // Schema rowsets; only the tables schema (20) exists. Restrictions: catalog, schema,
    // table name, table type ("TABLE", "SYSTEM TABLE", "ACCESS TABLE", "LINK",
    // "PASS-THROUGH"); Empty entries do not restrict.
    std::shared_ptr<Recordset> OpenSchema(int32_t schema, const std::vector<Variant>& restrictions = {});

    // The open database (run-time error 3704 when closed).
    std::shared_ptr<Database> database() const;

private:
    Env& env_;
    std::string connectionString_;
    int32_t cursorLocation_ = ado::UseServer;
    std::shared_ptr<Database> db_;
};

}  // namespace jet
