// The scripted fake's side of modal forms, with a form that writes down what is done to it.

#include <gtest/gtest.h>

#include "../support/RunTimeErrorOf.h"

#include "ui/ModalForm.h"
#include "ui/ScriptedUiServices.h"

using namespace ui;

namespace {

// What the probe forms were asked to do, across all showings.
QStringList journal;

class ProbeForm : public ModalForm {
public:
    void showModal(const QString&) override { journal.append("shown for real"); }
    void setControlText(const QString& control, const QString& text) override
    {
        if (control != "txtName")
            throw jet::RuntimeError(5, "no such control");
        journal.append("type " + text);
    }
    void clickControl(const QString& control) override
    {
        journal.append("click " + control);
        if (control == "cmdOK")
            closed_ = true;
    }
    void closeByFrame() override
    {
        journal.append("frame");
        closed_ = true;
    }
    bool isClosed() const override { return closed_; }
    QString caption() const override { return "Probe caption"; }

private:
    bool closed_ = false;
};

class ScriptedForms : public testing::Test {
protected:
    void SetUp() override
    {
        journal.clear();
        registerModalForm("frmProbe", [] { return std::make_unique<ProbeForm>(); });
    }
    ScriptedUiServices fake;
};

}  // namespace

TEST_F(ScriptedForms, PlaysTheScriptOnAFreshFormAndRecordsTheShowing)
{
    fake.answerForm("frmProbe", FormScript().type("txtName", "Orders").click("cmdApply").click("cmdOK"));
    fake.showModalForm("frmProbe", "frmTable");
    EXPECT_EQ(journal, QStringList({"type Orders", "click cmdApply", "click cmdOK"}));
    const auto forms = fake.forms();
    ASSERT_EQ(forms.size(), 1u);
    EXPECT_EQ(forms[0].kind, RecordedBox::Kind::Form);
    EXPECT_EQ(forms[0].form, "frmProbe");
    EXPECT_EQ(forms[0].owner, "frmTable");
    EXPECT_EQ(forms[0].title, "Probe caption");
    EXPECT_TRUE(forms[0].scripted);
    EXPECT_TRUE(fake.allAnswersUsed());
    EXPECT_EQ(fake.unscriptedCount(), 0);
}

TEST_F(ScriptedForms, FormLeftOpenIsClosedByItsFrameAndActionsAfterTheCloseAreDropped)
{
    fake.answerForm("frmProbe", FormScript().type("txtName", "x"));
    fake.answerForm("frmProbe", FormScript().click("cmdOK").click("cmdCancel"));
    fake.showModalForm("frmProbe", "frmTable");
    fake.showModalForm("frmProbe", "frmTable");
    EXPECT_EQ(journal, QStringList({"type x", "frame", "click cmdOK"}));
}

TEST_F(ScriptedForms, UnscriptedFormIsClosedByItsFrameAndCounted)
{
    fake.answerForm("frmOther", FormScript().click("cmdOK"));
    fake.showModalForm("frmProbe", "");
    EXPECT_EQ(journal, QStringList{"frame"});
    EXPECT_EQ(fake.unscriptedCount(), 1);
    EXPECT_FALSE(fake.allAnswersUsed());
    fake.clear();
    EXPECT_TRUE(fake.allAnswersUsed());
}

TEST_F(ScriptedForms, UnknownFormsAndControlsAreRunTimeErrors)
{
    EXPECT_EQ(runTimeErrorOf([&] { fake.showModalForm("frmNowhere", "frmTable"); }), 5);
    fake.answerForm("frmProbe", FormScript().type("txtMissing", "x"));
    EXPECT_EQ(runTimeErrorOf([&] { fake.showModalForm("frmProbe", "frmTable"); }), 5);
    EXPECT_EQ(fake.forms().size(), 2u);
}
