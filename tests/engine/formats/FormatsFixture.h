#pragma once
// The setting of the table-file tests: the engine fixture (fresh program, scripted boxes,
// every database checked after each test) plus small databases made on the spot, table
// files written and read whole, and a table's content as text.

#include <optional>
#include <vector>

#include "../EngineFixture.h"

#include "rt/TextFiles.h"
#include "jet/Connection.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"

using Cell = std::optional<QString>;
using Rows = std::vector<std::vector<Cell>>;

class FormatsFixture : public EngineFixture {
protected:
    void TearDown() override
    {
        rt::TextFiles::program().CloseAll();
        EngineFixture::TearDown();
    }

    // How many of the program's numbered files are open.
    static int openFiles()
    {
        int open = 0;
        for (int16_t n = 1; n <= 511; ++n)
            open += rt::TextFiles::program().isOpen(n) ? 1 : 0;
        return open;
    }

    // A new Access 2000 database holding one table, made by the statement and filled with
    // the rows (std::nullopt for Null), opened in the engine with that table current.
    void openNewTable(const QString& table, const QString& createStatement, const Rows& rows,
                      const QString& databaseName = "made.mdb")
    {
        file = path(databaseName);
        jet::createDatabase(file.toStdString(), jet::Version::Jet4, 1251);
        {
            jet::Connection cn;
            cn.Open("Provider=microsoft.jet.OLEDB.4.0;Data Source=" + file.toStdString());
            cn.Execute(createStatement.toStdString(), nullptr, -1);
            jet::Recordset rs;
            rs.Open("SELECT * FROM " + table.toStdString(), cn, 2, 4);
            for (const std::vector<Cell>& row : rows) {
                rs.AddNew();
                for (size_t c = 0; c < row.size(); ++c)
                    rs.Fields()[int32_t(c)].setValue(row[c] ? jet::Variant::string(row[c]->toStdString()) : jet::Variant::null());
            }
            rs.UpdateBatch();
        }
        ASSERT_TRUE(db().OpenDataBase(file));
        db().setCurrentTable(table);
        sql.clear();
    }

    // A table file in the test folder, written byte for byte.
    QString tableFile(const QString& name, const QByteArray& bytes)
    {
        writeFile(path(name), bytes);
        return path(name);
    }

    // Every record of the table, its cells joined by "|", Null as "<Null>"; the table
    // becomes the current one.
    static QStringList content(const QString& table)
    {
        db().setCurrentTable(table);
        QStringList records;
        if (db().RecordCount() == 0)
            return records;
        for (db().MoveFirst(); !db().EndOfRecords(); db().MoveNext()) {
            QStringList cells;
            for (int32_t c = 1; c <= db().Columns().Count(); ++c) {
                QString value;
                cells << (runTimeErrorOf([&] { value = db().GetCurrentRecord(db().CaptionOfField(c)); }) == 94
                              ? QStringLiteral("<Null>")
                              : value);
            }
            records << cells.join(u'|');
        }
        return records;
    }
};
