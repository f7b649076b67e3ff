#pragma once
// The table engine: one connection to one Access database, the catalogue of its tables,
// the current table with the one record set open on it, and the cursor and cell editing
// over that record set. Every window works through the one instance gDataBase.
//
// The engine speaks only to the database layer's ADO-like surface (Connection,
// Recordset, Fields) and sends the SQL it builds by plain concatenation: names go in bare,
// so a name with a blank or a reserved word fails in the database, as users of the host
// suite know it to.
//
// Results follow the run time's habits: members that arm a handler return False (some
// with a message box) instead of raising; the mechanical cursor members pass every error
// of the record set on to the caller.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <QString>
#include <QStringList>

#include "rt/CreatedOnFirstUse.h"
#include "rt/StringList.h"
#include "jet/RuntimeError.h"

namespace jet {
class Connection;
class Field;
class Recordset;
class Variant;
}  // namespace jet
namespace host {
class FunctionLibrary;
class Registry;
class XmlDocument;
}  // namespace host
namespace lang {
class LangApp;
}

namespace engine {

class Table_Selection;

// The main module's globals that opening a database reads and writes: the login setting
// and what the login dialog hands back.
struct LoginGlobals {
    bool& useLogin;
    QString& user;
    QString& password;
    bool& accepted;
};

class XDataBase : public QObject {
    Q_OBJECT
public:
    // Reads the database folder (where the template "empty97.mdb" lies) from the
    // registry and initialises the function library. The captions are the main window's
    // (gLang), for the questions the table-file readers ask.
    XDataBase(host::Registry& registry, LoginGlobals login, const lang::LangApp& captions, QObject* parent = nullptr);
    ~XDataBase() override;

    // ---- Connection and catalogue

    // Asks for a login first when useLogin is set (a cancelled login returns False and
    // changes nothing), then opens through the Jet 3.51 provider with the login, and only
    // when that answers -2147467259 once more through 4.0 without it. Fills Tables and
    // makes the first table current. False on any other error; an error of the 4.0
    // attempt reaches the caller.
    bool OpenDataBase(const QString& fileName);
    // Replaces fileName with a copy of the template and connects to it; the first argument
    // is not used. Errors reach the caller.
    void CreateDataBase(const QString& name, const QString& fileName);

    // The file the connection is open on; "" when there is none.
    QString DataBaseFile() const;

    QString CurrentTable() const { return currentTable_; }
    // Opens the record set on the table; every error is ignored step by step, so a table
    // that does not open leaves the name set and the record set closed.
    void setCurrentTable(const QString& name);

    // Creates the table with one column "__custom" (INTEGER) and one row in it, and opens
    // the record set on it without making it the current table. "table", a reserved word,
    // becomes "table0". False on any error.
    bool CreateTable(const QString& name);
    // Makes another table current (the second when the first is dropped, else the first),
    // drops the table and removes it from Tables. Always returns False.
    bool DeleteTable(const QString& name);

    rt::StringList& Tables() const { return tables_.get(); }
    void setTables(std::shared_ptr<rt::StringList> list) { tables_.set(std::move(list)); }
    rt::StringList& Columns() const { return columns_.get(); }
    void setColumns(std::shared_ptr<rt::StringList> list) { columns_.set(std::move(list)); }

    // Plain stores for the windows and the table-file readers; the engine never reads them.
    QString NewTableName() const { return newTableName_; }
    void setNewTableName(const QString& name) { newTableName_ = name; }
    QString AddedTable() const { return addedTable_; }
    void setAddedTable(const QString& name) { addedTable_ = name; }
    QString DefaultSeparator() const { return defaultSeparator_; }
    void setDefaultSeparator(const QString& separator) { defaultSeparator_ = separator; }
    int32_t IndexOfCalculate() const { return indexOfCalculate_; }
    void setIndexOfCalculate(int32_t index) { indexOfCalculate_ = index; }

    // ---- Data source for the grids

    // "!__LIST" after a database is opened, and the name of every table created since.
    const QStringList& DataMembers() const { return dataMembers_; }
    // Re-opens the connection for client-side cursors and hands out the record set on the
    // current query (the catalogue when there is none). The data member is not looked at.
    std::shared_ptr<jet::Recordset> GetDataMember(const QString& dataMember);

    // ---- Record cursor

