#include <gtest/gtest.h>

#include "../support/FreshProgram.h"

#include "lang/LangApp.h"
#include "ui/Twips.h"
#include "ui/main/frmTable.h"

TEST(FrmTable, TakesItsCaptionFromTheLanguageTableAndItsSizeInTwipsFromTheSettings)
{
    FreshProgram program;
    EXPECT_EQ(ui::frmTable().windowTitle(), QString());  // no language table: no caption
    app::gLang().Table().Common().Add(QString::fromUtf8("Sheetwright - таблицы"));
    app::gLang().Table().Common().Add("second caption");
    app::gWinX = 12000;
    app::gWinY = 9000;
    ui::frmTable form;
    EXPECT_EQ(form.objectName(), "frmTable");
    EXPECT_EQ(form.windowTitle(), QString::fromUtf8("Sheetwright - таблицы"));
    EXPECT_EQ(form.size(), QSize(800, 600) * form.logicalDpiX() / 96);
    EXPECT_EQ(ui::twipsToPixels(9000, 144), 900);  // whatever the screen here, the density counts
}
