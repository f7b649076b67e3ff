#pragma once
// Where a record set's rows come from: a table of the file (decoded lazily) or rows held
// in memory (schema rowsets). A record set only asks for the value of one field of one
// row at a time.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "jet/Variant.h"

namespace jet {

struct FieldInfo {
    std::string name;
    int32_t type = 0;          // ADO DataTypeEnum
    int32_t definedSize = 0;   // characters for text, bytes otherwise
};

class RecordSource {
public:
    virtual ~RecordSource() = default;
    virtual const std::vector<FieldInfo>& fields() const = 0;
    virtual size_t rowCount() const = 0;
    virtual Variant value(size_t row, size_t field) const = 0;
};

class MemoryRecordSource final : public RecordSource {
public:
    MemoryRecordSource(std::vector<FieldInfo> fields, std::vector<std::vector<Variant>> rows)
        : fields_(std::move(fields)), rows_(std::move(rows)) {}
    const std::vector<FieldInfo>& fields() const override { return fields_; }
    size_t rowCount() const override { return rows_.size(); }
    Variant value(size_t row, size_t field) const override { return rows_[row][field]; }

private:
    std::vector<FieldInfo> fields_;
    std::vector<std::vector<Variant>> rows_;
};

}  // namespace jet
