#include <gtest/gtest.h>

#include "ui/ScriptedUiServices.h"

using namespace ui;

TEST(ScriptedUiServices, AnswersFromItsQueuesInOrderAndRecordsEveryBox)
{
    ScriptedUiServices fake;
    fake.answerMessageBox(vbNo).answerMessageBox(vbYes).answerInputBox("Orders").answerOpenFile("/tmp/a.mdb", 2);
    EXPECT_EQ(fake.messageBox("first?", vbYesNo | vbQuestion, "Q"), vbNo);
    EXPECT_EQ(fake.inputBox("Name:", "New table", "Table1"), "Orders");
    EXPECT_EQ(fake.messageBox("second?", vbYesNo, ""), vbYes);
    const FileDialogResult file = fake.openFileDialog({"Open", "MDB|*.mdb", "/tmp", "mdb", 1});
    EXPECT_EQ(file.fileName, "/tmp/a.mdb");
    EXPECT_EQ(file.filterIndex, 2);
    EXPECT_TRUE(fake.allAnswersUsed());
    EXPECT_EQ(fake.unscriptedCount(), 0);

    ASSERT_EQ(fake.boxes().size(), 4u);
    EXPECT_EQ(fake.boxes()[1].kind, RecordedBox::Kind::Input);
    EXPECT_EQ(fake.boxes()[1].defaultText, "Table1");
    EXPECT_EQ(fake.boxes()[3].file.filter, "MDB|*.mdb");
    const auto messages = fake.messageBoxes();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].prompt, "first?");
    EXPECT_EQ(messages[0].title, "Q");
    EXPECT_EQ(messages[0].style, vbYesNo | vbQuestion);
}

TEST(ScriptedUiServices, UnscriptedQuestionsAreCancelledAndCounted)
{
    ScriptedUiServices fake;
    EXPECT_EQ(fake.messageBox("note", vbExclamation, "t"), vbOK);  // OK-only boxes need no script
    EXPECT_EQ(fake.unscriptedCount(), 0);
    EXPECT_EQ(fake.messageBox("sure?", vbYesNo, "t"), vbNo);
    EXPECT_EQ(fake.messageBox("save?", vbYesNoCancel, "t"), vbCancel);
    EXPECT_EQ(fake.inputBox("name", "t", "x"), QString());
    EXPECT_TRUE(fake.saveFileDialog({}).fileName.isEmpty());
    EXPECT_EQ(fake.unscriptedCount(), 4);
}

TEST(ScriptedUiServices, ClipboardAndClear)
{
    ScriptedUiServices fake;
    fake.setClipboardText("3.14");
    EXPECT_EQ(fake.clipboardText(), "3.14");
    fake.answerInputBox("unused");
    fake.messageBox("x", vbOKOnly, "");
    EXPECT_FALSE(fake.allAnswersUsed());
    fake.clear();
    EXPECT_TRUE(fake.allAnswersUsed());
    EXPECT_TRUE(fake.boxes().empty());
}

TEST(UiServicesScope, InstallsForTheScopeAndRestoresThePrevious)
{
    ScriptedUiServices outer;
    ScriptedUiServices inner;
    UiServicesScope useOuter(outer);
    {
        UiServicesScope useInner(inner);
        EXPECT_EQ(&UiServices::current(), &inner);
    }
    EXPECT_EQ(&UiServices::current(), &outer);
}
