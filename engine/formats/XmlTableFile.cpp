// The program's XML dialect: every row is one element whose "text" attribute holds the
// row's values joined by a separator that the "sep" attribute names; the column names are
// stored the same way once. Values go in raw, unescaped.
//
// The templates are the ones the host suite's tools write and read, with "|" standing for
// the double quote, "*" for the separator, "@#$!!!" for the column list and "%^%" for a
// row's values. The order in which they are filled is part of the format: in the column
// line and in every row line the quotes are put in after the separator, so a separator
// "|" comes out as a double quote there (and so does every "|" in a column name).

#include <array>
#include <optional>

#include "engine/XDataBase.h"
#include "engine/formats/ImportedRows.h"
#include "rt/ErrorTrap.h"
#include "rt/TextFiles.h"
#include "rt/VbError.h"
#include "rt/VbStrings.h"
#include "host/XmlDocument.h"
#include "jet/Recordset.h"
#include "rt/UiServices.h"

namespace engine {

namespace {

const QString kQuote = QStringLiteral("\"");
const QString kQuoteMark = QStringLiteral("|");

// Tab first, so a table without tabs in its values is always written with tabs.
constexpr std::array<char16_t, 20> kSeparators = {u'\t', u',', u';', u':', u'.', u'[', u']', u'{', u'}', u'(',
                                                  u')',  u'`', u'~', u'!', u'@', u'#', u'$', u'%', u'^', u'|'};

// The first child of that name, exactly as written.
std::optional<host::XmlElement> childNamed(const host::XmlElement& parent, const QString& name)
{
    for (int32_t i = 1; i <= parent.childCount(); ++i)
        if (parent.child(i).name() == name)
            return parent.child(i);
    return std::nullopt;
}

}  // namespace

QString XDataBase::ChooseSeparator()
{
    // The candidates are single characters, so looking for them cell by cell finds the
    // same ones as looking in all the values run together would.
    std::array<bool, kSeparators.size()> occurs{};
    recordset_->MoveFirst();
    const int32_t count = recordset_->RecordCount();
    for (int32_t r = 1; r <= count; ++r) {
        for (int32_t c = 1; c <= fieldCount(); ++c) {
            const QString value = cellText(c);
            for (size_t i = 0; i < kSeparators.size(); ++i)
                occurs[i] = occurs[i] || value.contains(QChar(kSeparators[i]));
        }
        if (r < recordset_->RecordCount())
            recordset_->MoveNext();
    }
    for (size_t i = 0; i < kSeparators.size(); ++i)
        if (!occurs[i])
            return QString(QChar(kSeparators[i]));
    // No fallback: values that hold every candidate cannot be written in this format.
    throw rt::vbError(rt::vberr::SubscriptOutOfRange,
                        QStringLiteral("Subscript out of range: the values hold every separator the XML table "
                                       "format can use"));
}

bool XDataBase::SaveTableXML(const QString& fileName)
{
    const QString declaration = QStringLiteral("<?xml version=|1.0|?>").replace(kQuoteMark, kQuote);
    const QString separator = ChooseSeparator();

    rt::TextFiles& files = rt::TextFiles::program();
    files.CloseAll();
    const int16_t number = files.FreeFile();
    files.Open(fileName, rt::TextFiles::Mode::Output, number);

    QString names;
    for (int32_t c = 1; c <= fieldCount(); ++c)
        names += CaptionOfField(c) + separator;
    names.chop(separator.size());

    files.PrintLine(number, declaration);
    files.PrintLine(number,
                    QStringLiteral("<table type=|list| sep=|*| >").replace(kQuoteMark, kQuote).replace(u'*', separator));
    files.PrintLine(number, QStringLiteral("<columns sep=|*| text=|@#$!!!| />")
                                .replace(u'*', separator)
                                .replace(QStringLiteral("@#$!!!"), names)
                                .replace(kQuoteMark, kQuote));
    files.PrintLine(number, QStringLiteral("<data>"));

    const QString lineTemplate = QStringLiteral("<line sep=|") + separator + QStringLiteral("| text=|%^%|/>");
    recordset_->MoveFirst();
    const int32_t count = recordset_->RecordCount();
    for (int32_t r = 1; r <= count; ++r) {
        QString values;
        for (int32_t c = 1; c <= fieldCount(); ++c)
            values += cellText(c) + separator;
        values.chop(separator.size());
        files.PrintLine(number, QString(lineTemplate).replace(kQuoteMark, kQuote).replace(QStringLiteral("%^%"), values));
        if (r < recordset_->RecordCount())
            recordset_->MoveNext();
    }
    files.PrintLine(number, QStringLiteral("</data>"));
    files.PrintLine(number, QStringLiteral("</table>"));
    files.Close(number);
    return true;
}

bool XDataBase::ImportXmlTable(const QString& fileName)
{
    bool imported = false;
    const auto error = rt::trapError([&] {
        QString name = TableNameOfFile(fileName);
        host::XmlDocument& document = xmlDocument_.get();
        if (!document.load(fileName))
            return;
        const host::XmlElement table = document.element(1);
        if (table.attribute(QStringLiteral("type")) != u"list")
            return;
        const std::optional<host::XmlElement> columnsElement = childNamed(table, QStringLiteral("columns"));
        if (!columnsElement)
            return;
        const QStringList columns =
            rt::Split(columnsElement->attribute(QStringLiteral("text")), columnsElement->attribute(QStringLiteral("sep")));
        if (columns.isEmpty())
            throw rt::vbError(rt::vberr::SubscriptOutOfRange,
                                QStringLiteral("Subscript out of range: the XML table names no column"));

        name = AvoidNameClash(name);
        if (const auto failed = CreateImportTable(name, columns[0], QStringLiteral("TEXT")))
            throw *failed;
        AdoptImportedTable(name, columns);
        for (qsizetype i = 1; i < columns.size(); ++i)
            addImportedColumn(columns[i]);

        // From here on a table exists: a silent failure leaves it with the rows stored so far.
        const std::optional<host::XmlElement> data = childNamed(table, QStringLiteral("data"));
        if (!data)
            return;
        ImportedRows rows(recordset_);
        for (int32_t i = 1; i <= data->childCount(); ++i) {
            const host::XmlElement line = data->child(i);
            if (line.name() != u"line")
                return;
            recordset_->AddNew();
            rows.fill([&] {
                const QStringList values =
                    rt::Split(line.attribute(QStringLiteral("text")), line.attribute(QStringLiteral("sep")));
                for (qsizetype k = 0; k < values.size(); ++k)
                    setCell(int32_t(k + 1), values[k]);
            });
        }
        rows.send();
        setAddedTable(name);
        imported = true;
    });
    if (error)
        rt::UiServices::current().messageBox(QStringLiteral("Error of opening table XML!"), rt::vbCritical,
                                             QStringLiteral("Error!"));
    return imported && !error;
}

}  // namespace engine
