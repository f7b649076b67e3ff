#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/file.h>

#include "../support/RunTimeErrorOf.h"

#include "host/FileSystemObject.h"

namespace {

void write(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

QByteArray read(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

}  // namespace

class CopyFileTest : public testing::Test {
protected:
    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }
    QTemporaryDir dir;
};

TEST_F(CopyFileTest, CopiesAndWithOverwriteReplacesWithoutLeavingAnythingBeside)
{
    QByteArray big(200000, '\0');
    for (int i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>(i * 7);
    write(path("source.mdb"), big);
    host::CopyFile(path("source.mdb"), path("copy.mdb"), false);
    EXPECT_EQ(read(path("copy.mdb")), big);

    write(path("target.mdb"), "old contents");
    host::CopyFile(path("source.mdb"), path("target.mdb"), true);
    EXPECT_EQ(read(path("target.mdb")), big);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 3);
}

TEST_F(CopyFileTest, FailuresHaveTheirNumbersAndLeaveTheTargetAsItWas)
{
    write(path("source.mdb"), "new");
    write(path("target.mdb"), "old");
    EXPECT_EQ(runTimeErrorOf([&] { host::CopyFile(path("nothing.mdb"), path("target.mdb"), true); }), 53);
    EXPECT_EQ(runTimeErrorOf([&] { host::CopyFile(path("source.mdb"), path("target.mdb"), false); }), 58);
    EXPECT_EQ(runTimeErrorOf([&] { host::CopyFile(path("source.mdb"), path("no/such/x.mdb"), true); }), 76);
    EXPECT_EQ(runTimeErrorOf([&] { host::CopyFile(dir.path(), path("target.mdb"), true); }), 53);
    EXPECT_EQ(read(path("target.mdb")), "old");
}

TEST_F(CopyFileTest, TargetThatAnotherOpenHoldsLockedIsRefused)
{
    write(path("source.mdb"), "new");
    write(path("open.mdb"), "in use");
    QFile holder(path("open.mdb"));
    ASSERT_TRUE(holder.open(QIODevice::ReadOnly));
    ASSERT_EQ(::flock(holder.handle(), LOCK_SH), 0);
    EXPECT_EQ(runTimeErrorOf([&] { host::CopyFile(path("source.mdb"), path("open.mdb"), true); }), 70);
    EXPECT_EQ(read(path("open.mdb")), "in use");
    ::flock(holder.handle(), LOCK_UN);
    host::CopyFile(path("source.mdb"), path("open.mdb"), true);
    EXPECT_EQ(read(path("open.mdb")), "new");
}
