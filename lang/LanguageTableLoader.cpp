#include "lang/LanguageTableLoader.h"

#include <functional>

#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"
#include "lang/StringHelpers.h"
#include "rt/HostPath.h"
#include "rt/TextLineReader.h"
#include "rt/UiServices.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"

namespace lang {

namespace {

const QString kBanner = QStringLiteral("Vorbex Language Table");


// Thrown inside the loader only, to reach the one structural-error message from any depth.
struct StructuralError {};

// The run-time's Mid(text, start): "" past the end.
QString mid(const QString& text, int32_t start)
{
    return start > text.size() ? QString() : text.mid(start - 1);
}

int16_t plusOne(int16_t position)
{
    if (position == INT16_MAX)
        throw rt::vbError(rt::vberr::Overflow);
    return static_cast<int16_t>(position + 1);
}

class Parser {
public:
    Parser(rt::TextLineReader& in, LangApp& lang) : in_(in), lang_(lang) {}

    QString next() { return in_.readLine(); }

    static void expect(const QString& line, const QString& wanted)
    {
        if (line != wanted)
            throw StructuralError{};
    }

    // A header line "Key=value": checks the key (up to and including the first "=") and
    // returns what follows it.
    QString headerValue(const QString& key)
    {
        const QString line = next();
        int16_t position = 1;
        if (GetToken(line, position, QStringLiteral("=")) != key)
            throw StructuralError{};
        return mid(line, position);
    }

    // "n=text" where n counts the run's lines from 1.
    static void addNumbered(const QString& line, int32_t counter, CaptionList& destination)
    {
        int16_t position = 1;
        if (GetToken(line, position, QStringLiteral("="), true) != QString::number(counter))
            throw StructuralError{};
        destination.Add(mid(line, position));
    }

    void numberedSection(const QString& name, CaptionList& destination)
    {
        expect(next(), u'/' + name);
        const QString closing = u'\\' + name;
        int32_t counter = 0;
        for (QString line = next(); line != closing; line = next())
            addNumbered(line, ++counter, destination);
    }

    void skipThrough(const QString& closing)
    {
        while (next() != closing) {
        }
    }

    void skippedSection(const QString& name)
    {
        expect(next(), u'/' + name);
        skipThrough(u'\\' + name);
    }

    // "Item(key)" and the position after the ")"; the character there is not checked.
    struct Item {
        QString key;
        int16_t after = 0;
    };
    static Item item(const QString& line)
    {
        int16_t position = 1;
        if (GetToken(line, position, QStringLiteral("(")) != QLatin1String("Item("))
            throw StructuralError{};
        Item parsed;
        parsed.key = GetToken(line, position, QStringLiteral(")"), true);
        parsed.after = position;
        return parsed;
    }

    // The window sections "Table" and "Statistic": numbered captions up to "/Menu", the
    // menu part, the toolbar part, the closing line.
    void windowSection(const QString& name, CaptionList& captions, MenuCaptions& menu,
                       const std::function<void()>& beforeToolbar,
                       const std::function<void(const QString& line, int32_t index)>& toolbarItem)
    {
        expect(next(), u'/' + name);
        int32_t counter = 0;
        for (QString line = next(); line != QLatin1String("/Menu") && line != QLatin1String("\\Table"); line = next())
            addNumbered(line, ++counter, captions);
        for (QString line = next(); line != QLatin1String("\\Menu"); line = next()) {
            const Item parsed = item(line);
            menu.Add(mid(line, plusOne(parsed.after)), parsed.key);
        }
        expect(next(), QStringLiteral("/Toolbar"));
        beforeToolbar();
        int32_t index = 0;
        for (QString line = next(); line != QLatin1String("\\Toolbar"); line = next())
            toolbarItem(line, ++index);
        expect(next(), u'\\' + name);
    }

