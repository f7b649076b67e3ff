#include "jet/Recordset.h"

#include <algorithm>
#include <cctype>

#include "ado/TableRecordSource.h"
#include "base/Utf.h"
#include "jet/Connection.h"
#include "table/Database.h"

namespace jet {

namespace {

RuntimeError noCurrentRecord() {
    return RuntimeError(err::NoCurrentRecord,
                        "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
                        "requires a current record.");
}

// The table name of "SELECT * FROM name"; empty when the text is something else.
std::string selectAllTable(std::string_view sql) {
    auto skipSpace = [&](size_t& i) {
        while (i < sql.size() && std::isspace(static_cast<unsigned char>(sql[i]))) ++i;
    };
    auto keyword = [&](size_t& i, std::string_view word) {
        skipSpace(i);
        if (sql.size() - i < word.size() || !equalsIgnoreCase(sql.substr(i, word.size()), word)) return false;
        i += word.size();
        return i == sql.size() || !std::isalnum(static_cast<unsigned char>(sql[i])) || word == "*";
    };
    size_t i = 0;
    if (!keyword(i, "SELECT") || !keyword(i, "*") || !keyword(i, "FROM")) return {};
    skipSpace(i);
    std::string name;
    if (i < sql.size() && sql[i] == '[') {
        size_t end = sql.find(']', i);
        if (end == std::string_view::npos) return {};
        name = sql.substr(i + 1, end - i - 1);
        i = end + 1;
    } else {
        size_t start = i;
        while (i < sql.size() && !std::isspace(static_cast<unsigned char>(sql[i])) && sql[i] != ';') ++i;
        name = sql.substr(start, i - start);
    }
    skipSpace(i);
    if (i < sql.size() && sql[i] == ';') ++i;
    skipSpace(i);
    return i == sql.size() ? name : std::string();
}

}  // namespace

Recordset::Recordset() : fields_(*this) {}
Recordset::~Recordset() = default;

void Recordset::Open(const std::string& source, Connection& connection, int32_t cursorType, int32_t lockType,
                     int32_t options) {
    if (data_) throw RuntimeError(err::NotAllowedOpen, "Operation is not allowed when the object is open.");
    std::shared_ptr<Database> db = connection.database();
    std::string table;
    if (options == ado::CmdTable || options == ado::CmdTableDirect) table = source;
    else table = selectAllTable(source);
    if (table.empty())
        throw RuntimeError(err::SyntaxError,
                           "Invalid SQL statement; only SELECT * FROM a table can be opened as a record set.");
    auto data = std::make_shared<TableRecordSource>(db, db->openTable(table));
    source_ = source;
    connection_ = &connection;
    cursorType_ = cursorType;
    lockType_ = lockType;
    options_ = options;
    openSource(data);
    table_ = std::move(data);
}

void Recordset::Open() {
    if (!connection_) throw RuntimeError(err::NotAllowedNow, "Operation is not allowed when the object is closed.");
    Open(source_, *connection_, cursorType_, lockType_, options_);
}

void Recordset::openSource(std::shared_ptr<RecordSource> source) {
    data_ = std::move(source);
    table_.reset();
    position_ = 0;
}

void Recordset::Close() {
    requireOpen();
    data_.reset();
    table_.reset();
}

TableRecordSource& Recordset::requireUpdatable() const {
    requireOpen();
    if (!table_ || (lockType_ != 2 && lockType_ != 3 && lockType_ != 4))
        throw RuntimeError(err::NotSupported, "Current Recordset does not support updating. This may be a limitation "
                                              "of the provider, or of the selected locktype.");
    return *table_;
}

void Recordset::leaveRow() {
    if (batchMode() || !table_ || position_ < 0 || position_ >= int64_t(table_->rowCount())) return;
    if (table_->hasPending(size_t(position_))) table_->send({size_t(position_)});
}

void Recordset::setValueAt(size_t field, const Variant& value) {
    TableRecordSource& t = requireUpdatable();
    requireCurrent();
    t.assign(size_t(position_), field, value);
}

void Recordset::AddNew() {
    TableRecordSource& t = requireUpdatable();
    leaveRow();
    position_ = int64_t(t.addNew());
}

void Recordset::Update() {
    TableRecordSource& t = requireUpdatable();
    requireCurrent();
    if (t.hasPending(size_t(position_))) t.send({size_t(position_)});
}

void Recordset::UpdateBatch(int32_t affectRecords) {
    TableRecordSource& t = requireUpdatable();
    if (affectRecords == 1) return Update();
    t.send(t.pendingRows());
}

void Recordset::CancelUpdate() {
    TableRecordSource& t = requireUpdatable();
    if (position_ < 0 || position_ >= int64_t(t.rowCount())) return;
    const bool wasNew = t.isNew(size_t(position_));
    t.cancel(size_t(position_));
    if (wasNew) position_ = std::min<int64_t>(position_, int64_t(t.rowCount()) - 1);
}

void Recordset::CancelBatch(int32_t affectRecords) {
    TableRecordSource& t = requireUpdatable();
    if (affectRecords == 1) return CancelUpdate();
    t.cancelAll();
    position_ = std::min<int64_t>(position_, int64_t(t.rowCount()));
}

void Recordset::Delete(int32_t affectRecords) {
    TableRecordSource& t = requireUpdatable();
    if (affectRecords != 1)
        throw RuntimeError(err::NotSupported, "Object or provider is not capable of performing requested operation.");
    requireCurrent();
    t.remove(size_t(position_));
}

int32_t Recordset::State() const { return data_ ? ado::StateOpen : ado::StateClosed; }

void Recordset::requireOpen() const {
    if (!data_) throw RuntimeError(err::NotAllowedNow, "Operation is not allowed when the object is closed.");
}

void Recordset::requireCurrent() const {
    requireOpen();
    if (Bof() || Eof()) throw noCurrentRecord();
}

int32_t Recordset::RecordCount() const {
    requireOpen();
    return int32_t(data_->rowCount());
}

bool Recordset::Eof() const {
    requireOpen();
    return position_ >= int64_t(data_->rowCount());
}

bool Recordset::Bof() const {
    requireOpen();
    return position_ < 0 || data_->rowCount() == 0;
}

void Recordset::MoveFirst() {
    requireOpen();
    leaveRow();
    if (data_->rowCount() == 0) throw noCurrentRecord();
    position_ = 0;
}

void Recordset::MoveLast() {
    requireOpen();
    leaveRow();
    if (data_->rowCount() == 0) throw noCurrentRecord();
    position_ = int64_t(data_->rowCount()) - 1;
}

void Recordset::MoveNext() {
    if (Eof()) throw noCurrentRecord();
    leaveRow();
    ++position_;
}

void Recordset::MovePrevious() {
    requireOpen();
    leaveRow();
    if (position_ < 0 || data_->rowCount() == 0) throw noCurrentRecord();
    --position_;
}

void Recordset::Move(int32_t count) {
    requireOpen();
    leaveRow();
    const int64_t n = int64_t(data_->rowCount());
    if (n == 0 || (count > 0 && position_ >= n) || (count < 0 && position_ < 0) ||
        (count == 0 && (position_ < 0 || position_ >= n)))
        throw noCurrentRecord();
    position_ = std::clamp<int64_t>(position_ + count, -1, n);
}

int32_t Recordset::AbsolutePosition() const {
    requireOpen();
    if (position_ < 0) return -2;
    if (Eof()) return -3;
    return int32_t(position_ + 1);
}

const RecordSource& Recordset::source() const {
    requireOpen();
    return *data_;
}

Variant Recordset::valueAt(size_t field) const {
    requireCurrent();
    return data_->value(size_t(position_), field);
}

}  // namespace jet
