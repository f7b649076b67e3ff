#pragma once
// A small language table with every part the loader reads, as lines, for tests to load
// as it is or with one line changed.

#include <QBuffer>
#include <QStringList>

#include "host/AnsiCodePage.h"
#include "host/TextLineReader.h"

inline QStringList smallLanguageTable()
{
    return {
        "Vorbex Language Table", "Version=1", "EngCaption=English", "OutCaption=English", "HelpFile=help.chm",
        "/Buttons", "1=OK", "2=Cancel", "\\Buttons",
        "/TypeNum", "1=Number type", "2=Numbers", "\\TypeNum",
        "/Calculator", "1=host only", "\\Calculator", "/Phisics", "\\Phisics",
        "/CalcMoreNum", "1=x", "\\CalcMoreNum", "/Fractions", "\\Fractions", "/CalcFraction", "\\CalcFraction",
        "/NewFraction", "\\NewFraction", "/SimpleNum", "anything", "\\SimpleNum",
        "/Table", "1=Main window", "2=Open table",
        "/Menu", "Item(0)=&File", "Item(0,1)=&Open", "\\Menu",
        "/Toolbar", "Item(NewDB)=New database*more", "Item(OpenDB)=Open database", "\\Toolbar",
        "\\Table",
        "/TableOptions", "1=Options", "2=Text tables", "\\TableOptions",
        "/Tarifs", "\\Tarifs", "/EditTarifs", "\\EditTarifs", "/AddTarif", "\\AddTarif", "/TransUnits", "\\TransUnits",
        "/NumberConverter", "1=host only", "\\NumberConverter",
        "/Statistic", "1=Digitizer",
        "/Menu", "Item(mnuFile)=&File", "\\Menu",
        "/Toolbar", "Item(Scan)=Scan*it", "\\Toolbar",
        "\\Statistic",
        "/GraphPlot", "1=Plot", "\\GraphPlot",
        "/BuildTable", "1=Build", "2=Step", "\\BuildTable",
        "/XMLVariables", "\\XMLVariables",
        "/DBLogin", "1=Login", "2=User:", "3=Password:", "\\DBLogin",
        "/NewDB", "1=New database", "\\NewDB",
        "/AddField", "1=Add column", "\\AddField",
    };
}

inline QByteArray tableBytes(const QStringList& lines, const char* lineEnd = "\r\n")
{
    return host::AnsiCodePage::current().encode(lines.join(QString::fromLatin1(lineEnd)) + QString::fromLatin1(lineEnd));
}

inline std::unique_ptr<host::TextLineReader> readerOf(const QByteArray& bytes)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(bytes);
    buffer->open(QIODevice::ReadOnly);
    return std::make_unique<host::TextLineReader>(std::move(buffer));
}
