#pragma once
// A small language table with every part the loader reads, as lines, for tests to load
// as it is or with one line changed; and a summary of how far a load got.

#include <QStringList>

#include "../support/TestSupport.h"

#include "lang/LangApp.h"
#include "rt/AnsiCodePage.h"

inline QStringList smallLanguageTable()
{
    return {"Vorbex Language Table", "Version=1", "EngCaption=English", "OutCaption=English", "HelpFile=help.chm",
            "/Buttons", "1=OK", "2=Cancel", "\\Buttons", "/TypeNum", "1=Number type", "2=Numbers", "\\TypeNum",
            "/Calculator", "1=host only", "\\Calculator", "/Phisics", "\\Phisics",
            "/CalcMoreNum", "1=x", "\\CalcMoreNum", "/Fractions", "\\Fractions", "/CalcFraction", "\\CalcFraction",
            "/NewFraction", "\\NewFraction", "/SimpleNum", "anything", "\\SimpleNum",
            "/Table", "1=Main window", "2=Open table", "/Menu", "Item(0)=&File", "Item(0,1)=&Open", "\\Menu",
            "/Toolbar", "Item(NewDB)=New database*more", "Item(OpenDB)=Open database", "\\Toolbar", "\\Table",
            "/TableOptions", "1=Options", "2=Text tables", "\\TableOptions",
            "/Tarifs", "\\Tarifs", "/EditTarifs", "\\EditTarifs", "/AddTarif", "\\AddTarif", "/TransUnits", "\\TransUnits",
            "/NumberConverter", "1=host only", "\\NumberConverter",
            "/Statistic", "1=Digitizer", "/Menu", "Item(mnuFile)=&File", "\\Menu",
            "/Toolbar", "Item(Scan)=Scan*it", "\\Toolbar", "\\Statistic",
            "/GraphPlot", "1=Plot", "\\GraphPlot", "/BuildTable", "1=Build", "2=Step", "\\BuildTable",
            "/XMLVariables", "\\XMLVariables", "/DBLogin", "1=Login", "2=User:", "3=Password:", "\\DBLogin",
            "/NewDB", "1=New database", "\\NewDB", "/AddField", "1=Add column", "\\AddField"};
}

inline QByteArray tableBytes(const QStringList& lines, const char* lineEnd = "\r\n")
{
    return rt::AnsiCodePage::current().encode(lines.join(QString::fromLatin1(lineEnd)) + QString::fromLatin1(lineEnd));
}

// The number of captions in each destination, in the order the file fills them.
inline QString captionCounts(const lang::LangApp& lang)
{
    const lang::TableLangItem& t = lang.Table();
    const lang::StatisticLangItem& s = lang.Statistic();
    QStringList counts;
    for (const int32_t n : {lang.Buttons().Count(), lang.NumberType().Count(), t.Common().Count(), t.Menu().Count(),
                            t.ToolBar().Count(), t.TableOptions().Count(), s.Main().Count(), s.Menu().Count(),
                            s.ToolBar().Count(), s.GraphPlot().Count(), s.BuilderTable().Count(), t.Login().Count(),
                            t.NewDataBase().Count(), t.AddField().Count()})
        counts << QString::number(n);
    return counts.join(u' ');
}
