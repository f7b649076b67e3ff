// HTML pages: the writer makes a simple page with one table; the reader scans any page for
// tag beginnings (no HTML parser) and takes the first table it finds.

#include <QCoreApplication>

#include "engine/XDataBase.h"
#include "engine/formats/ImportedRows.h"
#include "rt/AnsiCodePage.h"
#include "rt/TextFiles.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"
#include "rt/WholeFile.h"
#include "jet/Recordset.h"
#include "rt/UiServices.h"

namespace engine {

namespace {

const QString kLineBreak = QStringLiteral("\r\n");

// "~" stands for the double quote in the head's templates.
QString pageHead(const QString& fileName)
{
    QString head = QStringLiteral("<!DOCTYPE HTML PUBLIC ~-//W3C//DTD HTML 4.0 Final//EN~><HTML><HEAD>") + kLineBreak +
                   QStringLiteral("<META HTTP-EQUIV=~Content-Type~ Content=~text-html; charset=Windows-1251~>") +
                   kLineBreak + QStringLiteral("<title>Saved Table ") + fileName +
                   QStringLiteral("</title></HEAD><BODY BGCOLOR=#FFFFFF TEXT=#000000>") + kLineBreak +
                   QStringLiteral("<center><table width=~100%~ border=1 cellspacing=0>");
    // Replaced in the whole head, the file name included: a short name such as
    // TABLES~1.HTM shows a double quote in the title.
    return head.replace(u'~', u'"');
}

// The page's bytes, searched for tags without regard to case. Tags are ASCII, so a
// lower-cased copy of the bytes finds them in any case, and a byte position is a
// character position in the ANSI code page.
class PageText {
public:
    explicit PageText(QByteArray bytes) : bytes_(std::move(bytes)), lower_(bytes_.toLower()) {}

