#pragma once
// One rectangular area of cells between two corners. The corners are not ordered: Start
// is where a drag began, Finish where it ended, wherever that lies. Each corner is made
// the first time it is read and stays the same object until replaced.

#include <memory>

#include "engine/Simple_Row.h"
#include "rt/CreatedOnFirstUse.h"

namespace engine {

class Rows_Selection {
public:
    Simple_Row& Start() const { return start_.get(); }
    void setStart(std::shared_ptr<Simple_Row> corner) { start_.set(std::move(corner)); }
    Simple_Row& Finish() const { return finish_.get(); }
    void setFinish(std::shared_ptr<Simple_Row> corner) { finish_.set(std::move(corner)); }

private:
    rt::CreatedOnFirstUse<Simple_Row> start_;
    rt::CreatedOnFirstUse<Simple_Row> finish_;
};

}  // namespace engine
