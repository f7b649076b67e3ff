#pragma once
// A database of raw pages whose every committed state is known from one number: the
// last committed transaction k. Transaction k always rewrites page 0 (which records k)
// and a pseudo-random set of other pages, each with bytes derived from (k, page), and
// every fourth transaction appends pages. Replaying the plan of transactions 1..k gives
// the exact expected file, so a check can tell "the state after k" from anything else.
// Some transactions first make a throwaway change and roll it back, which must leave no
// trace.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "CrashLoop.h"
#include "pager/Pager.h"

namespace jet::testkit {

class PageWorkload final : public CrashWorkload {
public:
    static constexpr uint32_t pageSize = 2048;

    // Each transaction rewrites between maxTouched / 2 and maxTouched pages besides page 0;
    // the file does not grow beyond maxPages.
    explicit PageWorkload(uint32_t initialPages = 16, uint32_t maxTouched = 10, uint32_t maxPages = 160);

    // The page size of a file this workload made, or an error when it is not one.
    static uint32_t probe(std::span<const uint8_t> head);
    static std::unique_ptr<Pager> open(Env& env, const std::string& path, OpenMode mode = OpenMode::ReadWrite) {
        return Pager::open(env, path, mode, probe);
    }
    // What transaction k writes to page n (k = 0: the pages of a new file).
    static std::string page(uint64_t k, uint32_t n);

    // Creates the database in the state after transaction k (0: before the first one).
    void create(Env& env, const std::string& path, uint64_t k = 0) const;
    // The changes of transaction k, inside a transaction the caller began.
    void change(Pager& pager, uint64_t k) const;
    // Transaction k from begin to commit, sometimes after a rolled-back false start.
    void apply(Pager& pager, uint64_t k) const;
    // The k whose state the pager shows; throws std::runtime_error naming the first
    // difference when it shows none.
    uint64_t check(Pager& pager);

    void runTransactions(Env& env, const std::string& path, uint64_t next,
                         const std::function<void(uint64_t)>& committed) override;
    CommittedState committedState(const std::string& path) override;

private:
    struct Plan {
        std::vector<uint32_t> touched;  // page 0 first
        uint32_t appended = 0;
    };
    Plan plan(uint64_t k, uint32_t pageCount) const;
    static void fill(uint8_t* page, uint64_t k, uint32_t n);
    void advanceModelTo(uint64_t k);

    uint32_t initialPages_;
    uint32_t maxTouched_;
    uint32_t maxPages_;
    // The expected state after modelK_: for every page, the transaction that wrote it last.
    uint64_t modelK_ = 0;
    std::vector<uint64_t> lastWriter_;
    int opens_ = 0;
};

}  // namespace jet::testkit
