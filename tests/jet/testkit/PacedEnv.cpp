#include "PacedEnv.h"

#include <thread>

namespace jet::testkit {

namespace {

class PacedFile final : public File {
public:
    PacedFile(std::unique_ptr<File> base, std::chrono::microseconds pause) : base_(std::move(base)), pause_(pause) {}

    size_t readAt(uint64_t offset, std::span<uint8_t> out) override { return base_->readAt(offset, out); }
    void writeAt(uint64_t offset, std::span<const uint8_t> data) override {
        base_->writeAt(offset, data);
        std::this_thread::sleep_for(pause_);
    }
    void sync() override { base_->sync(); }
    uint64_t size() override { return base_->size(); }
    void truncate(uint64_t size) override {
        base_->truncate(size);
        std::this_thread::sleep_for(pause_);
    }
    bool tryLockShared() override { return base_->tryLockShared(); }
    bool tryLockExclusive() override { return base_->tryLockExclusive(); }
    void unlock() override { base_->unlock(); }

private:
    std::unique_ptr<File> base_;
    std::chrono::microseconds pause_;
};

}  // namespace

std::unique_ptr<File> PacedEnv::open(const std::string& path, OpenMode mode) {
    return std::make_unique<PacedFile>(base_.open(path, mode), pause_);
}

}  // namespace jet::testkit
