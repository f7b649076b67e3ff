#pragma once
// The fields of a record set's current record. A Field is a small handle (record set and
// position); its Value is read from the current record each time it is asked for.

#include <cstdint>
#include <string>
#include <string_view>

#include "jet/Variant.h"

namespace jet {

class Recordset;

class Field {
public:
    Field(Recordset& rs, size_t index) : rs_(&rs), index_(index) {}

    const std::string& Name() const;
    int32_t Type() const;          // ADO DataTypeEnum
    int32_t DefinedSize() const;
    // The value in the current record (run-time error 3021 at BOF or EOF).
    Variant Value() const;
    // Assigns a value to the current record: converted to the column's type at once (a
    // value that does not fit is refused here), sent as the record set's lock type says.
    void setValue(const Variant& value) const;
    Field& operator=(const Variant& value) {
        setValue(value);
        return *this;
    }

private:
    Recordset* rs_;
    size_t index_;
};

class Fields {
public:
    explicit Fields(Recordset& rs) : rs_(rs) {}

    int32_t Count() const;
    // By position (0-based) or by name (case-insensitive); run-time error 3265 otherwise.
    Field Item(int32_t index) const;
    Field Item(std::string_view name) const;
    Field operator[](int32_t index) const { return Item(index); }
    Field operator[](std::string_view name) const { return Item(name); }

private:
    Recordset& rs_;
};

}  // namespace jet
