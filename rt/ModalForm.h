#pragma once
// A form that is shown modally (the login, new-database, add-column, options, number-type
// and about dialogs) as the UI services drive it. Each form registers a factory under its
// name; every showing makes a fresh form, which loads itself on creation, so its boxes
// always start as designed. The Qt implementation runs the form for the user; the
// scripted fake plays a test's actions on the same form without showing it, so the
// form's own handlers do their work in both cases.
//
// This header needs Qt Core only: the engine asks for a form by name and never sees a
// widget.

#include <functional>
#include <memory>
#include <QString>

#include "jet/RuntimeError.h"

namespace rt {

class ModalForm {
public:
    virtual ~ModalForm() = default;

    // Shows the form, owned by the top-level window of that object name (the active
    // window when there is none), and returns when it has been closed.
    virtual void showModal(const QString& ownerName) = 0;

    // What a user does to the form: types into a text box (the text replaces what it
    // held), clicks a button, or closes the window by its frame button. A control the form
    // does not have is run-time error 5.
    virtual void setControlText(const QString& control, const QString& text) = 0;
    virtual void clickControl(const QString& control) = 0;
    virtual void closeByFrame() = 0;

    virtual bool isClosed() const = 0;
    virtual QString caption() const = 0;
};

using ModalFormFactory = std::function<std::unique_ptr<ModalForm>()>;

// Registering a name again replaces its factory.
void registerModalForm(const QString& name, ModalFormFactory factory);
// A fresh form of that name; run-time error 5 when no form of that name is registered.
std::unique_ptr<ModalForm> createModalForm(const QString& name);

// The error for a form name nobody registered (5, naming the form).
jet::RuntimeError noFormNamed(const QString& name);

}  // namespace rt
