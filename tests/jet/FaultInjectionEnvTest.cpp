// The fault-injecting Env is what the pager's crash tests trust; a crash model that keeps
// too much would let a wrong commit order pass, so its model is tested here.
#include <gtest/gtest.h>

#include <filesystem>

#include "testkit/FaultInjectionEnv.h"
#include "testkit/TempDir.h"

namespace {

using namespace jet::testkit;
using jet::OpenMode;
using Fault = FaultInjectionEnv::Fault;
using CrashMode = FaultInjectionEnv::CrashMode;

std::span<const uint8_t> bytes(const std::string& s) { return {reinterpret_cast<const uint8_t*>(s.data()), s.size()}; }

class FaultInjection : public ::testing::Test {
protected:
    void write(const std::string& path, uint64_t offset, const std::string& data, bool sync) {
        auto f = env.open(path, OpenMode::ReadWrite);
        f->writeAt(offset, bytes(data));
        if (sync) f->sync();
    }
    TempDir dir{TempDir::Place::InMemory};
    std::string a = dir.file("a");
    std::string b = dir.file("b");
    FaultInjectionEnv env;
};

TEST_F(FaultInjection, ACrashKeepsWhatWasSyncedAndDropsTheRest) {
    writeAll(a, "0123456789");
    write(a, 0, "AB", true);
    write(a, 4, "CD", false);
    {
        auto f = env.open(a, OpenMode::ReadWrite);
        f->truncate(3);
    }
    env.crash();
    EXPECT_EQ("AB23456789", readAll(a));
    write(a, 8, "XYZ", false);  // grows the file, unsynced
    env.crash();
    EXPECT_EQ("AB23456789", readAll(a));
}

TEST_F(FaultInjection, FolderEntriesAreDurableOnlyAfterTheFolderSync) {
    {
        auto f = env.open(a, OpenMode::Create);
        f->writeAt(0, bytes("new"));
        f->sync();
    }
    env.crash();
    EXPECT_FALSE(std::filesystem::exists(a)) << "created, never made durable in its folder";

    {
        auto f = env.open(a, OpenMode::Create);
        f->writeAt(0, bytes("kept"));
        f->sync();
    }
    env.syncDirectory(dir.path());
    env.remove(a);
    env.crash();
    EXPECT_EQ("kept", readAll(a)) << "removed, but the removal was not durable";

    env.remove(a);
    env.syncDirectory(dir.path());
    env.crash();
    EXPECT_FALSE(std::filesystem::exists(a));

    writeAll(b, "old");
    env.remove(b);
    {
        auto f = env.open(b, OpenMode::Create);
        f->writeAt(0, bytes("replacement"));
        f->sync();
    }
    env.crash();
    EXPECT_EQ("old", readAll(b)) << "removed and created again: the old file comes back";
}

TEST_F(FaultInjection, KeepingSomeUnsyncedWritesKeepsEachPieceOldOrNew) {
    const std::string oldBytes(4096, 'o');
    const std::string newBytes(4096, 'n');
    bool sawOld = false, sawNew = false;
    for (uint32_t seed = 1; seed <= 20; ++seed) {
        writeAll(a, oldBytes);
        write(a, 0, newBytes, false);
        env.crash(CrashMode::KeepSomeUnsynced, seed);
        const std::string after = readAll(a);
        ASSERT_EQ(4096u, after.size());
        for (size_t piece = 0; piece < 8; ++piece) {
            const std::string p = after.substr(piece * 512, 512);
            EXPECT_TRUE(p == oldBytes.substr(0, 512) || p == newBytes.substr(0, 512)) << "piece " << piece;
            (p[0] == 'o' ? sawOld : sawNew) = true;
        }
    }
    EXPECT_TRUE(sawOld && sawNew);
}

TEST_F(FaultInjection, AnInjectedFaultHitsExactlyTheNumberedOperation) {
    writeAll(a, "..........");
    auto f = env.open(a, OpenMode::ReadWrite);
    env.injectFault(env.opCount() + 2, Fault::IoError);
    f->writeAt(0, bytes("1"));
    EXPECT_THROW(f->writeAt(1, bytes("2")), jet::IoError);
    f->writeAt(2, bytes("3"));
    EXPECT_EQ("1.3.......", readAll(a));

    env.injectFault(env.opCount() + 1, Fault::ShortWrite);
    EXPECT_THROW(f->writeAt(4, bytes("abcd")), jet::IoError);
    EXPECT_EQ("1.3.ab....", readAll(a));

    env.injectFault(env.opCount() + 1, Fault::DiskFull);
    try {
        f->sync();
        ADD_FAILURE() << "the sync went through";
    } catch (const jet::IoError& e) {
        EXPECT_NE(std::string::npos, e.description().find("No space left on device"));
    }
    EXPECT_EQ(5u, env.opCount());
    EXPECT_EQ(FaultInjectionEnv::OpKind::Sync, env.ops().back().kind);
}

TEST_F(FaultInjection, AfterAPowerLossNothingChangesUntilTheCrash) {
    writeAll(a, "....");
    {
        auto f = env.open(a, OpenMode::ReadWrite);
        f->writeAt(0, bytes("x"));
        env.injectFault(env.opCount() + 1, Fault::PowerLoss);
        EXPECT_THROW(f->sync(), jet::IoError);
        EXPECT_TRUE(env.poweredOff());
        EXPECT_THROW(f->writeAt(1, bytes("y")), jet::IoError);
        EXPECT_THROW(env.remove(a), jet::IoError);
        EXPECT_THROW(env.syncDirectory(dir.path()), jet::IoError);
        EXPECT_THROW(env.crash(), std::logic_error) << "files still open";
    }
    env.crash();
    EXPECT_FALSE(env.poweredOff());
    EXPECT_EQ("....", readAll(a));
    write(a, 0, "z", true);
    EXPECT_EQ("z...", readAll(a));
}

TEST_F(FaultInjection, AReadOnlyDiskRefusesEveryChange) {
    writeAll(a, "data");
    env.setReadOnly(true);
    EXPECT_FALSE(env.writable(a));
    EXPECT_THROW(env.open(a, OpenMode::ReadWrite), jet::IoError);
    EXPECT_THROW(env.open(b, OpenMode::Create), jet::IoError);
    EXPECT_THROW(env.remove(a), jet::IoError);
    EXPECT_NO_THROW(env.open(a, OpenMode::ReadOnly));
    EXPECT_EQ("data", readAll(a));
}

}  // namespace
