// The scripted fake playing modal forms for the other tests, on a form that writes down
// what is done to it.

#include <gtest/gtest.h>

#include "../support/TestSupport.h"

#include "../support/ScriptedUiServices.h"
#include "rt/ModalForm.h"

using namespace rt;

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
