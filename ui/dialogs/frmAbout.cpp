#include "ui/dialogs/frmAbout.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "rt/ProgramVersion.h"
#include "rt/UiServices.h"

namespace ui {

frmAbout::frmAbout(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About"));

    lblTitle = new QLabel(QStringLiteral("Application Title"), this);
    lblTitle->setObjectName(QStringLiteral("lblTitle"));
    QFont titleFont = lblTitle->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setBold(true);
    lblTitle->setFont(titleFont);
    lblVersion = new QLabel(QStringLiteral("Version"), this);
    lblVersion->setObjectName(QStringLiteral("lblVersion"));
    lblDescription = new QLabel(QStringLiteral("App Description"), this);
    lblDescription->setObjectName(QStringLiteral("lblDescription"));
    lblDescription->setWordWrap(true);
    Line1 = new QFrame(this);
    Line1->setObjectName(QStringLiteral("Line1"));
    Line1->setFrameShape(QFrame::HLine);
    Line1->setFrameShadow(QFrame::Sunken);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &frmAbout::cmdOK_Click);

    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon(QStringLiteral(":/icons/sheetwright.svg")).pixmap(64, 64));
    auto* text = new QVBoxLayout;
    text->addWidget(lblTitle);
    text->addWidget(lblVersion);
    text->addSpacing(8);
    text->addWidget(lblDescription);
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addSpacing(12);
    top->addLayout(text, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(Line1);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    lblDescription->setFixedWidth(320);

    Form_Load();
}

QString frmAbout::versionText(int32_t major, int32_t minor, int32_t revision)
{
    return QStringLiteral("Version %1.%2.%3").arg(major).arg(minor).arg(revision);
}

void frmAbout::Form_Load()
{
    setWindowTitle(QStringLiteral("О ") + rt::programTitle());
    lblVersion->setText(versionText(rt::version::major, rt::version::minor, rt::version::revision));
    lblTitle->setText(rt::programTitle());
    lblDescription->setText(QString::fromUtf8(rt::version::description));
}

void frmAbout::cmdOK_Click()
{
    accept();
}

}  // namespace ui
