#include "host/numbers/Progress.h"

#include <algorithm>
#include <limits>

namespace host::numbers {

Progress::Progress(std::size_t items, int passes, Sink sink)
{
    if (items < kLongList || !sink) {
        countdown_ = std::numeric_limits<uint64_t>::max();  // never reaches zero
        return;
    }
    sink_ = std::move(sink);
    total_ = uint64_t(items) * uint64_t(std::max(passes, 1));
    stride_ = std::max<uint64_t>(total_ / 100, 1);
    countdown_ = stride_;
    report(0);
}

void Progress::advance()
{
    done_ += stride_;
    countdown_ = stride_;
    report(int(std::min<uint64_t>(done_ * 100 / total_, 99)));
}

void Progress::finish()
{
    if (sink_)
        report(100);
}

void Progress::report(int percent)
{
    if (percent <= reported_)
        return;
    reported_ = percent;
    sink_(percent);
}

}  // namespace host::numbers
