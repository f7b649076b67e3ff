#pragma once
// UiServices with Qt's own boxes and dialogs, owned by the active window, and the
// program's modeless windows, which it makes when first shown and owns.

#include <functional>
#include <map>
#include <memory>
#include <QWidget>

#include "rt/UiServices.h"

namespace ui {

class QtUiServices : public rt::UiServices {
public:
    int32_t messageBox(const QString& prompt, int32_t style, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    rt::FileDialogResult openFileDialog(const rt::FileDialogRequest& request) override;
    rt::FileDialogResult saveFileDialog(const rt::FileDialogRequest& request) override;
    void setClipboardText(const QString& text) override;
    QString clipboardText() override;
    void showModalForm(const QString& formName, const QString& ownerName) override;
    void showForm(const QString& formName) override;

    // Makes a window known by its form name; the executable adds its windows at start.
    using WindowFactory = std::function<std::unique_ptr<QWidget>()>;
    void addForm(const QString& formName, WindowFactory factory);

private:
    std::map<QString, WindowFactory> factories_;
    std::map<QString, std::unique_ptr<QWidget>> windows_;
};

}  // namespace ui
