#include "ui/dialogs/frmAddField.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/ModMain.h"
#include "engine/XDataBase.h"
#include "lang/LangApp.h"

namespace ui {

using lang::captionOr;

namespace {

const QString kRefusedAtTheEnd = QStringLiteral("!^@$%&*()\"");

}  // namespace

const QStringList& frmAddField::typeList()
{
    static const QStringList types = {QStringLiteral("VARCHAR (255)"), QStringLiteral("CHAR (255)"),
                                      QStringLiteral("NCHAR (255)"), QStringLiteral("INTEGER"),
                                      QStringLiteral("DOUBLE")};
    return types;
}

frmAddField::frmAddField(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAddField"));
    setWindowTitle(QStringLiteral("Добавить столбец"));

    lblName = new QLabel(QStringLiteral("Имя столбца:"), this);
    lblName->setObjectName(QStringLiteral("lblName"));
    lblType = new QLabel(QStringLiteral("Тип столбца:"), this);
    lblType->setObjectName(QStringLiteral("lblType"));
    txtName = new QLineEdit(this);
    txtName->setObjectName(QStringLiteral("txtName"));
    cboType = new QComboBox(this);
    cboType->setObjectName(QStringLiteral("cboType"));
    cboType->setEditable(true);
    cboType->setInsertPolicy(QComboBox::NoInsert);
    lblName->setBuddy(txtName);
    lblType->setBuddy(cboType);
    connect(txtName, &QLineEdit::textChanged, this, &frmAddField::txtName_Change);

    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Отмена"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    connect(cmdOK, &QPushButton::clicked, this, &frmAddField::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmAddField::cmdCancel_Click);

    auto* fields = new QGridLayout;
    fields->addWidget(lblName, 0, 0);
    fields->addWidget(txtName, 0, 1);
    fields->addWidget(lblType, 1, 0);
    fields->addWidget(cboType, 1, 1);
    fields->setColumnStretch(1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    setMinimumWidth(360);

    Form_Load();
}

void frmAddField::Form_Load()
{
    cboType->clear();
    cboType->addItems(typeList());
    cboType->setCurrentIndex(0);
    txtName_Change();

    const lang::LangApp& language = app::gLang();
    const lang::CaptionList& captions = language.Table().AddField();
    if (app::gRenameField)
        setWindowTitle(captionOr(captions, 2, QStringLiteral("Переименовать столбец")));
    else
        setWindowTitle(captionOr(captions, 1, windowTitle()));
    lblName->setText(captionOr(captions, 3, lblName->text()));
    lblType->setText(captionOr(captions, 4, lblType->text()));
    cmdOK->setText(captionOr(language.Buttons(), 1, cmdOK->text()));
    cmdCancel->setText(captionOr(language.Buttons(), 2, cmdCancel->text()));
}

void frmAddField::txtName_Change()
{
    const QString text = txtName->text();
    if (text.isEmpty()) {
        cmdOK->setEnabled(false);
        return;
    }
    cmdOK->setEnabled(true);
    if (kRefusedAtTheEnd.contains(text.back()))
        txtName->setText(text.left(text.size() - 1));  // runs this check again
}

void frmAddField::cmdOK_Click()
{
    engine::XDataBase& database = app::gDataBase();
    if (!app::gRenameField) {
        app::gFieldAdded = database.AddField(txtName->text(), cboType->currentText());
        accept();
        return;
    }
    const QString oldName = database.CaptionOfField(app::gSelectedColumn);
    if (database.ReNameField(oldName, txtName->text(), cboType->currentText()))
        accept();
}

void frmAddField::cmdCancel_Click()
{
    reject();
}

}  // namespace ui
