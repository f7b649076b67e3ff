#include "ui/dialogs/frmLogin.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/ModMain.h"
#include "lang/LangApp.h"

namespace ui {

using lang::captionOr;

frmLogin::frmLogin(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmLogin"));
    setWindowTitle(QStringLiteral("Введите логин и пароль для доступа!"));

    lblLogin = new QLabel(QStringLiteral("Логин:"), this);
    lblLogin->setObjectName(QStringLiteral("lblLogin"));
    lblPassword = new QLabel(QStringLiteral("Пароль:"), this);
    lblPassword->setObjectName(QStringLiteral("lblPassword"));
    txtLogin = new QLineEdit(this);
    txtLogin->setObjectName(QStringLiteral("txtLogin"));
    txtPassword = new QLineEdit(this);
    txtPassword->setObjectName(QStringLiteral("txtPassword"));
    txtPassword->setEchoMode(QLineEdit::Password);
    // The mask is "*" on every platform, whatever the style would draw.
    txtPassword->setStyleSheet(QStringLiteral("lineedit-password-character: 42"));
    lblLogin->setBuddy(txtLogin);
    lblPassword->setBuddy(txtPassword);

    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Отмена"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    connect(cmdOK, &QPushButton::clicked, this, &frmLogin::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmLogin::cmdCancel_Click);

    auto* fields = new QGridLayout;
    fields->addWidget(lblLogin, 0, 0);
    fields->addWidget(txtLogin, 0, 1);
    fields->addWidget(lblPassword, 1, 0);
    fields->addWidget(txtPassword, 1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    setMinimumWidth(320);

    Form_Load();
}

void frmLogin::Form_Load()
{
    const lang::LangApp& language = app::gLang();
    cmdOK->setText(captionOr(language.Buttons(), 1, cmdOK->text()));
    cmdCancel->setText(captionOr(language.Buttons(), 2, cmdCancel->text()));
    const lang::CaptionList& login = language.Table().Login();
    setWindowTitle(captionOr(login, 1, windowTitle()));
    lblLogin->setText(captionOr(login, 2, lblLogin->text()));
    lblPassword->setText(captionOr(login, 3, lblPassword->text()));
}

void frmLogin::cmdOK_Click()
{
    app::gLoginUser = txtLogin->text();
    app::gLoginPassword = txtPassword->text();
    app::gLoginAccepted = true;
    accept();
}

void frmLogin::cmdCancel_Click()
{
    app::gLoginAccepted = false;
    reject();
}

void frmLogin::keyPressEvent(QKeyEvent* event)
{
    // Escape means Cancel here, not the frame button's "leave the flag as it was".
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        cmdCancel->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

}  // namespace ui
