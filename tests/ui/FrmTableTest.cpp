#include <gtest/gtest.h>

#include "app/ModMain.h"
#include "lang/LangApp.h"
#include "ui/Twips.h"
#include "ui/main/frmTable.h"

using namespace ui;

class FrmTableTest : public testing::Test {
protected:
    void SetUp() override { app::resetModuleGlobals(); }
    void TearDown() override { app::resetModuleGlobals(); }
};

TEST_F(FrmTableTest, CaptionIsCommonItemOneOfTheLanguageTable)
{
    app::gLang().Table().Common().Add(QString::fromUtf8("Sheetwright - таблицы"));
    app::gLang().Table().Common().Add("second caption");
    frmTable form;
    EXPECT_EQ(form.objectName(), "frmTable");
    EXPECT_EQ(form.windowTitle(), QString::fromUtf8("Sheetwright - таблицы"));
}

TEST_F(FrmTableTest, OpensWithoutCaptionWhenTheLanguageTableGaveNone)
{
    frmTable form;
    EXPECT_EQ(form.windowTitle(), QString());
}

TEST_F(FrmTableTest, TakesItsSizeFromTheSettingsInTwips)
{
    app::gWinX = 12000;
    app::gWinY = 9000;
    frmTable form;
    EXPECT_EQ(form.width(), twipsToPixels(12000, form.logicalDpiX()));
    EXPECT_EQ(form.height(), twipsToPixels(9000, form.logicalDpiY()));
}
