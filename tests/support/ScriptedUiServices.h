#pragma once
// UiServices for tests: answers every box from queues that the test fills beforehand and
// records every box it was asked to show, so a test can check the exact text, title and
// style a user would have seen.
//
//   rt::ScriptedUiServices fake;
//   rt::UiServicesScope use(fake);
//   fake.answerMessageBox(rt::vbYes).answerInputBox("Orders");
//   ... run the code ...
//   EXPECT_EQ(fake.messageBoxes().at(0).prompt, "Delete the table Orders?");
//
// A box with only an OK button needs no scripted answer. Any other box asked when its
// queue is empty is answered as if the user cancelled (Cancel, No, "", no file) and is
// counted in unscriptedCount(), so a test can tell that it did not expect it.
//
// Modal forms are answered by a script of user actions per form name, played on a real,
// never shown, instance of the registered form (so its own handlers run):
//
//   fake.answerForm("frmLogin", rt::FormScript().type("txtLogin", "admin").click("cmdOK"));
//
// A form still open when its script has run out (or that had no script) is closed by its
// frame button, as a user who walks away from it would; without a script it counts as
// unscripted.
//
// Modeless windows (the main window) are only written down by name; a test that wants to
// look at the program at the moment one is shown gives an action for it:
//
//   fake.whenFormShown("frmTable", [&] { caption = ...; });

#include <deque>
#include <functional>
#include <map>
#include <vector>

#include "rt/UiServices.h"

namespace rt {

// What a user does to a modal form, in order.
class FormScript {
public:
    struct Action {
        enum class Kind { Type, Click, CloseByFrame };
        Kind kind;
        QString control;
        QString text;
    };

    FormScript& type(const QString& control, const QString& text);
    FormScript& click(const QString& control);
    FormScript& closeByFrame();

    const std::vector<Action>& actions() const { return actions_; }

private:
    std::vector<Action> actions_;
};

struct RecordedBox {
    enum class Kind { Message, Input, OpenFile, SaveFile, Form };
    Kind kind = Kind::Message;
    QString prompt;              // message and input boxes
    QString title;               // every kind; a form's caption as it showed after loading
    QString form;                // forms: the form's name
    QString owner;               // forms: the name of the window that owns it
    int32_t style = vbOKOnly;    // message boxes
    QString defaultText;         // input boxes
    FileDialogRequest file;      // file dialogs
    bool scripted = true;        // false when the queue had no answer for it
};

class ScriptedUiServices : public UiServices {
public:
    ScriptedUiServices& answerMessageBox(int32_t answer);
    ScriptedUiServices& answerInputBox(const QString& text);
    ScriptedUiServices& answerOpenFile(const QString& fileName, int32_t filterIndex = 1);
    ScriptedUiServices& answerSaveFile(const QString& fileName, int32_t filterIndex = 1);
    ScriptedUiServices& answerForm(const QString& formName, FormScript script);
    // Replaces what runs when the window of that name is shown.
    ScriptedUiServices& whenFormShown(const QString& formName, std::function<void()> action);

    const std::vector<RecordedBox>& boxes() const { return boxes_; }
    std::vector<RecordedBox> messageBoxes() const;
    std::vector<RecordedBox> forms() const;
    // The modeless windows shown, by name, in order.
    const std::vector<QString>& windows() const { return windows_; }
    int unscriptedCount() const;
    // True when every scripted answer has been used.
    bool allAnswersUsed() const;
    // Forgets the recorded boxes and windows, the answers not used yet and the window actions.
    void clear();

    int32_t messageBox(const QString& prompt, int32_t style, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    FileDialogResult openFileDialog(const FileDialogRequest& request) override;
    FileDialogResult saveFileDialog(const FileDialogRequest& request) override;
    void setClipboardText(const QString& text) override { clipboard_ = text; }
    QString clipboardText() override { return clipboard_; }
    void showModalForm(const QString& formName, const QString& ownerName) override;
    void showForm(const QString& formName) override;

private:
    FileDialogResult fileDialog(RecordedBox::Kind kind, std::deque<FileDialogResult>& queue,
                                const FileDialogRequest& request);
    std::vector<RecordedBox> boxesOfKind(RecordedBox::Kind kind) const;

    std::deque<int32_t> messageAnswers_;
    std::deque<QString> inputAnswers_;
    std::deque<FileDialogResult> openAnswers_;
    std::deque<FileDialogResult> saveAnswers_;
    std::map<QString, std::deque<FormScript>> formAnswers_;
    std::map<QString, std::function<void()>> windowActions_;
    std::vector<RecordedBox> boxes_;
    std::vector<QString> windows_;
    QString clipboard_;
};

// Installs services for the lifetime of the scope and puts the previous ones back after.
class UiServicesScope {
public:
    explicit UiServicesScope(UiServices& services);
    ~UiServicesScope();
    UiServicesScope(const UiServicesScope&) = delete;
    UiServicesScope& operator=(const UiServicesScope&) = delete;

private:
    UiServices* previous_;
};

}  // namespace rt
