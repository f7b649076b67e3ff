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

#include <cstdint>
#include <memory>
#include <string>

#include "Field.h"
#include "RecordSource.h"

namespace jet {

class Connection;

class Recordset {
public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    // Source "SELECT * FROM name" (keywords and name without case; the name may be in
    // brackets), or a bare table name with options adCmdTable (2) or adCmdTableDirect (512).
    // Cursor and lock types are accepted as ADO takes them; every cursor here is static.
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

    jet::Fields& Fields() { return fields_; }
    const jet::Fields& Fields() const { return fields_; }

    // Used by Field and by the connection's schema rowsets.
    const RecordSource& source() const;
    Variant valueAt(size_t field) const;
    void openSource(std::shared_ptr<RecordSource> source);

private:
    void requireOpen() const;
    void requireCurrent() const;

    std::shared_ptr<RecordSource> data_;
    std::string source_;
    Connection* connection_ = nullptr;
    int32_t cursorType_ = -1, lockType_ = -1, options_ = -1;
    int64_t position_ = 0;
    jet::Fields fields_;
};

}  // namespace jet
