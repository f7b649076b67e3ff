#include "ui/dialogs/frmNumType.h"

#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>

#include "app/ModMain.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"

namespace ui {

using lang::captionOr;

frmNumType::frmNumType(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmNumType"));
    setWindowTitle(QStringLiteral("Тип числа"));

    fraNumType = new QGroupBox(QStringLiteral("Числа"), this);
    fraNumType->setObjectName(QStringLiteral("fraNumType"));
    cboNumType = new QComboBox(fraNumType);
    cboNumType->setObjectName(QStringLiteral("cboNumType"));
    cboNumType->addItems({QStringLiteral("Обычный"), QStringLiteral("Экстремальный - 10-ричный"),
                          QStringLiteral("Экстремальный 256-ричный!")});
    auto* frame = new QHBoxLayout(fraNumType);
    frame->addWidget(cboNumType, 1);

    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Отмена"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    connect(cmdOK, &QPushButton::clicked, this, &frmNumType::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmNumType::cmdCancel_Click);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fraNumType);
    layout->addLayout(buttons);
    setMinimumWidth(340);

    Form_Load();
}

void frmNumType::Form_Load()
{
    const bool known = app::gTypeNum >= 0 && app::gTypeNum < cboNumType->count();
    cboNumType->setCurrentIndex(known ? app::gTypeNum : 0);

    const lang::LangApp& language = app::gLang();
    const lang::CaptionList& captions = language.NumberType();
    setWindowTitle(captionOr(captions, 1, windowTitle()));
    fraNumType->setTitle(captionOr(captions, 2, fraNumType->title()));
    for (int entry = 0; entry < cboNumType->count(); ++entry)
        cboNumType->setItemText(entry, captionOr(captions, entry + 3, cboNumType->itemText(entry)));
    cmdOK->setText(captionOr(language.Buttons(), 1, cmdOK->text()));
    cmdCancel->setText(captionOr(language.Buttons(), 2, cmdCancel->text()));
}

void frmNumType::cmdOK_Click()
{
    app::gTypeNum = cboNumType->currentIndex();
    app::gRegistry().write(host::HKEY_LOCAL_MACHINE, host::keys::Pro, host::keys::TypeNum, QString::number(app::gTypeNum));
    accept();
}

void frmNumType::cmdCancel_Click()
{
    reject();
}

}  // namespace ui
