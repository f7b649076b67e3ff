#pragma once
// The few boxes and dialogs the program asks the user through, with the VB run-time's
// style numbers and answer codes, so that every form, dialog and engine routine asks the
// same way and tests answer them through ScriptedUiServices. Only QtUiServices touches
// QMessageBox, QInputDialog, QFileDialog and the clipboard.
//
// This header and its small library need Qt Core only, so every layer may ask the user;
// the executable installs the Qt implementation at start-up.

#include <cstdint>
#include <QList>
#include <QString>

namespace rt {

// Buttons (add one icon and, if wanted, a default button).
inline constexpr int32_t vbOKOnly = 0;
inline constexpr int32_t vbOKCancel = 1;
inline constexpr int32_t vbAbortRetryIgnore = 2;
inline constexpr int32_t vbYesNoCancel = 3;
inline constexpr int32_t vbYesNo = 4;
inline constexpr int32_t vbRetryCancel = 5;
// Icons.
inline constexpr int32_t vbCritical = 16;
inline constexpr int32_t vbQuestion = 32;
inline constexpr int32_t vbExclamation = 48;
inline constexpr int32_t vbInformation = 64;
// Default button (the first one when none is given).
inline constexpr int32_t vbDefaultButton2 = 256;
inline constexpr int32_t vbDefaultButton3 = 512;

// Answers.
inline constexpr int32_t vbOK = 1;
inline constexpr int32_t vbCancel = 2;
inline constexpr int32_t vbAbort = 3;
inline constexpr int32_t vbRetry = 4;
inline constexpr int32_t vbIgnore = 5;
inline constexpr int32_t vbYes = 6;
inline constexpr int32_t vbNo = 7;

// A style number taken apart.
struct MessageBoxStyle {
    int32_t buttons = vbOKOnly;
    int32_t icon = 0;
    int defaultButton = 0;  // 0-based index into answers

    static MessageBoxStyle decode(int32_t style);
    // The answer codes of the buttons, left to right.
    QList<int32_t> answers() const;
    // What closing the box with Escape or its frame answers; 0 when the box cannot be
    // closed that way (Yes/No and Abort/Retry/Ignore make the user choose).
    int32_t escapeAnswer() const;
};

// A file dialog as the host's common dialog describes it. The filter is
// "description|pattern|description|pattern", patterns separated by ";"; filter indexes
// count from 1.
struct FileDialogRequest {
    QString title;
    QString filter;
    QString initialFolder;
    QString defaultExtension;  // without the dot; added to a typed name that has none
    int32_t filterIndex = 1;
};

struct FileDialogResult {
    QString fileName;  // empty when the user cancelled
    int32_t filterIndex = 0;
};

class UiServices {
public:
    virtual ~UiServices() = default;

    // Returns the answer code of the button chosen. An empty title shows the program's name.
    virtual int32_t messageBox(const QString& prompt, int32_t style = vbOKOnly, const QString& title = QString()) = 0;
    // Returns the text typed, or "" when the user cancelled.
    virtual QString inputBox(const QString& prompt, const QString& title = QString(),
                             const QString& defaultText = QString()) = 0;
    virtual FileDialogResult openFileDialog(const FileDialogRequest& request) = 0;
    virtual FileDialogResult saveFileDialog(const FileDialogRequest& request) = 0;
    virtual void setClipboardText(const QString& text) = 0;
    virtual QString clipboardText() = 0;
    // Shows the form registered under that name (ModalForm.h) modally, owned by the
    // top-level window named ownerName, and returns when it has closed. The form hands its
    // results back itself (through the module globals, or by calling the engine).
    virtual void showModalForm(const QString& formName, const QString& ownerName) = 0;
    // Shows the window of that name modeless (the main window) and returns at once; it is
    // made the first time and shown again after that. An unknown name is run-time error 5.
    virtual void showForm(const QString& formName) = 0;

    // The implementation in use; run-time error 91 when none has been installed.
    static UiServices& current();
    // The implementation in use, or nullptr.
    static UiServices* installed();
    // Installs an implementation (not owned); nullptr removes it.
    static void install(UiServices* services);
};

// The program's name, the title of boxes that give none.
QString programTitle();

}  // namespace rt
