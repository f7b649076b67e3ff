// The login dialog: its captions, the masked password and what each way of closing it
// hands back through the globals; played through the scripted services and shown for
// real through the Qt ones.

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>

#include "../support/FreshProgram.h"
#include "ModalHelper.h"

#include "lang/LangApp.h"
#include "ui/QtUiServices.h"
#include "ui/dialogs/Dialogs.h"
#include "ui/dialogs/frmLogin.h"

using namespace ui;
using namespace rt;

namespace {

QString captionsOf(const frmLogin& form)
{
    return QStringList({form.windowTitle(), form.findChild<QLabel*>("lblLogin")->text(),
                        form.findChild<QLabel*>("lblPassword")->text(), form.findChild<QPushButton*>("cmdOK")->text(),
                        form.findChild<QPushButton*>("cmdCancel")->text()})
        .join(u'|');
}

QString globals()
{
    return app::gLoginUser + u'|' + app::gLoginPassword + u'|' + (app::gLoginAccepted ? "accepted" : "refused");
}

}  // namespace

TEST(FrmLogin, TakesItsCaptionsFromTheButtonsAndLoginListsAndMasksThePassword)
{
    FreshProgram program;
    EXPECT_EQ(captionsOf(frmLogin()), QString::fromUtf8("Введите логин и пароль для доступа!|Логин:|Пароль:|OK|Отмена"));
    for (const char* text : {"OK!", "Cancel!"})
        app::gLang().Buttons().Add(text);
    for (const char* text : {"Enter the user name and password!", "User name:", "Password:"})
        app::gLang().Table().Login().Add(text);
    frmLogin form;
    EXPECT_EQ(captionsOf(form), "Enter the user name and password!|User name:|Password:|OK!|Cancel!");
    for (const char* box : {"txtLogin", "txtPassword"})
        form.findChild<QLineEdit*>(box)->setText("abc");
    EXPECT_EQ(form.findChild<QLineEdit*>("txtLogin")->displayText(), "abc");
    EXPECT_EQ(form.findChild<QLineEdit*>("txtPassword")->displayText(), "***");
}

TEST(FrmLogin, OkHandsBackBothBoxesCancelAndEscapeOnlyTheRefusalAndTheFrameNothing)
{
    FreshProgram program;
    registerDialogs();
    program.fake.answerForm("frmLogin", FormScript().type("txtLogin", "Ivan").type("txtPassword", "p=w;d").click("cmdOK"))
        .answerForm("frmLogin", FormScript().type("txtLogin", "typed").click("cmdCancel"))
        .answerForm("frmLogin", FormScript().type("txtPassword", "two").click("cmdOK"));
    QStringList seen;
    for (int showing = 0; showing < 3; ++showing) {
        program.fake.showModalForm("frmLogin", "frmTable");
        seen << globals();
    }
    // Every showing is a fresh form whose boxes start empty.
    EXPECT_EQ(seen, QStringList({"Ivan|p=w;d|accepted", "Ivan|p=w;d|refused", "|two|accepted"}));
    frmLogin escaped;
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&escaped, &escape);
    EXPECT_EQ(globals(), "|two|refused");
    for (const bool before : {true, false}) {
        app::gLoginAccepted = before;
        frmLogin form;
        form.show();
        form.findChild<QLineEdit*>("txtLogin")->setText("typed");
        form.close();
        EXPECT_FALSE(form.isVisible());
        EXPECT_EQ(globals(), before ? "|two|accepted" : "|two|refused");
    }
    program.fake.answerForm("frmLogin", FormScript().type("txtNothing", "x"));
    EXPECT_EQ(runTimeErrorOf([&] { program.fake.showModalForm("frmLogin", "frmTable"); }), 5);
    program.fake.answerForm("frmLogin", FormScript().click("lblLogin"));
    EXPECT_EQ(runTimeErrorOf([&] { program.fake.showModalForm("frmLogin", "frmTable"); }), 5);
}

TEST(FrmLogin, QtServicesShowItModallyOwnedByTheMainWindow)
{
    FreshProgram program;
    registerDialogs();
    QMainWindow main;
    main.setObjectName("frmTable");
    main.show();
    QString shown;
    whenShown<frmLogin>([&](frmLogin* form) {
        shown = (form->parentWidget() ? form->parentWidget()->objectName() : "no owner") + (form->isModal() ? " modal" : "");
        form->findChild<QLineEdit*>("txtLogin")->setText("real");
        form->findChild<QPushButton*>("cmdOK")->click();
    });
    QtUiServices().showModalForm("frmLogin", "frmTable");
    EXPECT_EQ(shown, "frmTable modal");
    EXPECT_EQ(globals(), "real||accepted");
}
