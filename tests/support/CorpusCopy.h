#pragma once
// Writable copies of the read-only corpus databases (tests/data/mdb): a test that opens a
// database for writing always works on one of these.

#include <gtest/gtest.h>

#include <QFile>
#include <QString>

inline QString corpusFile(const QString& name)
{
    return QStringLiteral(SHEETWRIGHT_MDB_FIXTURES "/") + name;
}

// Copies the corpus file to target and makes the copy writable; returns target.
inline QString copyCorpusFile(const QString& name, const QString& target)
{
    EXPECT_TRUE(QFile::copy(corpusFile(name), target)) << name.toStdString();
    QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
    return target;
}
