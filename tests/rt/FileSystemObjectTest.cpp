#include <gtest/gtest.h>

#include <sys/file.h>

#include <QDir>
#include <QTemporaryDir>

#include "../support/TestSupport.h"

#include "rt/FileSystemObject.h"

using rt::CopyFile;

TEST(CopyFile, ReplacesAtomicallyAndFailsWithTheRunTimesNumbersLeavingTheTargetAsItWas)
{
    QTemporaryDir dir;
    const auto path = [&](const char* name) { return dir.filePath(name); };
    QByteArray big(200000, '\0');
    for (int i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>(i * 7);
    writeFile(path("source.mdb"), big);
    writeFile(path("target.mdb"), "old");
    EXPECT_EQ(runTimeErrorOf([&] { CopyFile(path("nothing.mdb"), path("target.mdb"), true); }), 53);
    EXPECT_EQ(runTimeErrorOf([&] { CopyFile(dir.path(), path("target.mdb"), true); }), 53);
    EXPECT_EQ(runTimeErrorOf([&] { CopyFile(path("source.mdb"), path("target.mdb"), false); }), 58);
    EXPECT_EQ(runTimeErrorOf([&] { CopyFile(path("source.mdb"), path("no/such/x.mdb"), true); }), 76);
    // Another program that has the target open as a database holds a lock on it.
    QFile holder(path("target.mdb"));
    ASSERT_TRUE(holder.open(QIODevice::ReadOnly) && ::flock(holder.handle(), LOCK_SH) == 0);
    EXPECT_EQ(runTimeErrorOf([&] { CopyFile(path("source.mdb"), path("target.mdb"), true); }), 70);
    EXPECT_EQ(readFile(path("target.mdb")), "old");

    holder.close();
    CopyFile(path("source.mdb"), path("target.mdb"), true);
    CopyFile(path("source.mdb"), path("copy.mdb"), false);
    EXPECT_EQ(readFile(path("target.mdb")), big);
    EXPECT_EQ(readFile(path("copy.mdb")), big);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 3);  // nothing left beside them
}
