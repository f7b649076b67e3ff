// The English and Russian tables in share/languages load completely, hold every caption
// the program names by number or key, and agree with each other.

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"
#include "lang/LanguageTableLoader.h"
#include "ui/ScriptedUiServices.h"

using namespace lang;

namespace {

const QString kFolder = QStringLiteral(SHEETWRIGHT_SOURCE_DIR "/share/languages");

const QStringList kMenuKeys = {
    "0", "0,0", "0,0,0", "0,0,1", "0,1", "0,1,0", "0,1,1", "0,1,2", "0,2", "0,4", "0,4,0", "0,4,1", "0,5", "0,5,0",
    "0,5,1", "0,6", "0,8", "1", "1,0", "2", "2,0", "2,0,0", "2,0,1", "2,1", "2,1,0", "2,1,1", "2,1,2", "2,2",
    "2,2,0", "2,2,1", "2,3", "2,4", "2,5", "3", "3,0", "3,1", "3,2", "3,3", "3,4", "3,5", "3,6", "3,7", "3,8",
    "3,9", "3,10", "3,11", "3,12", "3,14", "4", "4,0", "4,1", "5", "5,0", "5,1"};

const QStringList kToolbarKeys = {"NewDB", "NewTable", "OpenDB", "Open", "Save", "Copy", "TableHZ",
                                  "TableVR", "InsertRIAD", "DelStroke", "DelColumn", "InsertRES", "EditView", "Stat"};

struct Loaded {
    LangApp lang;
    ui::ScriptedUiServices fake;
};

std::unique_ptr<Loaded> loadShipped(const QString& file)
{
    auto loaded = std::make_unique<Loaded>();
    QTemporaryDir dir;
    host::Registry registry(dir.path());
    registry.write(host::HKEY_LOCAL_MACHINE, host::keys::Languages, QString(), kFolder);
    LanguageTableLoader(loaded->lang, registry, loaded->fake).load(file);
    return loaded;
}

QStringList menuKeys(const MenuCaptions& menu)
{
    QStringList keys;
    for (int32_t i = 1; i <= menu.Count(); ++i)
        keys << menu.Key(i);
    return keys;
}

}  // namespace

class ShippedLanguageTable : public testing::TestWithParam<const char*> {};

TEST_P(ShippedLanguageTable, LoadsEveryPartWithoutAMessage)
{
    const auto loaded = loadShipped(QString::fromLatin1(GetParam()));
    const LangApp& lang = loaded->lang;
    EXPECT_TRUE(loaded->fake.boxes().empty());
    EXPECT_GE(lang.Buttons().Count(), 4);           // OK, Cancel, ..., Browse (4)
    EXPECT_EQ(lang.NumberType().Count(), 5);        // caption, frame, three types
    EXPECT_EQ(lang.Table().Common().Count(), 18);   // items 13 to 18 are named by number
    EXPECT_EQ(menuKeys(lang.Table().Menu()), kMenuKeys);
    ASSERT_EQ(lang.Table().ToolBar().Count(), 14);
    for (int32_t i = 1; i <= 14; ++i) {
        EXPECT_EQ(lang.Table().ToolBar().Key(i), kToolbarKeys[i - 1]);
        EXPECT_FALSE(lang.Table().ToolBar().Item(i).isEmpty());
        EXPECT_FALSE(lang.Table().ToolBar().Item(i).contains(u'*'));
    }
    EXPECT_GE(lang.Table().TableOptions().Count(), 5);
    EXPECT_EQ(lang.Table().Login().Count(), 3);
    EXPECT_EQ(lang.Table().NewDataBase().Count(), 3);
    EXPECT_EQ(lang.Table().AddField().Count(), 4);
    EXPECT_GT(lang.Statistic().Main().Count(), 0);
    EXPECT_GT(lang.Statistic().Menu().Count(), 0);
    EXPECT_GT(lang.Statistic().ToolBar().Count(), 0);
    EXPECT_GT(lang.Statistic().GraphPlot().Count(), 0);
    EXPECT_GT(lang.Statistic().BuilderTable().Count(), 0);
    // The placeholders the program substitutes.
    EXPECT_TRUE(lang.Table().Common().Item(8).contains("%TABLE%"));
    EXPECT_TRUE(lang.Table().Common().Item(12).contains("%FILE%"));
    // Filters whose index picks the separator: exactly three, in host filter syntax.
    EXPECT_EQ(lang.Table().Common().Item(3).count(u'|'), 5);
    EXPECT_EQ(lang.Table().Common().Item(5).count(u'|'), 5);
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedLanguageTable, testing::Values("English.lng", "Russian.lng"));

TEST(ShippedLanguageTables, EnglishAndRussianHaveTheSameShape)
{
    const auto english = loadShipped("English.lng");
    const auto russian = loadShipped("Russian.lng");
    const LangApp& en = english->lang;
    const LangApp& ru = russian->lang;
    EXPECT_EQ(en.Buttons().Count(), ru.Buttons().Count());
    EXPECT_EQ(en.Table().TableOptions().Count(), ru.Table().TableOptions().Count());
    EXPECT_EQ(en.Statistic().Main().Count(), ru.Statistic().Main().Count());
    EXPECT_EQ(menuKeys(en.Statistic().Menu()), menuKeys(ru.Statistic().Menu()));
    EXPECT_EQ(en.Statistic().GraphPlot().Count(), ru.Statistic().GraphPlot().Count());
    EXPECT_EQ(en.Statistic().BuilderTable().Count(), ru.Statistic().BuilderTable().Count());
    for (int32_t i = 1; i <= en.Statistic().ToolBar().Count(); ++i)
        EXPECT_EQ(en.Statistic().ToolBar().Key(i), ru.Statistic().ToolBar().Key(i));
    EXPECT_EQ(en.Table().Common().Item(1), "Sheetwright - Access database tables");
    EXPECT_EQ(ru.Table().Common().Item(1), QString::fromUtf8("Sheetwright - таблицы баз данных Access"));
}

TEST(ShippedLanguageTables, AreWindows1251WithCrLfLineEnds)
{
    for (const char* name : {"English.lng", "Russian.lng"}) {
        QFile file(kFolder + "/" + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        EXPECT_EQ(bytes.count('\n'), bytes.count("\r\n")) << name;
        EXPECT_EQ(bytes.count('\r'), bytes.count("\r\n")) << name;
    }
}
