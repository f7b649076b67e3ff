#pragma once
// An Env for tests that fails chosen operations and simulates power failures, so that
// every write and sync of a transaction can be made to go wrong in turn. It works on real
// files through another Env and remembers what a power failure would take back.
//
// Model of the disk:
//  - Bytes written to a file (and truncations) are durable only once that file's sync()
//    has returned. crash() takes back every change since then, or, in KeepSomeUnsynced
//    mode, an arbitrary subset of them in 512-byte pieces (a disk may write its cache in
//    any order).
//  - Creating and removing a file is durable only once syncDirectory() has returned for
//    its folder. crash() deletes the files created since then and brings back the files
//    removed since then, with their durable contents.
//  - Every operation that changes something (create, write, truncate, sync, remove, folder
//    sync) is numbered from 1 in the order it is attempted; injectFault() makes the one
//    with a given number fail.
// Close every file opened through this Env before crash(): a real crash closes them too.

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "os/Env.h"

namespace jet::testkit {

class FaultInjectionEnv final : public Env {
public:
    enum class Fault {
        IoError,     // the operation fails without effect
        DiskFull,    // the same, reported as a full disk
        ShortWrite,  // a write stores its first half and fails; other operations fail as IoError
        PowerLoss,   // this operation and every later one fail without effect, until crash()
        LateError,   // the operation takes effect, then reports an I/O error anyway
    };
    enum class CrashMode { DropUnsynced, KeepSomeUnsynced };
    enum class OpKind { Create, Write, Truncate, Sync, Remove, SyncDirectory };

    explicit FaultInjectionEnv(Env& base = Env::posix());
    ~FaultInjectionEnv() override;

    // The number of the last changing operation attempted.
    uint64_t opCount() const { return opCount_; }
    void injectFault(uint64_t opNumber, Fault fault) { faults_[opNumber] = fault; }
    bool poweredOff() const { return poweredOff_; }
    // Files and folders look read-only: writable() is false, opening for writing and
    // removing fail with a permission error.
    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }

    // The power fails and comes back: the files keep only what was durable. Forgets the
    // injected faults that did not fire.
    void crash(CrashMode mode = CrashMode::DropUnsynced, uint32_t seed = 0);

    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override;
    bool exists(const std::string& path) override;
    void remove(const std::string& path) override;
    void syncDirectory(const std::string& dirPath) override;
    bool writable(const std::string& path) override;

private:
    class FaultFile;
    struct Change {
        bool truncate;
        uint64_t offset;  // truncate: the new size
        std::vector<uint8_t> bytes;
    };
    struct Unsynced {
        std::vector<uint8_t> durable;  // the contents at the last sync
        std::vector<Change> changes;   // since then, in order
    };

    // Logs the operation and runs its effect under the fault injected for it, if any: half
    // the effect for a short write, the whole of it for a late error, none for the rest.
    void perform(OpKind kind, const std::string& path, const std::function<void()>& effect, const std::function<void()>& halfEffect = {});
    [[noreturn]] static void raise(Fault fault, OpKind kind, const std::string& path);
    Unsynced& unsynced(const std::string& path, File& base);
    std::unique_ptr<File> createNow(const std::string& path);
    void removeNow(const std::string& path);
    std::vector<uint8_t> contents(const std::string& path);
    void replaceFile(const std::string& path, const std::vector<uint8_t>& bytes);

    Env& base_;
    uint64_t opCount_ = 0;
    std::map<uint64_t, Fault> faults_;
    bool poweredOff_ = false;
    bool readOnly_ = false;
    int openFiles_ = 0;
    std::map<std::string, Unsynced> unsynced_;
    // Folder entries not yet durable: nullopt for a file created since the folder's last
    // sync, its durable contents for a file removed since then.
    std::map<std::string, std::optional<std::vector<uint8_t>>> entries_;
};

}  // namespace jet::testkit
