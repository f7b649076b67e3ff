#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include "ui/FileFilter.h"
#include "ui/Twips.h"
#include "ui/UiServices.h"

using namespace ui;

TEST(MessageBoxStyle, TakesTheStyleNumberApart)
{
    // style, icon, buttons' answers, default button, answer to Escape (0: the user must choose)
    const std::vector<std::tuple<int32_t, int32_t, QList<int32_t>, int, int32_t>> cases = {
        {vbYesNo | vbQuestion, vbQuestion, {vbYes, vbNo}, 0, 0},
        {vbExclamation, vbExclamation, {vbOK}, 0, vbOK},
        {vbCritical, vbCritical, {vbOK}, 0, vbOK},
        {vbYesNoCancel | vbDefaultButton3, 0, {vbYes, vbNo, vbCancel}, 2, vbCancel},
        {vbOKOnly | vbDefaultButton2, 0, {vbOK}, 0, vbOK},  // no second button: the first is default
        {vbAbortRetryIgnore, 0, {vbAbort, vbRetry, vbIgnore}, 0, 0},
        {7, 0, {vbOK}, 0, vbOK}};  // buttons the run time does not know
    for (const auto& [style, icon, answers, defaultButton, escape] : cases) {
        const MessageBoxStyle decoded = MessageBoxStyle::decode(style);
        EXPECT_EQ(decoded.icon, icon) << style;
        EXPECT_EQ(decoded.answers(), answers) << style;
        EXPECT_EQ(decoded.defaultButton, defaultButton) << style;
        EXPECT_EQ(decoded.escapeAnswer(), escape) << style;
    }
}

TEST(FileFilter, HostFiltersBecomeQtNameFilters)
{
    EXPECT_EQ(qtNameFilters("Microsoft DataBase (*.mdb)|*.mdb"), QStringList{"Microsoft DataBase (*.mdb) (*.mdb)"});
    EXPECT_EQ(qtNameFilters("Everything"), QStringList{"Everything (*)"});
    EXPECT_TRUE(qtNameFilters("").isEmpty());
}

TEST(Twips, FifteenToAPixelAt96Dpi)
{
    EXPECT_EQ(twipsToPixels(12000, 96), 800);
    EXPECT_EQ(twipsToPixels(9000, 144), 900);
}
