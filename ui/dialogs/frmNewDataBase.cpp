#include "ui/dialogs/frmNewDataBase.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/ModMain.h"
#include "engine/XDataBase.h"
#include "lang/LangApp.h"
#include "rt/UiServices.h"

namespace ui {

using lang::captionOr;

frmNewDataBase::frmNewDataBase(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmNewDataBase"));
    setWindowTitle(QStringLiteral("Новая база данных"));

    lblName = new QLabel(QStringLiteral("Имя:"), this);
    lblName->setObjectName(QStringLiteral("lblName"));
    lblFile = new QLabel(QStringLiteral("Файл:"), this);
    lblFile->setObjectName(QStringLiteral("lblFile"));
    txtName = new QLineEdit(this);
    txtName->setObjectName(QStringLiteral("txtName"));
    txtFile = new QLineEdit(this);
    txtFile->setObjectName(QStringLiteral("txtFile"));
    lblName->setBuddy(txtName);
    lblFile->setBuddy(txtFile);
    connect(txtName, &QLineEdit::textChanged, this, &frmNewDataBase::txt_Change);
    connect(txtFile, &QLineEdit::textChanged, this, &frmNewDataBase::txt_Change);

    cmdBrowse = new QPushButton(QStringLiteral("Обзор..."), this);
    cmdBrowse->setObjectName(QStringLiteral("cmdBrowse"));
    cmdBrowse->setAutoDefault(false);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Отмена"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    connect(cmdBrowse, &QPushButton::clicked, this, &frmNewDataBase::cmdBrowse_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmNewDataBase::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmNewDataBase::cmdCancel_Click);

    auto* fields = new QGridLayout;
    fields->addWidget(lblName, 0, 0);
    fields->addWidget(txtName, 0, 1, 1, 2);
    fields->addWidget(lblFile, 1, 0);
    fields->addWidget(txtFile, 1, 1);
    fields->addWidget(cmdBrowse, 1, 2);
    fields->setColumnStretch(1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    setMinimumWidth(460);

    Form_Load();
}

void frmNewDataBase::Form_Load()
{
    cmdOK->setEnabled(false);
    const lang::LangApp& language = app::gLang();
    cmdOK->setText(captionOr(language.Buttons(), 1, cmdOK->text()));
    cmdCancel->setText(captionOr(language.Buttons(), 2, cmdCancel->text()));
    cmdBrowse->setText(captionOr(language.Buttons(), 4, cmdBrowse->text()));
    const lang::CaptionList& captions = language.Table().NewDataBase();
    setWindowTitle(captionOr(captions, 1, windowTitle()));
    lblName->setText(captionOr(captions, 2, lblName->text()));
    lblFile->setText(captionOr(captions, 3, lblFile->text()));
}

void frmNewDataBase::txt_Change()
{
    cmdOK->setEnabled(!txtName->text().isEmpty() && !txtFile->text().isEmpty());
}

void frmNewDataBase::cmdBrowse_Click()
{
    rt::FileDialogRequest request;
    request.initialFolder = QCoreApplication::applicationDirPath();
    request.defaultExtension = QStringLiteral("mdb");
    request.title = QStringLiteral("Создать базу данных");
    request.filter = QStringLiteral("Microsoft DataBase (*.mdb)|*.mdb");
    const rt::FileDialogResult chosen = rt::UiServices::current().saveFileDialog(request);
    if (!chosen.fileName.isEmpty())
        txtFile->setText(chosen.fileName);
}

void frmNewDataBase::cmdOK_Click()
{
    // The name is handed over and not used; an existing file of that path is replaced.
    app::gDataBase().CreateDataBase(txtName->text(), txtFile->text());
    accept();
}

void frmNewDataBase::cmdCancel_Click()
{
    reject();
}

}  // namespace ui
