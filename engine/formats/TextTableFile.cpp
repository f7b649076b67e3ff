// Separated text: a line of column names, then one line per record. Nothing is quoted or
// escaped; the separator may be longer than one character and goes in whole.

#include "engine/XDataBase.h"
#include "engine/formats/ImportedRows.h"
#include "rt/TextFiles.h"
#include "rt/TextLineReader.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"
#include "rt/VbStrings.h"
#include "jet/Recordset.h"

namespace engine {

namespace {

void cutLastSeparator(QString& line, const QString& separator)
{
    if (line.size() >= separator.size())
        line.chop(separator.size());
}

}  // namespace

bool XDataBase::SaveTable(const QString& fileName, const QString& separator)
{
    rt::TextFiles& files = rt::TextFiles::program();
    const int16_t number = files.FreeFile();
    files.CloseAll();
    files.Open(fileName, rt::TextFiles::Mode::Output, number);

    QString line;
    for (int32_t c = 1; c <= fieldCount(); ++c)
        line += CaptionOfField(c) + separator;
    cutLastSeparator(line, separator);
    files.PrintLine(number, line);

    recordset_->MoveFirst();
    const int32_t count = recordset_->RecordCount();
    for (int32_t r = 1; r <= count; ++r) {
        line.clear();
        // An empty cell adds no separator either: the values after it move one column
        // to the left, as files written by the host suite's tools have them.
        for (int32_t c = 1; c <= fieldCount(); ++c) {
            const QString value = cellText(c);
            if (!value.isEmpty())
                line += value + separator;
        }
        cutLastSeparator(line, separator);
        files.PrintLine(number, line);
        // r * 10 is a 16-bit product: the 3277th record overflows, so a text save holds
        // 3276 records at most.
        saveProgress_ = rt::CInt(double(r) * 10) / double(count);
        if (r < recordset_->RecordCount())
            recordset_->MoveNext();
    }
    files.CloseAll();
    return true;
}

bool XDataBase::ImportTextTable(const QString& fileName, const QString& separator)
{
    QString name = withoutReservedWord(TableNameOfFile(fileName));
    const std::unique_ptr<rt::TextLineReader> in = rt::TextLineReader::openFile(fileName);
    if (in->atEnd())
        throw rt::vbError(rt::vberr::InputPastEndOfFile,
                            QStringLiteral("Input past end of file: '%1' is empty, it has no line of column names")
                                .arg(fileName));

    const QStringList columns = rt::Split(in->readLine(), separator);
    QString definitions;
    for (const QString& column : columns)
        definitions += column + QStringLiteral(" TEXT") + QStringLiteral(",");
    definitions.chop(1);
    name = AvoidNameClash(name);
    queryText_ = QStringLiteral("CREATE TABLE ") + name + QStringLiteral(" (") + definitions + QStringLiteral(");");
    execute(queryText_);
    replaceRecordset();
    queryText_ = QStringLiteral("SELECT * FROM ") + name;
    openQuery(adOpenForwardOnly, adLockBatchOptimistic);
    AdoptImportedTable(name, columns);

    ImportedRows rows(recordset_);
    for (int32_t lineNumber = 2; !in->atEnd(); ++lineNumber) {
        const QStringList fields = rt::Split(in->readLine(), separator);
        // Refused before the row is begun, so the rows stored so far stay and no half
        // row is left pending in the record set.
        if (fields.size() > fieldCount())
            throw rt::vbError(rt::vberr::SubscriptOutOfRange,
                                QStringLiteral("Subscript out of range: line %1 of '%2' has %3 fields, but the table "
                                               "%4 has %5 columns")
                                    .arg(lineNumber).arg(fileName).arg(fields.size()).arg(name).arg(fieldCount()));
        recordset_->AddNew();
        rows.fill([&] {
            for (int32_t k = 1; k <= fields.size(); ++k)
                setCell(k, fields[k - 1]);
        });
    }
    rows.send();
    setAddedTable(name);
    return true;
}

}  // namespace engine
