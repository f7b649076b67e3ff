// Creation, the connection and catalogue, table switches and the data-source role.
//
// Invariants:
//  - At most one record set is open: the engine's own. Replacing it closes the old one
//    first, and it is only ever opened on the current connection.
//  - Replacing the connection closes the record set and starts a fresh one, since the
//    database layer cannot hold one file open twice and a record set must never refer to
//    a connection that is gone.
//  - Every connection string and every SQL text goes out through openConnection,
//    openQuery/reopenRecordset or execute, which announce it first.

#include "engine/XDataBase.h"

#include "host/FunctionLibrary.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"
#include "rt/ErrorTrap.h"
#include "rt/FileSystemObject.h"
#include "rt/HostPath.h"
#include "rt/UiServices.h"
#include "rt/VariantText.h"
#include "rt/VbError.h"

namespace engine {

namespace {

// Only user tables: no system tables, views or queries.
std::vector<jet::Variant> userTablesOnly()
{
    return {jet::Variant(), jet::Variant(), jet::Variant(), jet::Variant::string("TABLE")};
}

}  // namespace

XDataBase::XDataBase(host::Registry& registry, LoginGlobals login, const lang::LangApp& captions, QObject* parent)
    : QObject(parent), login_(login), captions_(captions), library_(std::make_unique<host::FunctionLibrary>(registry))
{
    databaseFolder_ = registry.read(host::HKEY_LOCAL_MACHINE, host::keys::Database, QString());
    recordset_ = std::make_shared<jet::Recordset>();
    connect(library_.get(), &host::FunctionLibrary::ProgressChange, this, &XDataBase::CalculateProgress);
    library_->Initialize();
}

XDataBase::~XDataBase()
{
    library_->Release();
}

jet::Connection& XDataBase::connection() const
{
    if (!connection_)
        throw rt::vbError(rt::vberr::ObjectNotSet);
    return *connection_;
}

bool XDataBase::recordsetOpen() const
{
    return recordset_->State() == jet::ado::StateOpen;
}

void XDataBase::closeRecordset()
{
    if (recordsetOpen())
        recordset_->Close();
}

void XDataBase::replaceRecordset()
{
    closeRecordset();
    recordset_ = std::make_shared<jet::Recordset>();
}

void XDataBase::replaceConnection()
{
    replaceRecordset();
    schema_.reset();
    connection_.reset();
    connection_ = std::make_shared<jet::Connection>();
}

void XDataBase::openConnection(const QString& connectionString)
{
    jet::Connection& c = connection();
    c.setConnectionString(connectionString.toStdString());
    emit ConnectionStringSent(connectionString);
    c.Open();
}

void XDataBase::openQuery(int32_t cursorType, int32_t lockType)
{
    jet::Connection& c = connection();
    emit SqlSent(queryText_);
    recordset_->Open(queryText_.toStdString(), c, cursorType, lockType, -1);
}

void XDataBase::reopenRecordset()
{
    emit SqlSent(QString::fromStdString(recordset_->Source()));
    recordset_->Open();
}

void XDataBase::reopenIfClosed()
{
    if (!recordsetOpen())
        reopenRecordset();
}

void XDataBase::execute(const QString& sql)
{
    jet::Connection& c = connection();
    emit SqlSent(sql);
    c.Execute(sql.toStdString(), nullptr, -1);
}

// ---- Connection and catalogue

void XDataBase::readCatalogue()
{
    schema_ = connection().OpenSchema(jet::ado::SchemaTables, userTablesOnly());
    dataMembers_.clear();
    dataMembers_.append(QStringLiteral("!__LIST"));
    for (; !schema_->Eof(); schema_->MoveNext())
        Tables().Add(rt::CStr(schema_->Fields()["TABLE_NAME"].Value()));
    // An empty catalogue reads item 1 as "", which opens nothing.
    setCurrentTable(Tables().Item(1));
}

bool XDataBase::OpenDataBase(const QString& fileName)
{
    bool cancelled = false;
    const auto error = rt::trapError([&] {
        if (login_.useLogin) {
            rt::UiServices::current().showModalForm(QStringLiteral("frmLogin"), QStringLiteral("frmTable"));
            // A login closed by its frame button leaves the flag of the showing before.
            if (!login_.accepted) {
                cancelled = true;
                return;
            }
        }
        replaceConnection();
        Tables().Clear();
        openConnection(QStringLiteral("Provider=microsoft.jet.OLEDB.3.51;Data Source=") + fileName +
                       QStringLiteral(";User ID=") + login_.user + QStringLiteral(";Password=") + login_.password +
                       QStringLiteral(";"));
        login_.user.clear();
        login_.password.clear();
        readCatalogue();
    });
    if (cancelled)
        return false;
    if (!error)
        return true;
    if (error->number() != jet::err::Unspecified)
        return false;

    // Jet 3.51 says this of a file in a newer format: one more try with 4.0, and this
    // time without the login. Whatever fails now is the caller's to report.
    if (connection().State() == jet::ado::StateOpen)
        connection().Close();
    openConnection(QStringLiteral("Provider=microsoft.jet.OLEDB.4.0;Data Source=") + fileName);
    readCatalogue();
    return true;
}

QString XDataBase::DataBaseFile() const
{
    if (!connection_ || connection_->State() != jet::ado::StateOpen)
        return QString();
    const QString text = QString::fromStdString(connection_->ConnectionString());
    const QString key = QStringLiteral("Data Source=");
    const qsizetype start = text.indexOf(key, 0, Qt::CaseInsensitive);
    if (start < 0)
        return QString();
    const qsizetype from = start + key.size();
    const qsizetype end = text.indexOf(u';', from);
    return text.mid(from, end < 0 ? -1 : end - from);
}

void XDataBase::CreateDataBase(const QString& /*name*/, const QString& fileName)
{
    replaceConnection();
    const QString templateFile = rt::localPath(databaseFolder_ + QStringLiteral("\\") + host::keys::TemplateDatabase);
    // A missing template or a target in use answers with the file-system object's numbers;
    // the copy itself is the engine's, so a rollback journal a crash left beside the target
    // is discarded, never applied to the fresh copy.
    rt::CheckCopyFile(templateFile, fileName, true);
    jet::copyDatabase(templateFile.toStdString(), fileName.toStdString());
    openConnection(QStringLiteral("Provider=microsoft.jet.OLEDB.3.51;Data Source=") + fileName);
}

void XDataBase::setCurrentTable(const QString& name)
{
    rt::resumeNext({
        [&] { currentTable_ = name; },
        [&] { queryText_ = QStringLiteral("SELECT * FROM ") + name; },
        [&] { closeRecordset(); },
        [&] { openQuery(); },
        [&] { Columns().Clear(); },
        [&] {
            const jet::Fields& fields = recordset_->Fields();
            for (int32_t i = 0; i < fields.Count(); ++i)
                Columns().Add(QString::fromStdString(fields[i].Name()));
        },
    });
}

bool XDataBase::CreateTable(const QString& name)
{
    return !rt::trapError([&] {
        ++createdTableCount_;
        const QString table = withoutReservedWord(name);
        dataMembers_.append(table);
        queryText_ = QStringLiteral("CREATE TABLE ") + table + QStringLiteral(" (__custom INTEGER);");
        execute(queryText_);
        replaceRecordset();
        queryText_ = QStringLiteral("SELECT * FROM ") + table;
        openQuery();
        recordset_->AddNew();
        recordset_->Update();
        recordset_->MoveFirst();
        recordset_->Update();
        Columns().Add(QStringLiteral("__custom"));
    });
}

QString XDataBase::withoutReservedWord(const QString& name)
{
    // Jet reserves the word; only this spelling is changed.
    return name == u"table" ? QStringLiteral("table0") : name;
}

bool XDataBase::DeleteTable(const QString& name)
{
    // Callers never look at the result: it stays False whatever happens.
    rt::trapError([&] {
        closeRecordset();
        // A name the list lacks ends at its last entry, which is then the one removed.
        int32_t i = 1;
        while (Tables().Item(i) != name && i < Tables().Count())
            ++i;
        setCurrentTable(Tables().Item(i == 1 ? 2 : 1));
        execute(QStringLiteral("DROP TABLE ") + name + QStringLiteral(";"));
        Tables().Remove(i);
    });
    return false;
}

// ---- Data source

std::shared_ptr<jet::Recordset> XDataBase::GetDataMember(const QString& /*dataMember*/)
{
    closeRecordset();
    jet::Connection& c = connection();
    c.setCursorLocation(jet::ado::UseClient);
    c.Close();
    emit ConnectionStringSent(QString::fromStdString(c.ConnectionString()));
    c.Open();
    if (queryText_.isEmpty())
        return c.OpenSchema(jet::ado::SchemaTables, userTablesOnly());
    openQuery();
    return recordset_;
}

}  // namespace engine
