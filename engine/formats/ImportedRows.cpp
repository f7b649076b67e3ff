#include "engine/formats/ImportedRows.h"

#include "rt/ErrorTrap.h"
#include "jet/Recordset.h"

namespace engine {

ImportedRows::~ImportedRows()
{
    if (unsent_ > 0)
        rt::resumeNext({[&] { recordset_->UpdateBatch(); }});
}

void ImportedRows::fill(const std::function<void()>& fillRow)
{
    try {
        fillRow();
    } catch (...) {
        rt::resumeNext({[&] { recordset_->CancelUpdate(); }});
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
