// What the three table-file readers share: the new table's name, its creation, and taking
// it on as the current table.

#include <memory>

#include "engine/XDataBase.h"
#include "rt/ErrorTrap.h"
#include "rt/StringList.h"
#include "jet/Recordset.h"
#include "lang/LangApp.h"
#include "rt/UiServices.h"

namespace engine {

QString XDataBase::AvoidNameClash(QString name)
{
    const lang::CaptionList& common = captions_.Table().Common();
    // A clash with the last name of the list goes unnoticed here: creating the table
    // then fails, and the reader reports that.
    for (;;) {
        int32_t position = 0;
        for (int32_t i = 1; i <= Tables().Count() && position == 0; ++i)
            if (Tables().Item(i) == name)
                position = i;
        if (position == 0 || position >= Tables().Count())
            return name;
        // A cancelled box answers "", which is taken as the name like any other.
        name = rt::UiServices::current().inputBox(
            lang::captionOr(common, 18, QStringLiteral("The database already has a table with this name. Enter another name:")),
            lang::captionOr(common, 17, QStringLiteral("Table name")), name);
    }
}

std::optional<jet::RuntimeError> XDataBase::CreateImportTable(const QString& table, const QString& column,
                                                               const QString& type)
{
    queryText_ = QStringLiteral("CREATE TABLE ") + table + QStringLiteral(" (") + column + QStringLiteral(" ") + type +
                 QStringLiteral(")");
    std::optional<jet::RuntimeError> failed = rt::trapError([&] { execute(queryText_); });
    replaceRecordset();
    // A table that could not be created (its name taken, a name Jet refuses) leaves the
    // fresh record set closed: opening it on that name could find another table of the
    // same name, and the rows meant for the new table would go into it.
    if (failed)
        return failed;
    rt::resumeNext({[&] {
        queryText_ = QStringLiteral("SELECT * FROM ") + table;
        openQuery(adOpenForwardOnly, adLockBatchOptimistic);
    }});
    return std::nullopt;
}

void XDataBase::addImportedColumn(const QString& name)
{
    if (AddField(name, QStringLiteral("TEXT")) || !lastAlterError_)
        return;
    throw jet::RuntimeError(lastAlterError_->number(),
                            lastAlterError_->description() + " (column '" + name.toStdString() + "' of the table '" +
                                currentTable_.toStdString() + "')");
}

void XDataBase::AdoptImportedTable(const QString& name, const QStringList& columns)
{
    Tables().Add(name);
    auto list = std::make_shared<rt::StringList>();
    for (const QString& column : columns)
        list->Add(column);
    setColumns(std::move(list));
    currentTable_ = name;
}

}  // namespace engine
