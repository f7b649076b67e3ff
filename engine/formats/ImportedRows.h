#pragma once
// The rows a table-file reader adds to its new table, sent to the file a group at a time.
//
// Sending each row on its own would make it a transaction of its own, and a large import
// would crawl at the pace of the disk's flushes (about 80 rows a second on an ordinary
// disk); a group of kGroup rows is one transaction. However the import ends (a silent
// return, an error), the rows filled so far are sent when this object goes, so they are
// stored as they would have been one by one; a row half filled when an error came is
// dropped first.

#include <cstdint>
#include <functional>
#include <memory>

namespace jet {
class Recordset;
}

namespace engine {

class ImportedRows {
public:
    static constexpr int32_t kGroup = 1000;

    // The reader's record set, looked up at each use: creating the table replaces it.
    explicit ImportedRows(const std::shared_ptr<jet::Recordset>& recordset) : recordset_(recordset) {}
    // Sends what is still pending; an error here is swallowed (an import that failed has
    // its own error on the way).
    ~ImportedRows();
    ImportedRows(const ImportedRows&) = delete;
    ImportedRows& operator=(const ImportedRows&) = delete;

    // Runs the code that fills the row just added. On an error the row is cancelled and
    // the error goes on; otherwise the row counts, and a full group is sent.
    void fill(const std::function<void()>& fillRow);
    // Sends every pending row (the record set's UpdateBatch); errors reach the caller.
    void send();

private:
    const std::shared_ptr<jet::Recordset>& recordset_;
    int32_t unsent_ = 0;
};

}  // namespace engine
