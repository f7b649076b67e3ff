#pragma once
// The setting of every end-to-end engine test: a private registry and database folder, a
// fresh set of module globals with gDataBase, the scripted UI services with the program's
// dialogs registered, copies of corpus files to work on, and a log of every connection
// string and SQL text the engine sends. After each test every database in the folder
// must pass the integrity checker.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "../support/RunTimeErrorOf.h"

#include "app/ModMain.h"
#include "engine/XDataBase.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/Checker.h"
#include "jet/RuntimeError.h"
#include "ui/ScriptedUiServices.h"
#include "ui/dialogs/Dialogs.h"

// Failure messages show texts, not their UTF-16 units.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

class EngineFixture : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        QDir(dir.path()).mkpath(QStringLiteral("registry"));
        QDir(dir.path()).mkpath(QStringLiteral("Database"));
        savedRegistry_ = qgetenv("SHEETWRIGHT_REGISTRY");
        qputenv("SHEETWRIGHT_REGISTRY", QFile::encodeName(path(QStringLiteral("registry"))));
        app::resetModuleGlobals();
        // Host paths use "\" between folder and file.
        app::gRegistry().write(host::HKEY_LOCAL_MACHINE, host::keys::Database, QString(),
                               path(QStringLiteral("Database")));
        ui::registerDialogs();
        QObject::connect(&db(), &engine::XDataBase::ConnectionStringSent,
                         [this](const QString& text) { connectionStrings.append(text); });
        QObject::connect(&db(), &engine::XDataBase::SqlSent, [this](const QString& text) { sql.append(text); });
    }

    void TearDown() override
    {
        app::resetModuleGlobals();
        if (savedRegistry_.isEmpty())
            qunsetenv("SHEETWRIGHT_REGISTRY");
        else
            qputenv("SHEETWRIGHT_REGISTRY", savedRegistry_);
        expectEveryDatabaseClean(dir.path());
    }

    static void expectEveryDatabaseClean(const QString& folder)
    {
        QDir where(folder);
        for (const QString& name : where.entryList({QStringLiteral("*.mdb")}, QDir::Files)) {
            const jet::CheckReport report = jet::check(where.filePath(name).toStdString());
            EXPECT_TRUE(report.clean()) << name.toStdString() << ": " << report.issues.size() << " issue(s), first: "
                                        << (report.issues.empty() ? std::string()
                                                                  : report.issues[0].where + ": " +
                                                                        report.issues[0].problem);
        }
        for (const QString& sub : where.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            expectEveryDatabaseClean(where.filePath(sub));
    }

    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }

    // A writable copy of a corpus file, under the name given (the corpus name by default).
    QString copyOf(const QString& fixture, QString name = QString())
    {
        if (name.isEmpty())
            name = fixture;
        const QString target = path(name);
        QFile::remove(target);
        EXPECT_TRUE(QFile::copy(QStringLiteral(SHEETWRIGHT_MDB_FIXTURES "/") + fixture, target)) << fixture.toStdString();
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
        return target;
    }

    // Opens a copy of the corpus file, then forgets what opening it sent.
    void openCopy(const QString& fixture)
    {
        file = copyOf(fixture);
        ASSERT_TRUE(db().OpenDataBase(file));
        sql.clear();
        connectionStrings.clear();
    }

    // What the file holds now, read by opening it afresh: its tables, and one column of a
    // table (Null as "<Null>").
    QStringList tablesInFile()
    {
        EXPECT_TRUE(db().OpenDataBase(file));
        return tables();
    }
    QStringList columnInFile(const QString& table, const QString& column)
    {
        EXPECT_TRUE(db().OpenDataBase(file));
        db().setCurrentTable(table);
        QStringList values;
        if (db().RecordCount() == 0)
            return values;
        for (db().MoveFirst(); !db().EndOfRecords(); db().MoveNext()) {
            try {
                values.append(db().GetCurrentRecord(column));
            } catch (const jet::RuntimeError& e) {
                EXPECT_EQ(e.number(), jet::err::InvalidUseOfNull);
                values.append("<Null>");
            }
        }
        return values;
    }

    static engine::XDataBase& db() { return app::gDataBase(); }

    QStringList tables() const { return db().Tables().items(); }
    QStringList columns() const { return db().Columns().items(); }

    // Every cell of the current table, row by row, read through the cursor members.
    std::vector<QStringList> rowsOfCurrentTable() const
    {
        std::vector<QStringList> rows;
        if (db().RecordCount() == 0)
            return rows;
        db().MoveFirst();
        while (!db().EndOfRecords()) {
            QStringList row;
            for (const QString& column : columns())
                row.append(db().Item(column, 0));
            rows.push_back(row);
            db().MoveNext();
        }
        return rows;
    }

    QTemporaryDir dir;
    ui::ScriptedUiServices fake;
    ui::UiServicesScope use{fake};
    QStringList connectionStrings;
    QStringList sql;
    QString file;  // the copy openCopy opened

private:
    QByteArray savedRegistry_;
};