    void tableSection()
    {
        TableLangItem& table = lang_.Table();
        windowSection(
            QStringLiteral("Table"), table.Common(), table.Menu(), [&] { table.ToolBar().SetSize(14); },
            [&](const QString& line, int32_t index) {
                const Item parsed = item(line);
                // The tool tip runs to the first "*", which stays part of it.
                int16_t position = plusOne(parsed.after);
                table.ToolBar().SetItem(parsed.key, index, GetToken(line, position, QStringLiteral("*")));
            });
    }

    void statisticSection()
    {
        StatisticLangItem& statistic = lang_.Statistic();
        windowSection(
            QStringLiteral("Statistic"), statistic.Main(), statistic.Menu(), [] {},
            [&](const QString& line, int32_t) {
                const Item parsed = item(line);
                statistic.ToolBar().Add(mid(line, plusOne(parsed.after)), parsed.key);
            });
    }

    void body()
    {
        numberedSection(QStringLiteral("Buttons"), lang_.Buttons());
        numberedSection(QStringLiteral("TypeNum"), lang_.NumberType());
        skipThrough(QStringLiteral("\\Phisics"));
        for (const char* name : {"CalcMoreNum", "Fractions", "CalcFraction", "NewFraction", "SimpleNum"})
            skippedSection(QLatin1String(name));
        tableSection();
        numberedSection(QStringLiteral("TableOptions"), lang_.Table().TableOptions());
        for (const char* name : {"Tarifs", "EditTarifs", "AddTarif", "TransUnits"})
            skippedSection(QLatin1String(name));
        skipThrough(QStringLiteral("\\NumberConverter"));
        statisticSection();
        numberedSection(QStringLiteral("GraphPlot"), lang_.Statistic().GraphPlot());
        numberedSection(QStringLiteral("BuildTable"), lang_.Statistic().BuilderTable());
        skipThrough(QStringLiteral("\\XMLVariables"));
        numberedSection(QStringLiteral("DBLogin"), lang_.Table().Login());
        numberedSection(QStringLiteral("NewDB"), lang_.Table().NewDataBase());
        numberedSection(QStringLiteral("AddField"), lang_.Table().AddField());
        // Whatever follows belongs to the host and is never read.
    }

private:
    rt::TextLineReader& in_;
    LangApp& lang_;
};

}  // namespace

LanguageTableLoader::LanguageTableLoader(LangApp& lang, host::Registry& registry, rt::UiServices& ui)
    : lang_(lang), registry_(registry), ui_(ui)
{
}

bool LanguageTableLoader::load(const QString& fileName)
{
    const QString folder = registry_.read(host::HKEY_LOCAL_MACHINE, host::keys::Languages, QString());
    const QString path = folder + u'\\' + fileName;
    const std::unique_ptr<rt::TextLineReader> in = rt::TextLineReader::openFile(rt::localPath(path));
    return loadFrom(*in, path);
}

bool LanguageTableLoader::loadFrom(rt::TextLineReader& in, const QString& shownPath)
{
    Parser parser(in, lang_);
    if (parser.next() != kBanner) {
        ui_.messageBox(QStringLiteral("This file ( ") + shownPath + QStringLiteral(" )\r\ndon't language file"),
                       rt::vbExclamation, QStringLiteral("Error loading file"));
        return false;
    }
    try {
        // Any number up to 1 is taken, 0 and negative ones too.
        if (rt::Val(parser.headerValue(QStringLiteral("Version="))) > 1.0) {
            ui_.messageBox(QStringLiteral("Don't right version language table for Vorbex Pro"), rt::vbExclamation,
                           QStringLiteral("Error!"));
            return false;
        }
        parser.headerValue(QStringLiteral("EngCaption="));
        parser.headerValue(QStringLiteral("OutCaption="));
        parser.headerValue(QStringLiteral("HelpFile="));
        parser.body();
    } catch (const StructuralError&) {
        ui_.messageBox(QStringLiteral("Language Table for Vorbex Pro errors!!"), rt::vbExclamation,
                       QStringLiteral("Errors!!"));
    }
    return false;
}

}  // namespace lang
