#pragma once
// The ADO-like record set over "SELECT * FROM table": the table's rows in physical order
// and a current position among them.
//
// Invariants:
//  - Position runs from -1 (BOF) to RecordCount (EOF); a field is readable only in
//    between. Moving on from EOF (or back from BOF) is ADO's run-time error 3021.
//  - Rows are decoded only when a field of the current record is read (RecordSource).
//  - Everything a field returns goes through valueAt(), the one place where values that
//    are written but not yet sent will be found before the file's values.
//  - Writes need a table source and a lock type that allows them (2 pessimistic, 3
//    optimistic, 4 batch-optimistic); anything else is ADO's error 3251.
//  - With lock type 4 assigned values stay pending until Update (the current row) or
//    UpdateBatch (every row) sends them; with 2 and 3, as in ADO, leaving an edited row
//    (a move, AddNew) sends it too. Close drops whatever was never sent.
//  - Delete removes the current row from the file at once, in batch mode too. ADO would
//    keep a batch-mode delete pending until UpdateBatch, but the table engine deletes,
//    moves and closes, and expects the row gone: a delete that Close would silently undo
//    is the one behaviour a user could never want.

#include <cstdint>
#include <memory>
#include <string>

#include "jet/Field.h"

namespace jet {

class Connection;
class RecordSource;
class TableRecordSource;

class Recordset {
public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    // Source "SELECT * FROM name" (keywords and name without case; the name may be in
    // brackets), or a bare table name with options adCmdTable (2) or adCmdTableDirect (512).
    // Cursor types are accepted as ADO takes them: every cursor here sees the rows it adds
    // and deletes itself. Lock type -1 (unspecified) is ADO's default, read-only.
    void Open(const std::string& source, Connection& connection, int32_t cursorType = -1, int32_t lockType = -1,
              int32_t options = -1);
    // Opens again with the previous source and connection (all arguments missing).
    void Open();
    void Close();
    int32_t State() const;

    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();
    // Relative to the current record; landing beyond either end leaves the record set at
    // EOF or BOF.
    void Move(int32_t count);
    bool Eof() const;
    bool Bof() const;
    int32_t RecordCount() const;
    // 1-based position of the current record (-1 at BOF, -3 at EOF as ADO reports).
    int32_t AbsolutePosition() const;
    const std::string& Source() const { return source_; }

    // Writing. Each call that reaches the file is one transaction: all of it or nothing.
    void AddNew();
    void Update();
    // affectRecords: 1 (adAffectCurrent) the current row, 3 (adAffectAll) every pending row.
    void UpdateBatch(int32_t affectRecords = 3);
    void CancelUpdate();
    void CancelBatch(int32_t affectRecords = 3);
    // affectRecords: 1 (adAffectCurrent) only.
    void Delete(int32_t affectRecords = 1);
    int32_t LockType() const { return lockType_; }
    int32_t CursorType() const { return cursorType_; }

    jet::Fields& Fields() { return fields_; }
    const jet::Fields& Fields() const { return fields_; }

    // Used by Field and by the connection's schema rowsets.
    const RecordSource& source() const;
    Variant valueAt(size_t field) const;
    void setValueAt(size_t field, const Variant& value);
    void openSource(std::shared_ptr<RecordSource> source);

private:
    void requireOpen() const;
    void requireCurrent() const;
    TableRecordSource& requireUpdatable() const;
    bool batchMode() const { return lockType_ == 4; }
    // Immediate modes send the row being edited before the cursor leaves it.
    void leaveRow();

    std::shared_ptr<RecordSource> data_;
    std::shared_ptr<TableRecordSource> table_;  // data_ when it is a table
    std::string source_;
    Connection* connection_ = nullptr;
    int32_t cursorType_ = -1, lockType_ = -1, options_ = -1;
    int64_t position_ = 0;
    jet::Fields fields_;
};

}  // namespace jet
