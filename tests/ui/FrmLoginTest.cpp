// The login dialog: its captions, the masked password and what each way of closing it
// hands back through the globals; shown for real through the Qt services and played
// through the scripted ones.

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>

#include "../support/RunTimeErrorOf.h"
#include "ModalHelper.h"

#include "app/ModMain.h"
#include "lang/LangApp.h"
#include "ui/DialogForm.h"
#include "ui/QtUiServices.h"
#include "ui/ScriptedUiServices.h"
#include "ui/dialogs/Dialogs.h"
#include "ui/dialogs/frmLogin.h"

using namespace ui;

class FrmLoginTest : public testing::Test {
protected:
    void SetUp() override
    {
        app::resetModuleGlobals();
        registerDialogs();
    }
    void TearDown() override { app::resetModuleGlobals(); }

    template <typename T>
    static T* control(QWidget& form, const char* name)
    {
        T* found = form.findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static void fillLanguageTable()
    {
        lang::LangApp& language = app::gLang();
        language.Buttons().Add("OK!");
        language.Buttons().Add("Cancel!");
        language.Table().Login().Add("Enter the user name and password!");
        language.Table().Login().Add("User name:");
        language.Table().Login().Add("Password:");
    }
};

TEST_F(FrmLoginTest, WithoutALanguageTableShowsItsDesignTexts)
{
    frmLogin form;
    EXPECT_EQ(form.windowTitle(), QString::fromUtf8("Введите логин и пароль для доступа!"));
    EXPECT_EQ(control<QLabel>(form, "lblLogin")->text(), QString::fromUtf8("Логин:"));
    EXPECT_EQ(control<QLabel>(form, "lblPassword")->text(), QString::fromUtf8("Пароль:"));
    EXPECT_EQ(control<QPushButton>(form, "cmdOK")->text(), "OK");
    EXPECT_EQ(control<QPushButton>(form, "cmdCancel")->text(), QString::fromUtf8("Отмена"));
}

TEST_F(FrmLoginTest, TakesItsCaptionsFromTheButtonsAndLoginLists)
{
    fillLanguageTable();
    frmLogin form;
    EXPECT_EQ(form.windowTitle(), "Enter the user name and password!");
    EXPECT_EQ(control<QLabel>(form, "lblLogin")->text(), "User name:");
    EXPECT_EQ(control<QLabel>(form, "lblPassword")->text(), "Password:");
    EXPECT_EQ(control<QPushButton>(form, "cmdOK")->text(), "OK!");
    EXPECT_EQ(control<QPushButton>(form, "cmdCancel")->text(), "Cancel!");
}

TEST_F(FrmLoginTest, PasswordIsMaskedWithStarsAndTheUserNameIsNot)
{
    frmLogin form;
    auto* password = control<QLineEdit>(form, "txtPassword");
    password->setText("abc");
    EXPECT_EQ(password->text(), "abc");
    EXPECT_EQ(password->displayText(), "***");
    auto* user = control<QLineEdit>(form, "txtLogin");
    user->setText("abc");
    EXPECT_EQ(user->displayText(), "abc");
}

TEST_F(FrmLoginTest, OkHandsBackBothBoxesAndTheAcceptance)
{
    frmLogin form;
    control<QLineEdit>(form, "txtLogin")->setText(QString::fromUtf8("Иван"));
    control<QLineEdit>(form, "txtPassword")->setText("p=w;d");
    control<QPushButton>(form, "cmdOK")->click();
    EXPECT_EQ(app::gLoginUser, QString::fromUtf8("Иван"));
    EXPECT_EQ(app::gLoginPassword, "p=w;d");
    EXPECT_TRUE(app::gLoginAccepted);
    EXPECT_EQ(form.result(), QDialog::Accepted);
}

TEST_F(FrmLoginTest, CancelClearsOnlyTheAcceptance)
{
    app::gLoginUser = "kept";
    app::gLoginPassword = "kept too";
    app::gLoginAccepted = true;
    frmLogin form;
    control<QLineEdit>(form, "txtLogin")->setText("typed");
    control<QPushButton>(form, "cmdCancel")->click();
    EXPECT_FALSE(app::gLoginAccepted);
    EXPECT_EQ(app::gLoginUser, "kept");
    EXPECT_EQ(app::gLoginPassword, "kept too");

    // Escape is the Cancel button.
    app::gLoginAccepted = true;
    frmLogin again;
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&again, &escape);
    EXPECT_FALSE(app::gLoginAccepted);
}

TEST_F(FrmLoginTest, FrameButtonLeavesEveryGlobalAsItWas)
{
    for (const bool before : {false, true}) {
        app::gLoginAccepted = before;
        app::gLoginUser = "u";
        frmLogin form;
        form.show();
        control<QLineEdit>(form, "txtLogin")->setText("typed");
        form.close();
        EXPECT_FALSE(form.isVisible());
        EXPECT_EQ(app::gLoginAccepted, before);
        EXPECT_EQ(app::gLoginUser, "u");
    }
}

TEST_F(FrmLoginTest, ScriptedServicesPlayOnAFreshFormEveryShowing)
{
    fillLanguageTable();
    ScriptedUiServices fake;
    fake.answerForm("frmLogin", FormScript().type("txtLogin", "first").type("txtPassword", "one").click("cmdOK"));
    fake.answerForm("frmLogin", FormScript().type("txtPassword", "two").click("cmdOK"));
    fake.showModalForm("frmLogin", "frmTable");
    EXPECT_EQ(app::gLoginUser, "first");
    // The boxes of the second showing start empty.
    fake.showModalForm("frmLogin", "frmTable");
    EXPECT_EQ(app::gLoginUser, "");
    EXPECT_EQ(app::gLoginPassword, "two");
    ASSERT_EQ(fake.forms().size(), 2u);
    EXPECT_EQ(fake.forms()[0].title, "Enter the user name and password!");

    fake.answerForm("frmLogin", FormScript().type("txtNothing", "x"));
    EXPECT_EQ(runTimeErrorOf([&] { fake.showModalForm("frmLogin", "frmTable"); }), 5);
    fake.answerForm("frmLogin", FormScript().click("lblLogin"));
    EXPECT_EQ(runTimeErrorOf([&] { fake.showModalForm("frmLogin", "frmTable"); }), 5);
}

TEST_F(FrmLoginTest, QtServicesShowItModallyOwnedByTheMainWindow)
{
    QMainWindow main;
    main.setObjectName("frmTable");
    main.show();
    QWidget* owner = nullptr;
    bool modal = false;
    whenShown<frmLogin>([&](frmLogin* form) {
        owner = form->parentWidget();
        modal = form->isModal();
        form->findChild<QLineEdit*>("txtLogin")->setText("real");
        form->findChild<QPushButton*>("cmdOK")->click();
    });
    QtUiServices services;
    services.showModalForm("frmLogin", "frmTable");
    EXPECT_EQ(owner, &main);
    EXPECT_TRUE(modal);
    EXPECT_EQ(app::gLoginUser, "real");
    EXPECT_TRUE(app::gLoginAccepted);
}
