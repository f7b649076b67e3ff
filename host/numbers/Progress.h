#pragma once
// Progress of a statistic over a long list, in percent: at most 101 reports (0 to 100)
// per computation, however many items and passes it takes, and none for short lists,
// where a moving bar would only flicker.

#include <cstddef>
#include <cstdint>
#include <functional>

namespace host::numbers {

class Progress {
public:
    using Sink = std::function<void(int percent)>;
    static constexpr std::size_t kLongList = 10000;

    Progress(std::size_t items, int passes, Sink sink);

    // One item of one pass done; cheap enough for the innermost loop.
    void step()
    {
        if (--countdown_ == 0)
            advance();
    }
    // The computation is done: reports 100 if it has not been reported.
    void finish();

private:
    void advance();
    void report(int percent);

    Sink sink_;
    uint64_t total_ = 0;
    uint64_t stride_ = 0;
    uint64_t done_ = 0;
    uint64_t countdown_ = 0;
    int reported_ = -1;
};

}  // namespace host::numbers
