#include "FaultInjectionEnv.h"

#include <algorithm>
#include <random>
#include <stdexcept>

namespace jet::testkit {

namespace {
constexpr uint64_t sectorSize = 512;
}  // namespace

class FaultInjectionEnv::FaultFile final : public File {
public:
    FaultFile(FaultInjectionEnv& env, std::string path, std::unique_ptr<File> base)
        : env_(env), path_(std::move(path)), base_(std::move(base)) {
        ++env_.openFiles_;
    }
    ~FaultFile() override { --env_.openFiles_; }

    size_t readAt(uint64_t offset, std::span<uint8_t> out) override { return base_->readAt(offset, out); }

    void writeAt(uint64_t offset, std::span<const uint8_t> data) override {
        env_.perform(OpKind::Write, path_, [&] { store(offset, data); },
                     [&] { store(offset, data.first(data.size() / 2)); });
    }

    void sync() override {
        env_.perform(OpKind::Sync, path_, [&] {
            base_->sync();
            env_.unsynced_.erase(path_);
        });
    }

    uint64_t size() override { return base_->size(); }

    void truncate(uint64_t size) override {
        env_.perform(OpKind::Truncate, path_, [&] {
            env_.unsynced(path_, *base_).changes.push_back({true, size, {}});
            base_->truncate(size);
        });
    }

    bool tryLockShared() override { return base_->tryLockShared(); }
    bool tryLockExclusive() override { return base_->tryLockExclusive(); }
    void unlock() override { base_->unlock(); }

private:
    void store(uint64_t offset, std::span<const uint8_t> data) {
        env_.unsynced(path_, *base_).changes.push_back({false, offset, {data.begin(), data.end()}});
        base_->writeAt(offset, data);
    }

