#include "ui/DialogForm.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>

#include "rt/VbError.h"

namespace ui {

namespace {

QWidget* topLevelNamed(const QString& name)
{
    if (!name.isEmpty())
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == name && widget->isWindow())
                return widget;
    return QApplication::activeWindow();
}

jet::RuntimeError noSuchControl(const QDialog* dialog, const QString& kind, const QString& control)
{
    return rt::vbError(rt::vberr::InvalidProcedureCall, QStringLiteral("The form '%1' has no %2 named '%3'.")
                                                                .arg(dialog->objectName(), kind, control));
}

}  // namespace

DialogForm::DialogForm(QDialog* dialog) : dialog_(dialog)
{
    // done() is where every way of ending a dialog meets: accept, reject, a handler's own.
    QObject::connect(dialog, &QDialog::finished, [this] { closed_ = true; });
}

DialogForm::~DialogForm()
{
    delete dialog_.data();
}

void DialogForm::showModal(const QString& ownerName)
{
    if (QWidget* owner = topLevelNamed(ownerName))
        dialog_->setParent(owner, dialog_->windowFlags() | Qt::Dialog);
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->exec();
    closed_ = true;
}

void DialogForm::setControlText(const QString& control, const QString& text)
{
    if (auto* edit = dialog_->findChild<QLineEdit*>(control)) {
        edit->setText(text);
        return;
    }
    if (auto* combo = dialog_->findChild<QComboBox*>(control)) {
        // A drop-down list takes only one of its entries, as a user can only pick one.
        if (combo->isEditable()) {
            combo->setEditText(text);
            return;
        }
        const int entry = combo->findText(text, Qt::MatchExactly);
        if (entry < 0)
            throw noSuchControl(dialog_, QStringLiteral("entry of the list"), control + QStringLiteral(": ") + text);
        combo->setCurrentIndex(entry);
        return;
    }
    throw noSuchControl(dialog_, QStringLiteral("text box"), control);
}

void DialogForm::clickControl(const QString& control)
{
    auto* button = dialog_->findChild<QAbstractButton*>(control);
    if (button == nullptr)
        throw noSuchControl(dialog_, QStringLiteral("button"), control);
    button->click();
}

void DialogForm::closeByFrame()
{
    // A dialog that is not on screen takes the close event without ending itself, so the
    // form counts as closed here, as the frame button would have left it.
    dialog_->close();
    closed_ = true;
}

QString DialogForm::caption() const
{
    return dialog_->windowTitle();
}

}  // namespace ui
