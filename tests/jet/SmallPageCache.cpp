// Linked into the engine's test programs: every pager they open keeps the smallest cache
// allowed, so pages leave memory as early as they may and a view that forgets to pin its
// page reads another page's bytes, which the tests notice.
#include "pager/Pager.h"

namespace {

const bool smallCache = [] {
    jet::Pager::setDefaultCacheBytes(0);
    return true;
}();

}  // namespace
