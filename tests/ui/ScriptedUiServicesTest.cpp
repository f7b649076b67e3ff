// The scripted fake the other tests answer boxes with, modal forms included (played on a
// form that writes down what is done to it).

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include "ui/ModalForm.h"
#include "ui/ScriptedUiServices.h"

using namespace ui;

namespace {

QStringList journal;  // what the probe forms were asked to do, over all showings

class ProbeForm : public ModalForm {
public:
    void showModal(const QString&) override {}
    void setControlText(const QString& control, const QString& text) override
    {
        if (control != "txtName")
            throw jet::RuntimeError(5, "no such control");
        journal << "type " + text;
    }
    void clickControl(const QString& control) override
    {
        journal << "click " + control;
        closed_ = control == "cmdOK";
    }
    void closeByFrame() override
    {
        journal << "frame";
        closed_ = true;
    }
    bool isClosed() const override { return closed_; }
    QString caption() const override { return "Probe"; }

private:
    bool closed_ = false;
};

}  // namespace

TEST(ScriptedUiServices, AnswersFromItsQueuesAndCancelsAndCountsWhatWasNotScripted)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    fake.answerMessageBox(vbNo).answerInputBox("Orders").answerOpenFile("/tmp/a.mdb", 2);
    EXPECT_EQ(fake.messageBox("first?", vbYesNo | vbQuestion, "Q"), vbNo);
    EXPECT_EQ(fake.inputBox("Name:", "New table", "Table1"), "Orders");
    EXPECT_EQ(fake.openFileDialog({"Open", "MDB|*.mdb", "/tmp", "mdb", 1}).filterIndex, 2);
    EXPECT_TRUE(fake.allAnswersUsed());
    EXPECT_EQ(fake.messageBox("note", vbExclamation, "t"), vbOK);  // an OK box needs no script
    EXPECT_EQ(fake.messageBox("sure?", vbYesNo, "t"), vbNo);
    EXPECT_EQ(fake.messageBox("save?", vbYesNoCancel, "t"), vbCancel);
    EXPECT_EQ(fake.inputBox("name", "t", "x"), QString());
    EXPECT_TRUE(fake.saveFileDialog({}).fileName.isEmpty());
    EXPECT_EQ(fake.unscriptedCount(), 4);
    QStringList recorded;  // "kind style|title|what it showed"
    for (const RecordedBox& box : fake.boxes())
        recorded << QStringLiteral("%1 %2|%3|%4%5%6").arg(int(box.kind)).arg(box.style).arg(box.title, box.prompt, box.defaultText, box.file.filter);
    EXPECT_EQ(recorded, QStringList({"0 36|Q|first?", "1 0|New table|Name:Table1", "2 0|Open|MDB|*.mdb", "0 48|t|note",
                                     "0 4|t|sure?", "0 3|t|save?", "1 0|t|namex", "3 0||"}));
    EXPECT_EQ(fake.messageBoxes().size(), 4u);
    fake.answerInputBox("unused");
    fake.setClipboardText("3.14");
    EXPECT_EQ(UiServices::current().clipboardText(), "3.14");
    fake.clear();
    EXPECT_TRUE(fake.allAnswersUsed() && fake.boxes().empty());
}

TEST(ScriptedUiServices, PlaysEachScriptOnAFreshFormAndClosesWhatIsLeftOpenByItsFrame)
{
    registerModalForm("frmProbe", [] { return std::make_unique<ProbeForm>(); });
    ScriptedUiServices fake;
    fake.answerForm("frmProbe", FormScript().type("txtName", "A").click("cmdApply").click("cmdOK").type("txtName", "late"))
        .answerForm("frmProbe", FormScript().type("txtName", "B"));
    for (int showing = 0; showing < 3; ++showing)  // the third has no script left
        fake.showModalForm("frmProbe", "frmTable");
    EXPECT_EQ(journal, QStringList({"type A", "click cmdApply", "click cmdOK", "type B", "frame", "frame"}));
    EXPECT_EQ(fake.forms()[0].form + u'|' + fake.forms()[0].owner + u'|' + fake.forms()[0].title, "frmProbe|frmTable|Probe");
    EXPECT_EQ(fake.unscriptedCount(), 1);
    EXPECT_EQ(runTimeErrorOf([&] { fake.showModalForm("frmNowhere", "frmTable"); }), 5);
    fake.answerForm("frmProbe", FormScript().type("txtMissing", "x"));
    EXPECT_EQ(runTimeErrorOf([&] { fake.showModalForm("frmProbe", "frmTable"); }), 5);
    {
        UiServicesScope use(fake);
        EXPECT_EQ(&UiServices::current(), &fake);
    }
    EXPECT_EQ(runTimeErrorOf([] { UiServices::current(); }), 91);  // none was installed before
}
