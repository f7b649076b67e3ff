#include "ui/dialogs/frmTableOptions.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/ModMain.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"
#include "rt/UiServices.h"
#include "rt/VbConvert.h"

namespace ui {

using lang::captionOr;

frmTableOptions::frmTableOptions(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmTableOptions"));
    setWindowTitle(QStringLiteral("Настройки"));

    fraRazd = new QGroupBox(QStringLiteral("Текстовые таблицы"), this);
    fraRazd->setObjectName(QStringLiteral("fraRazd"));
    lblRazdName = new QLabel(QStringLiteral("Разделитель столбцов:"), fraRazd);
    lblRazdName->setObjectName(QStringLiteral("lblRazdName"));
    txtRazd = new QLineEdit(fraRazd);
    txtRazd->setObjectName(QStringLiteral("txtRazd"));
    txtRazd->setMaximumWidth(60);
    lblRazdName->setBuddy(txtRazd);
    auto* separatorRow = new QHBoxLayout(fraRazd);
    separatorRow->addWidget(lblRazdName);
    separatorRow->addWidget(txtRazd);
    separatorRow->addStretch();

    fraDataBase = new QGroupBox(QStringLiteral("База данных"), this);
    fraDataBase->setObjectName(QStringLiteral("fraDataBase"));
    chkLogin = new QCheckBox(QStringLiteral("Запрашивать логин и пароль при открытии базы данных"), fraDataBase);
    chkLogin->setObjectName(QStringLiteral("chkLogin"));
    auto* databaseRow = new QHBoxLayout(fraDataBase);
    databaseRow->addWidget(chkLogin);

    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Отмена"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    connect(cmdOK, &QPushButton::clicked, this, &frmTableOptions::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmTableOptions::cmdCancel_Click);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fraRazd);
    layout->addWidget(fraDataBase);
    layout->addLayout(buttons);
    setMinimumWidth(420);

    Form_Load();
}

void frmTableOptions::Form_Load()
{
    txtRazd->setText(app::gTableSeparator);
    chkLogin->setChecked(app::gUseLogin);

    const lang::LangApp& language = app::gLang();
    const lang::CaptionList& captions = language.Table().TableOptions();
    setWindowTitle(captionOr(captions, 1, windowTitle()));
    fraRazd->setTitle(captionOr(captions, 2, fraRazd->title()));
    lblRazdName->setText(captionOr(captions, 3, lblRazdName->text()));
    chkLogin->setText(captionOr(captions, 4, chkLogin->text()));
    fraDataBase->setTitle(captionOr(captions, 5, fraDataBase->title()));
    cmdOK->setText(captionOr(language.Buttons(), 1, cmdOK->text()));
    cmdCancel->setText(captionOr(language.Buttons(), 2, cmdCancel->text()));
}

void frmTableOptions::cmdOK_Click()
{
    using host::HKEY_LOCAL_MACHINE;
    namespace keys = host::keys;
    if (txtRazd->text().isEmpty()) {
        rt::UiServices::current().messageBox(
            captionOr(app::gLang().Table().TableOptions(), 6, QStringLiteral("Введите символ-разделитель.")),
            rt::vbExclamation, windowTitle());
        txtRazd->setFocus();
        return;
    }
    host::Registry& registry = app::gRegistry();
    // The code is stored as the run time's 16-bit Integer would print it.
    registry.write(HKEY_LOCAL_MACHINE, keys::Pro, keys::TableSeparator,
                   QString::number(rt::CInt(rt::Asc(txtRazd->text()))));
    app::gUseLogin = chkLogin->isChecked();
    registry.write(HKEY_LOCAL_MACHINE, keys::Plugin, keys::UseLogin, app::gUseLogin ? QStringLiteral("1") : QStringLiteral("0"));
    accept();
}

void frmTableOptions::cmdCancel_Click()
{
    reject();
}

}  // namespace ui
