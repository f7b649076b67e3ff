#pragma once
// An Env that pauses after every write. A process killed at a random moment is then often
// caught between two page writes of a commit, instead of almost always inside one of the
// syncs, which take far longer than the writes themselves.

#include <chrono>

#include "jet/Env.h"

namespace jet::testkit {

class PacedEnv final : public Env {
public:
    PacedEnv(Env& base, std::chrono::microseconds pause) : base_(base), pause_(pause) {}

    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override;
    bool exists(const std::string& path) override { return base_.exists(path); }
    void remove(const std::string& path) override { base_.remove(path); }
    void syncDirectory(const std::string& dirPath) override { base_.syncDirectory(dirPath); }
    bool writable(const std::string& path) override { return base_.writable(path); }

private:
    Env& base_;
    std::chrono::microseconds pause_;
};

}  // namespace jet::testkit
