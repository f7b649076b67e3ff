#pragma once
// The setting of every end-to-end engine test: the program as it starts (FreshProgram)
// with a private database folder, its dialogs registered, copies of corpus files to work
// on, and a log of every connection string and SQL text the engine sends. After each test
// every database in the folder must pass the integrity checker.

#include <gtest/gtest.h>

#include <QDirIterator>

#include "../support/CorpusCopy.h"
#include "../support/FreshProgram.h"
#include "../support/ShownBoxes.h"
#include "Selections.h"

#include "engine/XDataBase.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/Checker.h"
#include "ui/dialogs/Dialogs.h"

// indexTestV1997: Table1 (5 columns, 4 rows, in a relationship), Table2 (id, data; 3 rows),
// Table3 (id, data; 4 rows). testV1997 and testV2000: Table1 (2 rows), Table2, Table3, Table4 (empty).
inline const QStringList kIndexTables = {"Table1", "Table2", "Table3"};
inline const QStringList kTestTables = {"Table1", "Table2", "Table3", "Table4"};

class EngineFixture : public testing::Test {
protected:
    void SetUp() override
    {
        QDir(program.dir.path()).mkpath("Database");
        app::gRegistry().write(host::HKEY_LOCAL_MACHINE, host::keys::Database, QString(), path("Database"));
        ui::registerDialogs();
        QObject::connect(&db(), &engine::XDataBase::ConnectionStringSent, [this](const QString& s) { connectionStrings << s; });
        QObject::connect(&db(), &engine::XDataBase::SqlSent, [this](const QString& s) { sql << s; });
    }
    void TearDown() override
    {
        app::resetModuleGlobals();  // lets go of every open database
        for (QDirIterator it(program.dir.path(), {"*.mdb"}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
            const jet::CheckReport report = jet::check(it.next().toStdString());
            EXPECT_TRUE(report.clean()) << it.filePath().toStdString() << ": " << report.issues.size() << " issue(s), first "
                                        << (report.issues.empty() ? "" : report.issues[0].where + ": " + report.issues[0].problem);
        }
    }

    static engine::XDataBase& db() { return app::gDataBase(); }
    static QString fixture(const QString& name) { return corpusFile(name); }
    static QString jet351(const QString& file, const QString& user = QString(), const QString& password = QString())
    {
        return QStringLiteral("Provider=microsoft.jet.OLEDB.3.51;Data Source=%1;User ID=%2;Password=%3;")
            .arg(file, user, password);
    }
    QString path(const QString& name) const { return program.path(name); }

    // A writable copy of a corpus file, under the name given (the corpus name by default).
    QString copyOf(const QString& corpus, const QString& name = QString())
    {
        return copyCorpusFile(corpus, path(name.isEmpty() ? corpus : name));
    }
    // Opens a copy of the corpus file, then forgets what opening it sent.
    void openCopy(const QString& corpusFile)
    {
        file = copyOf(corpusFile);
        ASSERT_TRUE(db().OpenDataBase(file));
        sql.clear();
        connectionStrings.clear();
    }

    QStringList tables() const { return db().Tables().items(); }
    QStringList columns() const { return db().Columns().items(); }
    static bool recordSetClosed()
    {
        return runTimeErrorOf([] { db().RecordCount(); }) == jet::err::NotAllowedNow;
    }
    // Every value of a column of the current table, read through the cursor; Null as "<Null>".
    static QStringList column(const QString& name)
    {
        QStringList values;
        for (db().MoveFirst(); !db().EndOfRecords(); db().MoveNext())
            if (runTimeErrorOf([&] { values << db().GetCurrentRecord(name); }) == jet::err::InvalidUseOfNull)
                values << "<Null>";
        return values;
    }
    // What the file holds now, read by opening it afresh.
    QStringList tablesInFile()
    {
        EXPECT_TRUE(db().OpenDataBase(file));
        return tables();
    }
    QStringList columnInFile(const QString& table, const QString& name)
    {
        EXPECT_TRUE(db().OpenDataBase(file));
        db().setCurrentTable(table);
        return db().RecordCount() == 0 ? QStringList() : column(name);
    }

    FreshProgram program;
    rt::ScriptedUiServices& fake = program.fake;
    QStringList connectionStrings;
    QStringList sql;
    QString file;  // the copy openCopy opened
};
