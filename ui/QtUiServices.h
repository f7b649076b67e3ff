#pragma once
// UiServices with Qt's own boxes and dialogs, owned by the active window.

#include "ui/UiServices.h"

namespace ui {

class QtUiServices : public UiServices {
public:
    int32_t messageBox(const QString& prompt, int32_t style, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    FileDialogResult openFileDialog(const FileDialogRequest& request) override;
    FileDialogResult saveFileDialog(const FileDialogRequest& request) override;
    void setClipboardText(const QString& text) override;
    QString clipboardText() override;
    void showModalForm(const QString& formName, const QString& ownerName) override;
};

}  // namespace ui
