#include "engine/formats/ImportedRows.h"

#include "host/ErrorTrap.h"
#include "jet/Recordset.h"

namespace engine {

ImportedRows::~ImportedRows()
{
    if (unsent_ > 0)
        host::resumeNext({[&] { recordset_->UpdateBatch(); }});
}

void ImportedRows::fill(const std::function<void()>& fillRow)
{
    try {
        fillRow();
    } catch (...) {
        host::resumeNext({[&] { recordset_->CancelUpdate(); }});
        throw;
    }
    if (++unsent_ >= kGroup)
        send();
}

void ImportedRows::send()
{
    recordset_->UpdateBatch();
    unsent_ = 0;
}

}  // namespace engine