    FaultInjectionEnv& env_;
    std::string path_;
    std::unique_ptr<File> base_;
};

FaultInjectionEnv::FaultInjectionEnv(Env& base) : base_(base) {}

FaultInjectionEnv::~FaultInjectionEnv() = default;

void FaultInjectionEnv::perform(OpKind kind, const std::string& path, const std::function<void()>& effect,
                                const std::function<void()>& halfEffect) {
    ++opCount_;
    std::optional<Fault> fault;
    if (poweredOff_) {
        fault = Fault::PowerLoss;
    } else if (auto it = faults_.find(opCount_); it != faults_.end()) {
        fault = it->second;
        faults_.erase(it);
        if (fault == Fault::PowerLoss) poweredOff_ = true;
    }
    if (fault == Fault::ShortWrite && halfEffect) halfEffect();
    if (!fault || fault == Fault::LateError) effect();
    if (fault) raise(*fault, kind, path);
}

void FaultInjectionEnv::raise(Fault fault, OpKind kind, const std::string& path) {
    static const char* const verbs[] = {"create", "write", "resize", "flush", "delete", "flush folder"};
    const char* cause = fault == Fault::DiskFull    ? "No space left on device"
                        : fault == Fault::PowerLoss ? "the machine lost power"
                                                    : "Input/output error";
    throw IoError(std::string("Cannot ") + verbs[int(kind)] + " '" + path + "': " + cause + " (injected)");
}

FaultInjectionEnv::Unsynced& FaultInjectionEnv::unsynced(const std::string& path, File& base) {
    auto it = unsynced_.find(path);
    if (it != unsynced_.end()) return it->second;
    Unsynced u;
    u.durable.resize(size_t(base.size()));
    u.durable.resize(base.readAt(0, u.durable));
    return unsynced_.emplace(path, std::move(u)).first->second;
}

std::vector<uint8_t> FaultInjectionEnv::contents(const std::string& path) {
    auto file = base_.open(path, OpenMode::ReadOnly);
    std::vector<uint8_t> bytes(size_t(file->size()));
    bytes.resize(file->readAt(0, bytes));
    return bytes;
}

void FaultInjectionEnv::replaceFile(const std::string& path, const std::vector<uint8_t>& bytes) {
    auto file = base_.open(path, OpenMode::Create);
    if (!bytes.empty()) file->writeAt(0, bytes);
    file->sync();
}

std::unique_ptr<File> FaultInjectionEnv::open(const std::string& path, OpenMode mode) {
    if (mode != OpenMode::ReadOnly && readOnly_) throw IoError("Cannot open '" + path + "': Permission denied");
    if (mode != OpenMode::Create) return std::make_unique<FaultFile>(*this, path, base_.open(path, mode));

    std::unique_ptr<File> file;
    perform(OpKind::Create, path, [&] { file = createNow(path); });
    return std::make_unique<FaultFile>(*this, path, std::move(file));
}

std::unique_ptr<File> FaultInjectionEnv::createNow(const std::string& path) {
    std::unique_ptr<File> file;
    if (base_.exists(path)) {
        // Replacing a file empties it: a change like any other until the next sync.
        std::vector<uint8_t> before = contents(path);
        file = base_.open(path, OpenMode::Create);
        auto [it, fresh] = unsynced_.try_emplace(path);
        if (fresh) it->second.durable = std::move(before);
        it->second.changes.push_back({true, 0, {}});
    } else {
        file = base_.open(path, OpenMode::Create);
        unsynced_[path] = Unsynced{};
        // A file removed and created again within one window comes back as it was before.
        entries_.try_emplace(path, std::nullopt);
    }
    return file;
}

bool FaultInjectionEnv::exists(const std::string& path) { return base_.exists(path); }

void FaultInjectionEnv::remove(const std::string& path) {
    if (readOnly_) throw IoError("Cannot delete '" + path + "': Permission denied");
    perform(OpKind::Remove, path, [&] { removeNow(path); });
}

void FaultInjectionEnv::removeNow(const std::string& path) {
    if (!base_.exists(path)) return;
    auto entry = entries_.find(path);
    if (entry == entries_.end()) {
        auto u = unsynced_.find(path);
        entries_.emplace(path, u != unsynced_.end() ? u->second.durable : contents(path));
    } else if (!entry->second) {
        entries_.erase(entry);  // created and removed again: nothing to bring back
    }
    unsynced_.erase(path);
    base_.remove(path);
}

void FaultInjectionEnv::syncDirectory(const std::string& dirPath) {
    perform(OpKind::SyncDirectory, dirPath, [&] {
        base_.syncDirectory(dirPath);
        std::erase_if(entries_, [&](const auto& e) { return directoryOf(e.first) == dirPath; });
    });
}

bool FaultInjectionEnv::writable(const std::string& path) { return !readOnly_ && base_.writable(path); }

void FaultInjectionEnv::crash(CrashMode mode, uint32_t seed) {
    if (openFiles_ != 0) throw std::logic_error("FaultInjectionEnv::crash() with files still open");
    std::mt19937 rng(seed);
    for (const auto& [path, u] : unsynced_) {
        std::vector<uint8_t> image = u.durable;
        if (mode == CrashMode::KeepSomeUnsynced) {
            for (const Change& c : u.changes) {
                if (c.truncate) {
                    if (rng() & 1) image.resize(size_t(c.offset));
                    continue;
                }
                const uint64_t end = c.offset + c.bytes.size();
                for (uint64_t pos = c.offset; pos < end;) {
                    const uint64_t pieceEnd = std::min(end, (pos / sectorSize + 1) * sectorSize);
                    if (rng() & 1) {
                        if (image.size() < pieceEnd) image.resize(size_t(pieceEnd));
                        std::copy(c.bytes.begin() + long(pos - c.offset), c.bytes.begin() + long(pieceEnd - c.offset),
                                  image.begin() + long(pos));
                    }
                    pos = pieceEnd;
                }
            }
        }
        replaceFile(path, image);
    }
    for (const auto& [path, entry] : entries_) {
        if (entry)
            replaceFile(path, *entry);
        else
            base_.remove(path);
    }
    unsynced_.clear();
    entries_.clear();
    faults_.clear();
    poweredOff_ = false;
}

}  // namespace jet::testkit
