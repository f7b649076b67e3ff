// Opening a table file: the reader is chosen by the file's extension alone.

#include "engine/XDataBase.h"
#include "lang/StringHelpers.h"

namespace engine {

namespace {

enum class TableFileKind { Text, CommaText, Html, Xml };

TableFileKind kindOf(const QString& fileName)
{
    const QString extension = lang::GetFileExtension(fileName).toUpper();
    // ".txt" is always comma-separated, whatever separator is set for other text files.
    if (extension == u"TXT")
        return TableFileKind::CommaText;
    if (extension == u"HTM" || extension == u"HTML" || extension == u"SHTM" || extension == u"SHTML")
        return TableFileKind::Html;
    if (extension == u"XML")
        return TableFileKind::Xml;
    return TableFileKind::Text;
}

}  // namespace

bool XDataBase::OpenTable(const QString& fileName)
{
    switch (kindOf(fileName)) {
    case TableFileKind::CommaText: return ImportTextTable(fileName, QStringLiteral(","));
    case TableFileKind::Html: return ImportHtmlTable(fileName);
    case TableFileKind::Xml: return ImportXmlTable(fileName);
    case TableFileKind::Text: break;
    }
    return ImportTextTable(fileName, DefaultSeparator());
}

QString XDataBase::TableNameOfFile(const QString& fileName)
{
    QString name = fileName.mid(std::max(fileName.lastIndexOf(u'/'), fileName.lastIndexOf(u'\\')) + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot >= 0)
        name.truncate(dot);
    return name;
}

QString XDataBase::ImportedTableName(const QString& fileName)
{
    const QString name = TableNameOfFile(fileName);
    const TableFileKind kind = kindOf(fileName);
    const bool text = kind == TableFileKind::Text || kind == TableFileKind::CommaText;
    return text ? withoutReservedWord(name) : name;
}


}  // namespace engine