    // The text of the selected cells: one line per selected column (so the block is
    // transposed against the grid), its cells top to bottom joined by the separator.
    QString SelectFromTable(const Table_Selection& selection, const QString& separator);
    void ReOpen(int32_t cursorType, int32_t lockType);
    void MoveFirst();
    bool EndOfRecords();
    void Move(int32_t count);
    void MoveNext();
    QString GetCurrentRecord(const QString& fieldName);
    int32_t RecordCount();
    // Moves count records from the current one, then reads the field.
    QString Item(const QString& fieldName, int32_t count);
    // Moves count records, then writes the field; the value stays pending until AddValue
    // or AddNewLine sends the record set's changes.
    void setItem(const QString& fieldName, int32_t count, const QString& value);
    // The name of field index - 1. Captions are not stored: the let does nothing.
    QString CaptionOfField(int32_t index);
    void setCaptionOfField(int32_t index, const QString& text);

    // ---- Calculation

    // The statistic of that index (1 to 14, as the main window's commands number them)
    // over the selected cells, computed by the function library in the number type it
    // reports; "" without a current table or for another index. Errors of the record set
    // (a Null cell is 94) and of the library reach the caller. The record set stays open
    // on the last cell gathered.
    QString Calculate(const Table_Selection& selection, int32_t index);
    // The text of the column's greatest value by Val, the first of equals (so a text
    // beginning with 10 beats one beginning with 9, and texts without a number count as
    // 0). Re-opens the record set read-only and leaves it closed; "" after any error.
    QString MaxValueOfField(const QString& fieldName);
    // The least by the run time's comparison of the value with the best text so far,
    // which compares texts even on a numeric column ("10" before "9"); Nulls are passed
    // over. Otherwise as MaxValueOfField.
    QString MinValueOfField(const QString& fieldName);

    // ---- Cell, row and column editing

    // Writes the cell of that 1-based row and sends every pending change with it.
    // "Error of editing!" and False on an error.
    bool AddValue(const QString& fieldName, int32_t row, const QString& value);
    // Appends a row numbered in its first column with the new record count. False on an
    // error, without a message.
    bool AddNewLine();
    // Shows the first record's first value, then deletes the 1-based row and closes the
    // record set. On an error the error's description in a box titled "Number:" and its
    // number, and False.
    bool DeleteRecord(int32_t row);
    // The column statements on the current table; each re-opens the record set on the
    // current query and returns False on an error, without a message. The third argument
    // of ReNameField is not used.
    bool AddField(const QString& name, const QString& type);
    bool DeleteField(const QString& name);
    bool ReNameField(const QString& oldName, const QString& newName, const QString& unused);

    // ---- Table files

    // The current record set as separated text: a header of column names, then one line
    // per record, fields joined by the separator with no quoting. An empty or Null cell
    // adds nothing, not even its separator, so the values after it move one column left.
    // Traps nothing: the 3277th record overflows the progress arithmetic (error 6).
    bool SaveTable(const QString& fileName, const QString& separator);
    // The current record set in the program's XML dialect, every row in one attribute
    // joined by a separator that no value contains (ChooseSeparator). Traps nothing;
    // subscript out of range (9) when values contain all twenty candidates.
    bool SaveTableXML(const QString& fileName);
    // The current record set as an HTML page; an empty or Null cell repeats the text of
    // the cell before it. The result is never set: always False.
    bool SaveTableHTML(const QString& fileName);
    // Imports a table file as a new table by its extension: ".txt" as comma-separated
    // text, ".htm", ".html", ".shtm", ".shtml" as HTML, ".xml" in the XML dialect, anything
    // else as text separated by DefaultSeparator. True and AddedTable set when the table
    // was created and filled; the record set is then open on it.
    bool OpenTable(const QString& fileName);

    // The name of the table OpenTable makes of the file, before it asks for another one
    // because the database has a table of that name.
    static QString ImportedTableName(const QString& fileName);

    // "&", "<", ">", the double quote and the blank as HTML entities.
    static QString EncodeHtmlEntities(const QString& text);
    // The character an entity name (without "&" and ";") stands for, "" for one not known.
    static QString DecodeHtmlEntity(const QString& name);
    // The value of a cell from the raw text between its start tag and "</td>": tag pairs
    // and control characters removed, blanks trimmed and double blanks dropped, entities
    // decoded.
    static QString CleanCellText(const QString& text);

    // ---- What the rest of the program and the tests look at

