#pragma once
// UiServices for tests: answers every box from queues that the test fills beforehand and
// records every box it was asked to show, so a test can check the exact text, title and
// style a user would have seen.
//
//   ui::ScriptedUiServices fake;
//   ui::UiServicesScope use(fake);
//   fake.answerMessageBox(ui::vbYes).answerInputBox("Orders");
//   ... run the code ...
//   EXPECT_EQ(fake.messageBoxes().at(0).prompt, "Delete the table Orders?");
//
// A box with only an OK button needs no scripted answer. Any other box asked when its
// queue is empty is answered as if the user cancelled (Cancel, No, "", no file) and is
// counted in unscriptedCount(), so a test can tell that it did not expect it.

#include <deque>
#include <vector>

#include "ui/UiServices.h"

namespace ui {

struct RecordedBox {
    enum class Kind { Message, Input, OpenFile, SaveFile };
    Kind kind = Kind::Message;
    QString prompt;              // message and input boxes
    QString title;               // every kind
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

    const std::vector<RecordedBox>& boxes() const { return boxes_; }
    std::vector<RecordedBox> messageBoxes() const;
    int unscriptedCount() const;
    // True when every scripted answer has been used.
    bool allAnswersUsed() const;
    // Forgets the recorded boxes and the answers not used yet.
    void clear();

    int32_t messageBox(const QString& prompt, int32_t style, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    FileDialogResult openFileDialog(const FileDialogRequest& request) override;
    FileDialogResult saveFileDialog(const FileDialogRequest& request) override;
    void setClipboardText(const QString& text) override { clipboard_ = text; }
    QString clipboardText() override { return clipboard_; }

private:
    FileDialogResult fileDialog(RecordedBox::Kind kind, std::deque<FileDialogResult>& queue,
                                const FileDialogRequest& request);

    std::deque<int32_t> messageAnswers_;
    std::deque<QString> inputAnswers_;
    std::deque<FileDialogResult> openAnswers_;
    std::deque<FileDialogResult> saveAnswers_;
    std::vector<RecordedBox> boxes_;
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

}  // namespace ui
