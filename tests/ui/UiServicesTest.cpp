#include <gtest/gtest.h>

#include "jet/RuntimeError.h"
#include "ui/FileFilter.h"
#include "ui/Twips.h"
#include "ui/UiServices.h"

using namespace ui;

TEST(MessageBoxStyle, TakesTheStyleNumberApart)
{
    const MessageBoxStyle question = MessageBoxStyle::decode(vbYesNo | vbQuestion);
    EXPECT_EQ(question.buttons, vbYesNo);
    EXPECT_EQ(question.icon, vbQuestion);
    EXPECT_EQ(question.answers(), (QList<int32_t>{vbYes, vbNo}));
    EXPECT_EQ(question.escapeAnswer(), 0);  // Yes/No makes the user choose

    const MessageBoxStyle exclamation = MessageBoxStyle::decode(48);
    EXPECT_EQ(exclamation.buttons, vbOKOnly);
    EXPECT_EQ(exclamation.icon, vbExclamation);
    EXPECT_EQ(exclamation.escapeAnswer(), vbOK);

    const MessageBoxStyle critical = MessageBoxStyle::decode(16);
    EXPECT_EQ(critical.icon, vbCritical);
    EXPECT_EQ(critical.answers(), QList<int32_t>{vbOK});
}

TEST(MessageBoxStyle, DefaultButtonAndCancelAnswer)
{
    const MessageBoxStyle threeWay = MessageBoxStyle::decode(vbYesNoCancel | vbDefaultButton3);
    EXPECT_EQ(threeWay.defaultButton, 2);
    EXPECT_EQ(threeWay.escapeAnswer(), vbCancel);
    // A default button the box does not have falls back to the first.
    EXPECT_EQ(MessageBoxStyle::decode(vbOKOnly | vbDefaultButton2).defaultButton, 0);
    // Button codes the run-time does not know show a plain OK box.
    EXPECT_EQ(MessageBoxStyle::decode(7).answers(), QList<int32_t>{vbOK});
}

TEST(FileFilter, HostFiltersBecomeQtNameFilters)
{
    EXPECT_EQ(qtNameFilters("Microsoft DataBase (*.mdb)|*.mdb"), QStringList{"Microsoft DataBase (*.mdb) (*.mdb)"});
    EXPECT_EQ(qtNameFilters("HTML (*.html;*.htm)|*.html;*.htm|XML (*.xml)|*.xml"),
              (QStringList{"HTML (*.html;*.htm) (*.html *.htm)", "XML (*.xml) (*.xml)"}));
    EXPECT_EQ(qtNameFilters("Everything"), QStringList{"Everything (*)"});
    EXPECT_TRUE(qtNameFilters("").isEmpty());
}

TEST(Twips, FifteenToAPixelAt96Dpi)
{
    EXPECT_EQ(twipsToPixels(12000, 96), 800);
    EXPECT_EQ(twipsToPixels(9000, 144), 900);
}

TEST(UiServices, NoneInstalledIsRunTimeError91)
{
    UiServices* saved = UiServices::installed();
    UiServices::install(nullptr);
    try {
        UiServices::current();
        ADD_FAILURE() << "expected error 91";
    } catch (const jet::RuntimeError& e) {
        EXPECT_EQ(e.number(), 91);
    }
    UiServices::install(saved);
}
