#include "jet/Connection.h"

#include "ado/ConnectionString.h"
#include "ado/Schema.h"
#include "base/Utf.h"
#include "jet/Recordset.h"
#include "os/Env.h"
#include "sql/SchemaWriter.h"
#include "sql/SqlParser.h"
#include "table/Database.h"

namespace jet {

namespace {

RuntimeError closedError() {
    return RuntimeError(err::NotAllowedNow, "Operation is not allowed when the object is closed.");
}

}  // namespace

Connection::Connection() : env_(Env::posix()) {}
Connection::Connection(Env& env) : env_(env) {}
Connection::~Connection() = default;

void Connection::setConnectionString(std::string text) {
    if (db_) throw RuntimeError(err::NotAllowedOpen, "Operation is not allowed when the object is open.");
    connectionString_ = std::move(text);
}

void Connection::Open(const std::string& connectionString, const std::string& userId, const std::string& password,
                      int32_t) {
    if (db_) throw RuntimeError(err::NotAllowedOpen, "Operation is not allowed when the object is open.");
    if (!connectionString.empty()) connectionString_ = connectionString;
    ConnectionSettings s = ConnectionSettings::parse(connectionString_);
    if (!userId.empty()) s.userId = userId;
    if (!password.empty()) s.password = password;

    bool jet3Only;
    if (equalsIgnoreCase(s.provider, "microsoft.jet.OLEDB.3.51")) jet3Only = true;
    else if (equalsIgnoreCase(s.provider, "microsoft.jet.OLEDB.4.0")) jet3Only = false;
    else if (s.provider.empty())
        throw RuntimeError(err::Unspecified, "Data source name not found and no default driver specified");
    else
        throw RuntimeError(err::ProviderNotFound, "Provider cannot be found. It may not be properly installed.");
    if (s.dataSource.empty()) throw RuntimeError(err::Unspecified, "Could not find file ''.");

    std::shared_ptr<Database> db = Database::open(s.dataSource, env_);
    if (jet3Only && db->version() != Version::Jet3)
        throw RuntimeError(err::Unspecified, "Unrecognized database format '" + s.dataSource + "'.");
    // Without a database password, user and password belong to the workgroup and are ignored.
    if (!db->header().password().empty() && !db->header().passwordMatches(s.password))
        throw RuntimeError(err::WrongPassword, "Not a valid password.");
    db_ = std::move(db);
}

void Connection::Close() {
    if (!db_) throw closedError();
    db_.reset();
}

std::shared_ptr<Database> Connection::database() const {
    if (!db_) throw closedError();
    return db_;
}

void Connection::Execute(const std::string& commandText, int32_t* recordsAffected, int32_t) {
    if (!db_) throw closedError();
    const sql::Statement statement = sql::parse(commandText);
    SchemaWriter(*db_).run(statement);
    if (recordsAffected) *recordsAffected = 0;
}

std::shared_ptr<Recordset> Connection::OpenSchema(int32_t schema, const std::vector<Variant>& restrictions) {
    if (!db_) throw closedError();
    if (schema != ado::SchemaTables)
        throw RuntimeError(err::NotSupported, "Object or provider is not capable of performing requested operation.");
    auto rs = std::make_shared<Recordset>();
    rs->openSource(tablesSchema(*db_, restrictions));
    return rs;
}

}  // namespace jet