    host::FunctionLibrary& functionLibrary() const { return *library_; }
    // Tables CreateTable was asked for since the engine was made, failures included.
    int32_t createdTableCount() const { return createdTableCount_; }
    // The last statement built (the current "SELECT * FROM " query after a table switch).
    QString queryText() const { return queryText_; }
    // Set by AddField: the columns have changed.
    bool columnsChanged() const { return columnsChanged_; }

signals:
    // The function library's progress, passed on unchanged.
    void CalculateProgress(double value);
    // Each connection string a connection is opened with, each SQL text sent to the
    // connection and each query a record set is opened on, at the moment it is sent.
    void ConnectionStringSent(const QString& connectionString);
    void SqlSent(const QString& sql);

private:
    static constexpr int32_t adOpenForwardOnly = 0;
    static constexpr int32_t adOpenDynamic = 2;
    static constexpr int32_t adLockBatchOptimistic = 4;

    jet::Connection& connection() const;
    void replaceConnection();
    void replaceRecordset();
    void openConnection(const QString& connectionString);
    void readCatalogue();
    // Opens the record set on the query text.
    void openQuery(int32_t cursorType = adOpenDynamic, int32_t lockType = adLockBatchOptimistic);
    // Opens the record set again with the source, connection and types it had.
    void reopenRecordset();
    void reopenIfClosed();
    void closeRecordset();
    bool recordsetOpen() const;
    void execute(const QString& sql);
    // Closes the record set, runs "ALTER TABLE <current table>" + change and opens the
    // record set again; False on an error, which is kept in lastAlterError_.
    bool alterCurrentTable(const QString& change);
    jet::Field field(const QString& name) const;
    // Walks the column on a read-only record set, keeping the first value no later one is
    // better than.
    QString scanColumn(const QString& fieldName,
                       const std::function<bool(const jet::Variant& value, const QString& best)>& better);

    // The table-file readers and what they share (engine/formats).
    bool ImportTextTable(const QString& fileName, const QString& separator);
    bool ImportXmlTable(const QString& fileName);
    bool ImportHtmlTable(const QString& fileName);
    QString ChooseSeparator();
    // Creates the table with its first column and opens a new record set on it. Returns
    // the error of a table that could not be created (the record set is then left closed);
    // an error in opening it shows when the record set is next used.
    std::optional<jet::RuntimeError> CreateImportTable(const QString& table, const QString& column, const QString& type);
    // The file's name without folder and extension ("prices" for "/a/b/prices.xml").
    static QString TableNameOfFile(const QString& fileName);
    // "table", a reserved word, as "table0".
    static QString withoutReservedWord(const QString& name);
    // Asks for another name while the name is in Tables before its last position.
    QString AvoidNameClash(QString name);
    // AddField(name, "TEXT") for a column after the first, raising what kept it from being
    // added: the values meant for it would otherwise go into the next column, or find the
    // record set closed.
    void addImportedColumn(const QString& name);
    // Makes the imported table the current one by name: in Tables, with its columns.
    void AdoptImportedTable(const QString& name, const QStringList& columns);
    // The text of the current record's cell in the 1-based column, as the writers take
    // it: "" for Null.
    QString cellText(int32_t column);
    int32_t fieldCount() const;
    // Writes the text into the field named CaptionOfField(column) of the current record.
    void setCell(int32_t column, const QString& value);

    LoginGlobals login_;
    const lang::LangApp& captions_;
    QString databaseFolder_;
    std::unique_ptr<host::FunctionLibrary> library_;
    std::shared_ptr<jet::Connection> connection_;
    std::shared_ptr<jet::Recordset> recordset_;
    std::shared_ptr<jet::Recordset> schema_;
    QString queryText_;
    QString currentTable_;
    int32_t createdTableCount_ = 0;
    bool columnsChanged_ = false;
    std::optional<jet::RuntimeError> lastAlterError_;
    rt::CreatedOnFirstUse<rt::StringList> tables_;
    rt::CreatedOnFirstUse<rt::StringList> columns_;
    QString newTableName_;
    QString addedTable_;
    QString defaultSeparator_;
    int32_t indexOfCalculate_ = 0;
    // Set after each record of a text save; computed in 16-bit arithmetic.
    double saveProgress_ = 0;
    QStringList dataMembers_;
    rt::CreatedOnFirstUse<host::XmlDocument> xmlDocument_;
};

}  // namespace engine
