#include "PageWorkload.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <stdexcept>

#include "base/Bytes.h"

namespace jet::testkit {

namespace {

constexpr uint8_t magic[4] = {'P', 'G', 'W', 'K'};

uint64_t splitmix(uint64_t& state) {
    uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

}  // namespace

PageWorkload::PageWorkload(uint32_t initialPages, uint32_t maxTouched, uint32_t maxPages)
    : initialPages_(initialPages), maxTouched_(maxTouched), maxPages_(maxPages),
      lastWriter_(initialPages, 0) {}

uint32_t PageWorkload::probe(std::span<const uint8_t> head) {
    if (head.size() < 8 || std::memcmp(head.data(), magic, sizeof magic) != 0)
        throw RuntimeError(err::Unspecified, "not a file of the page workload");
    return le32(head.data() + 4);
}

// Page 0: magic, page size, k, then the pattern; other pages: k, page number, zeros to
// byte 16, the pattern.
void PageWorkload::fill(uint8_t* page, uint64_t k, uint32_t n) {
    std::memset(page, 0, 16);
    if (n == 0) {
        std::memcpy(page, magic, sizeof magic);
        putLe32(page + 4, pageSize);
        putLe64(page + 8, k);
    } else {
        putLe64(page, k);
        putLe32(page + 8, n);
    }
    uint64_t state = k * 0xD1B54A32D192ED03ull ^ (uint64_t(n) << 32 | n);
    static_assert(pageSize % 8 == 0);
    for (size_t at = 16; at < pageSize; at += 8) putLe64(page + at, splitmix(state));
}

std::string PageWorkload::page(uint64_t k, uint32_t n) {
    std::string bytes(pageSize, '\0');
    fill(reinterpret_cast<uint8_t*>(bytes.data()), k, n);
    return bytes;
}

PageWorkload::Plan PageWorkload::plan(uint64_t k, uint32_t pageCount) const {
    std::mt19937_64 rng(k);
    Plan p;
    p.touched.push_back(0);
    std::vector<uint32_t> others;
    for (uint32_t n = 1; n < pageCount; ++n) others.push_back(n);
    std::shuffle(others.begin(), others.end(), rng);
    const uint32_t want = maxTouched_ / 2 + uint32_t(rng() % (maxTouched_ - maxTouched_ / 2 + 1));
    others.resize(std::min<size_t>(others.size(), want));
    p.touched.insert(p.touched.end(), others.begin(), others.end());
    if (k % 4 == 3) p.appended = std::min<uint32_t>(1 + uint32_t(rng() % 3), maxPages_ - std::min(maxPages_, pageCount));
    return p;
}

void PageWorkload::create(Env& env, const std::string& path, uint64_t k) const {
    auto pager = Pager::create(env, path, pageSize);
    pager->begin();
    for (uint32_t n = 0; n < initialPages_; ++n) fill(pager->writable(pager->append()), 0, n);
    pager->commit();
    for (uint64_t i = 1; i <= k; ++i) apply(*pager, i);
}

void PageWorkload::change(Pager& pager, uint64_t k) const {
    const Plan p = plan(k, pager.pageCount());
    for (uint32_t n : p.touched) fill(pager.writable(n), k, n);
    for (uint32_t i = 0; i < p.appended; ++i) {
        const uint32_t n = pager.append();
        fill(pager.writable(n), k, n);
    }
}

void PageWorkload::apply(Pager& pager, uint64_t k) const {
    if (k % 5 == 2) {
        pager.begin();
        change(pager, k + (uint64_t(1) << 40));
        pager.rollback();
    }
    pager.begin();
    change(pager, k);
    pager.commit();
}

void PageWorkload::advanceModelTo(uint64_t k) {
    if (k < modelK_) {
        modelK_ = 0;
        lastWriter_.assign(initialPages_, 0);
    }
    while (modelK_ < k) {
        ++modelK_;
        const Plan p = plan(modelK_, uint32_t(lastWriter_.size()));
        for (uint32_t n : p.touched) lastWriter_[n] = modelK_;
        lastWriter_.insert(lastWriter_.end(), p.appended, modelK_);
    }
}

uint64_t PageWorkload::check(Pager& pager) {
    if (pager.pageCount() == 0) throw std::runtime_error("the file has no pages");
    std::vector<uint8_t> expected(pageSize);
    const uint8_t* first = pager.read(0);
    const uint64_t k = le64(first + 8);
    // Page 0 must be exactly what transaction k wrote before k can be trusted.
    fill(expected.data(), k, 0);
    if (std::memcmp(first, expected.data(), pageSize) != 0)
        throw std::runtime_error("page 0 is not what any transaction wrote (it names transaction " +
                                 std::to_string(k) + ")");
    advanceModelTo(k);
    if (pager.pageCount() != lastWriter_.size())
        throw std::runtime_error("the file has " + std::to_string(pager.pageCount()) + " pages, the state after " +
                                 "transaction " + std::to_string(k) + " has " + std::to_string(lastWriter_.size()));
    for (uint32_t n = 1; n < pager.pageCount(); ++n) {
        fill(expected.data(), lastWriter_[n], n);
        if (std::memcmp(pager.read(n), expected.data(), pageSize) != 0)
            throw std::runtime_error("page " + std::to_string(n) + " differs from the state after transaction " +
                                     std::to_string(k) + " (it should hold what transaction " +
                                     std::to_string(lastWriter_[n]) + " wrote; it holds transaction " +
                                     std::to_string(le64(pager.read(n))) + "'s)");
    }
    return k;
}

void PageWorkload::runTransactions(Env& env, const std::string& path, uint64_t next,
                                   const std::function<void(uint64_t)>& committed) {
    auto pager = open(env, path);
    if (pager->readOnly()) throw std::runtime_error("'" + path + "' " + pager->readOnlyReason());
    // Bounded, so that a child the parent forgot cannot run forever.
    for (uint64_t k = next; k < next + 1000000; ++k) {
        apply(*pager, k);
        committed(k);
    }
}

CommittedState PageWorkload::committedState(const std::string& path) {
    // Alternate the modes: a reader must roll back a hot journal just as a writer does.
    const OpenMode mode = ++opens_ % 2 ? OpenMode::ReadWrite : OpenMode::ReadOnly;
    auto pager = open(Env::posix(), path, mode);
    CommittedState state;
    state.transaction = check(*pager);
    state.rolledBack = pager->recovery().outcome == JournalRecovery::Outcome::RolledBack;
    return state;
}

}  // namespace jet::testkit
