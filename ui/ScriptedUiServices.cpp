#include "ui/ScriptedUiServices.h"

#include <algorithm>

namespace ui {

ScriptedUiServices& ScriptedUiServices::answerMessageBox(int32_t answer)
{
    messageAnswers_.push_back(answer);
    return *this;
}

ScriptedUiServices& ScriptedUiServices::answerInputBox(const QString& text)
{
    inputAnswers_.push_back(text);
    return *this;
}

ScriptedUiServices& ScriptedUiServices::answerOpenFile(const QString& fileName, int32_t filterIndex)
{
    openAnswers_.push_back(FileDialogResult{fileName, filterIndex});
    return *this;
}

ScriptedUiServices& ScriptedUiServices::answerSaveFile(const QString& fileName, int32_t filterIndex)
{
    saveAnswers_.push_back(FileDialogResult{fileName, filterIndex});
    return *this;
}

std::vector<RecordedBox> ScriptedUiServices::messageBoxes() const
{
    std::vector<RecordedBox> result;
    std::copy_if(boxes_.begin(), boxes_.end(), std::back_inserter(result),
                 [](const RecordedBox& b) { return b.kind == RecordedBox::Kind::Message; });
    return result;
}

int ScriptedUiServices::unscriptedCount() const
{
    return static_cast<int>(std::count_if(boxes_.begin(), boxes_.end(), [](const RecordedBox& b) { return !b.scripted; }));
}

bool ScriptedUiServices::allAnswersUsed() const
{
    return messageAnswers_.empty() && inputAnswers_.empty() && openAnswers_.empty() && saveAnswers_.empty();
}

void ScriptedUiServices::clear()
{
    messageAnswers_.clear();
    inputAnswers_.clear();
    openAnswers_.clear();
    saveAnswers_.clear();
    boxes_.clear();
}

int32_t ScriptedUiServices::messageBox(const QString& prompt, int32_t style, const QString& title)
{
    RecordedBox box;
    box.kind = RecordedBox::Kind::Message;
    box.prompt = prompt;
    box.title = title;
    box.style = style;
    const MessageBoxStyle decoded = MessageBoxStyle::decode(style);
    int32_t answer = vbOK;
    if (!messageAnswers_.empty()) {
        answer = messageAnswers_.front();
        messageAnswers_.pop_front();
    } else if (decoded.buttons != vbOKOnly) {
        box.scripted = false;
        answer = decoded.escapeAnswer() != 0 ? decoded.escapeAnswer() : decoded.answers().back();
    }
    boxes_.push_back(box);
    return answer;
}

QString ScriptedUiServices::inputBox(const QString& prompt, const QString& title, const QString& defaultText)
{
    RecordedBox box;
    box.kind = RecordedBox::Kind::Input;
    box.prompt = prompt;
    box.title = title;
    box.defaultText = defaultText;
    QString answer;
    if (!inputAnswers_.empty()) {
        answer = inputAnswers_.front();
        inputAnswers_.pop_front();
    } else {
        box.scripted = false;
    }
    boxes_.push_back(box);
    return answer;
}

FileDialogResult ScriptedUiServices::fileDialog(RecordedBox::Kind kind, std::deque<FileDialogResult>& queue,
                                                const FileDialogRequest& request)
{
    RecordedBox box;
    box.kind = kind;
    box.title = request.title;
    box.file = request;
    FileDialogResult answer;
    if (!queue.empty()) {
        answer = queue.front();
        queue.pop_front();
    } else {
        box.scripted = false;
    }
    boxes_.push_back(box);
    return answer;
}

FileDialogResult ScriptedUiServices::openFileDialog(const FileDialogRequest& request)
{
    return fileDialog(RecordedBox::Kind::OpenFile, openAnswers_, request);
}

FileDialogResult ScriptedUiServices::saveFileDialog(const FileDialogRequest& request)
{
    return fileDialog(RecordedBox::Kind::SaveFile, saveAnswers_, request);
}

UiServicesScope::UiServicesScope(UiServices& services) : previous_(UiServices::installed())
{
    UiServices::install(&services);
}

UiServicesScope::~UiServicesScope()
{
    UiServices::install(previous_);
}

}  // namespace ui
