// The English and Russian tables in share/languages load completely, hold every caption
// the program names by number, and agree with each other in shape.

#include <gtest/gtest.h>

#include "../support/TestSupport.h"
#include "LanguageTableText.h"

#include "../support/ScriptedUiServices.h"
#include "host/Registry.h"
#include "lang/LanguageTableLoader.h"

using namespace lang;

namespace {

const QString kFolder = QStringLiteral(SHEETWRIGHT_SOURCE_DIR "/share/languages/");

// How the table loaded: what was shown, the counts, and the keys of menus and toolbars.
QString shapeOf(const char* name, LangApp& lang)
{
    rt::ScriptedUiServices fake;
    host::Registry unused(QStringLiteral("/nonexistent"));
    LanguageTableLoader(lang, unused, fake).loadFrom(*readerOf(readFile(kFolder + name)), name);
    QStringList shape{QString::number(fake.boxes().size()) + " box(es)", captionCounts(lang)};
    for (int32_t i = 1; i <= lang.Table().Menu().Count(); ++i)
        shape << lang.Table().Menu().Key(i);
    for (int32_t i = 1; i <= lang.Table().ToolBar().Count(); ++i)
        shape << lang.Table().ToolBar().Key(i);
    for (int32_t i = 1; i <= lang.Statistic().Menu().Count(); ++i)
        shape << lang.Statistic().Menu().Key(i);
    for (int32_t i = 1; i <= lang.Statistic().ToolBar().Count(); ++i)
        shape << lang.Statistic().ToolBar().Key(i);
    return shape.join(u' ');
}

}  // namespace

TEST(ShippedLanguageTables, LoadWithoutAMessageInTheSameShapeWithWhatTheProgramNames)
{
    LangApp en;
    LangApp ru;
    const QString shape = shapeOf("English.lng", en);
    EXPECT_EQ(shapeOf("Russian.lng", ru), shape);
    EXPECT_TRUE(shape.startsWith("0 box(es)")) << shape.toStdString();
    // Five number types, twenty-four main-window captions, three login, three new-database and
    // four add-column captions; at least four buttons and five options; no part empty.
    const QStringList counts = captionCounts(en).split(u' ');
    EXPECT_EQ(counts.mid(1, 2) + counts.mid(11), QStringList({"5", "24", "3", "3", "4"}));
    EXPECT_TRUE(counts[0].toInt() >= 4 && counts[5].toInt() >= 5 && !counts.contains("0")) << shape.toStdString();
    for (const LangApp* lang : {&en, &ru}) {
        const TableLangItem& table = lang->Table();
        for (int32_t i = 1; i <= table.ToolBar().Count(); ++i)
            EXPECT_TRUE(!table.ToolBar().Item(i).isEmpty() && !table.ToolBar().Item(i).contains(u'*')) << i;
        // The placeholders the program fills in, and the filters whose index picks the
        // separator: three each, in the host's filter syntax.
        EXPECT_TRUE(table.Common().Item(8).contains("%TABLE%") && table.Common().Item(12).contains("%FILE%"));
        EXPECT_TRUE(table.Common().Item(19).contains("%COUNT%") && table.Common().Item(20).contains("%ROW%") &&
                    table.Common().Item(20).contains("%COLUMN%"));
        EXPECT_EQ(table.Common().Item(3).count(u'|') + table.Common().Item(5).count(u'|'), 10);
    }
    EXPECT_EQ(en.Table().Common().Item(1), "Sheetwright - Access database tables");
    EXPECT_EQ(ru.Table().Common().Item(1), QString::fromUtf8("Sheetwright - таблицы баз данных Access"));
}
