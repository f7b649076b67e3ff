#pragma once
// A Qt dialog as a ModalForm: the form's controls are its child widgets, found by object
// name (txtLogin, cmdOK), so a dialog takes part just by naming its controls as the
// program's forms name them. Typing goes to a line edit or an editable combo box (in a
// drop-down list it picks the entry of that text), clicking to any button.
//
// The dialog is owned here; while it is shown it is parented to its owner window, and it
// is deleted with this object (or with the owner, should that go first).

#include <QPointer>
#include <QDialog>

#include "rt/ModalForm.h"

namespace ui {

class DialogForm : public rt::ModalForm {
public:
    explicit DialogForm(QDialog* dialog);
    ~DialogForm() override;

    void showModal(const QString& ownerName) override;
    void setControlText(const QString& control, const QString& text) override;
    void clickControl(const QString& control) override;
    void closeByFrame() override;
    bool isClosed() const override { return closed_; }
    QString caption() const override;

    // Registers a factory for dialogs of type T (default-constructible) under that name.
    template <typename T>
    static void registerDialog(const QString& name)
    {
        rt::registerModalForm(name, [] { return std::make_unique<DialogForm>(new T); });
    }

private:
    QPointer<QDialog> dialog_;
    bool closed_ = false;
};

}  // namespace ui