    // The position of the first occurrence at or after `from`, -1 when there is none.
    qsizetype find(const char* lowerCaseTag, qsizetype from) const { return lower_.indexOf(lowerCaseTag, from); }
    // The same, or `otherwise` when there is none.
    qsizetype findOr(const char* lowerCaseTag, qsizetype from, qsizetype otherwise) const
    {
        const qsizetype at = find(lowerCaseTag, from);
        return at < 0 ? otherwise : at;
    }
    qsizetype size() const { return bytes_.size(); }
    QString text(qsizetype from, qsizetype to) const
    {
        return rt::AnsiCodePage::current().decode(QByteArrayView(bytes_).sliced(from, to - from));
    }

private:
    QByteArray bytes_;
    QByteArray lower_;
};

qsizetype countTables(const PageText& page)
{
    qsizetype count = 0;
    for (qsizetype at = page.find("<table", 0); at >= 0; at = page.find("<table", at + 6))
        ++count;
    return count;
}

// Asks which table to read when there are several, and finds it: the search for the n-th
// table restarts each time on the hit it has just found, so every answer gives the first.
// An answer below 1 (a cancelled box is 0) runs the 16-bit counter into an overflow.
qsizetype chosenTable(const PageText& page, qsizetype count)
{
    int32_t number = 1;
    if (count > 1) {
        const QString n = QString::number(count);
        const QString answer = rt::UiServices::current().inputBox(
            QStringLiteral("В данном HTML-файле найдено несколько( ") + n +
                QStringLiteral(" ) таблиц. Какую из них хотите загрузить: Введите номер таблицы (от 1 до ") + n +
                QStringLiteral(" )"),
            QStringLiteral("Введите номер таблицы"), QStringLiteral("1"));
        number = rt::CLng(rt::Val(answer));
        if (number > count)
            number = int32_t(count);
    }
    qsizetype start = page.find("<table", 0);
    for (int16_t i = 1; i != number; i = rt::CInt(double(i) + 1))
        start = page.find("<table", start);
    return start;
}

jet::RuntimeError noColumnNames(const QString& fileName)
{
    return rt::vbError(rt::vberr::InvalidProcedureCall,
                         QStringLiteral("Invalid procedure call or argument: the first row of the table in '%1' has "
                                        "no <td> cell to name a column")
                             .arg(fileName));
}

}  // namespace

bool XDataBase::SaveTableHTML(const QString& fileName)
{
    rt::TextFiles& files = rt::TextFiles::program();
    const int16_t number = files.FreeFile();
    files.Open(fileName, rt::TextFiles::Mode::Output, number);
    files.PrintLine(number, pageHead(fileName));

    // The text of the cell before: an empty or Null cell repeats it, encoded once more.
    QString cell;
    QString line = QStringLiteral("<tr>");
    for (int32_t c = 1; c <= fieldCount(); ++c) {
        cell = EncodeHtmlEntities(CaptionOfField(c));
        line += QStringLiteral("<td><b>") + cell + QStringLiteral("</b></td>");
    }
    files.PrintLine(number, line + QStringLiteral("</tr>") + kLineBreak);

    recordset_->MoveFirst();
    const int32_t count = recordset_->RecordCount();
    for (int32_t r = 1; r <= count; ++r) {
        line = QStringLiteral("<tr>");
        for (int32_t c = 1; c <= fieldCount(); ++c) {
            const QString value = cellText(c);
            if (!value.isEmpty())
                cell = value;
            cell = EncodeHtmlEntities(cell);
            line += QStringLiteral("<td>") + cell + QStringLiteral("</td>");
        }
        line += QStringLiteral("</tr>") + kLineBreak;
        if (r < recordset_->RecordCount())
            recordset_->MoveNext();
        files.PrintLine(number, line);
        if (r % 500 == 0 && QCoreApplication::instance())
            QCoreApplication::processEvents();
    }
    files.PrintLine(number, QStringLiteral("</table>|</center>|</BODY>|</HTML>").replace(u'|', kLineBreak));
    files.CloseAll();
    // The result is never set; the save command does not look at it.
    return false;
}

bool XDataBase::ImportHtmlTable(const QString& fileName)
{
    QString name = TableNameOfFile(fileName);
    const PageText page(rt::readWholeFile(fileName));
    const qsizetype tables = countTables(page);
    if (tables == 0)
        return false;

    const qsizetype start = chosenTable(page, tables);
    // A page cut short ends its table, row or cell where the text ends.
    const qsizetype end = page.findOr("</table>", start, page.size());
    qsizetype current = page.findOr(">", start + 6, page.size());

    bool tableCreated = false;
    ImportedRows rows(recordset_);
    for (bool header = true;; header = false) {
        const qsizetype row = page.find("<tr", current + 1);
        // A new record is begun before the search is looked at, so one empty record
        // always follows the last row.
        if (!header) {
            if (!tableCreated)
                throw noColumnNames(fileName);
            recordset_->AddNew();
        }
        if (row < 0 || row > end)
            break;
        const qsizetype rowEnd = page.findOr("</tr>", row, end);
        const auto readRow = [&] {
            int32_t k = 0;
            for (qsizetype at = page.find("<td", row + 3); at >= 0 && at <= rowEnd; at = page.find("<td", at + 3)) {
                const qsizetype tagEnd = page.find(">", at);
                const qsizetype textStart = tagEnd < 0 || tagEnd >= rowEnd ? rowEnd : tagEnd + 1;
                const QString text = CleanCellText(page.text(textStart, page.findOr("</td>", textStart, rowEnd)));
                ++k;
                if (!header) {
                    setCell(k, text);
                } else if (k == 1) {
                    name = AvoidNameClash(name);
                    if (const auto failed = CreateImportTable(name, text, QStringLiteral("TEXT")))
                        throw *failed;
                    AdoptImportedTable(name, {text});
                    tableCreated = true;
                } else {
                    addImportedColumn(text);
                }
            }
        };
        header ? readRow() : rows.fill(readRow);
        current = row;
    }
    if (!tableCreated)
        throw noColumnNames(fileName);
    rows.send();
    setAddedTable(name);
    return true;
}

}  // namespace engine
