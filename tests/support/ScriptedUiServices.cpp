#include "ScriptedUiServices.h"

#include <algorithm>
#include <optional>

#include "rt/ModalForm.h"

namespace rt {

namespace {

// The next scripted answer, if the test gave one.
template <typename T>
std::optional<T> nextAnswer(std::deque<T>& queue)
{
    if (queue.empty())
        return std::nullopt;
    std::optional<T> answer(std::move(queue.front()));
    queue.pop_front();
    return answer;
}

}  // namespace

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

FormScript& FormScript::type(const QString& control, const QString& text)
{
    actions_.push_back(Action{Action::Kind::Type, control, text});
    return *this;
}

FormScript& FormScript::click(const QString& control)
{
    actions_.push_back(Action{Action::Kind::Click, control, QString()});
    return *this;
}

FormScript& FormScript::closeByFrame()
{
    actions_.push_back(Action{Action::Kind::CloseByFrame, QString(), QString()});
    return *this;
}

ScriptedUiServices& ScriptedUiServices::answerForm(const QString& formName, FormScript script)
{
    formAnswers_[formName].push_back(std::move(script));
    return *this;
}

std::vector<RecordedBox> ScriptedUiServices::boxesOfKind(RecordedBox::Kind kind) const
{
    std::vector<RecordedBox> result;
    std::copy_if(boxes_.begin(), boxes_.end(), std::back_inserter(result),
                 [kind](const RecordedBox& b) { return b.kind == kind; });
    return result;
}

std::vector<RecordedBox> ScriptedUiServices::messageBoxes() const
{
    return boxesOfKind(RecordedBox::Kind::Message);
}

std::vector<RecordedBox> ScriptedUiServices::forms() const
{
    return boxesOfKind(RecordedBox::Kind::Form);
}

int ScriptedUiServices::unscriptedCount() const
{
    return static_cast<int>(std::count_if(boxes_.begin(), boxes_.end(), [](const RecordedBox& b) { return !b.scripted; }));
}

bool ScriptedUiServices::allAnswersUsed() const
{
    const bool formsUsed = std::all_of(formAnswers_.begin(), formAnswers_.end(),
                                       [](const auto& entry) { return entry.second.empty(); });
    return messageAnswers_.empty() && inputAnswers_.empty() && openAnswers_.empty() && saveAnswers_.empty() &&
           formsUsed;
}

void ScriptedUiServices::clear()
{
    messageAnswers_.clear();
    inputAnswers_.clear();
    openAnswers_.clear();
    saveAnswers_.clear();
    formAnswers_.clear();
    windowActions_.clear();
    boxes_.clear();
    windows_.clear();
}

int32_t ScriptedUiServices::messageBox(const QString& prompt, int32_t style, const QString& title)
{
    RecordedBox box;
    box.kind = RecordedBox::Kind::Message;
    box.prompt = prompt;
    box.title = title;
    box.style = style;
    const MessageBoxStyle decoded = MessageBoxStyle::decode(style);
    const std::optional<int32_t> answer = nextAnswer(messageAnswers_);
    // A box with only an OK button needs no script.
    box.scripted = answer || decoded.buttons == vbOKOnly;
    boxes_.push_back(box);
    if (answer)
        return *answer;
    return decoded.escapeAnswer() != 0 ? decoded.escapeAnswer() : decoded.answers().back();
}

QString ScriptedUiServices::inputBox(const QString& prompt, const QString& title, const QString& defaultText)
{
    RecordedBox box;
    box.kind = RecordedBox::Kind::Input;
    box.prompt = prompt;
    box.title = title;
    box.defaultText = defaultText;
    const std::optional<QString> answer = nextAnswer(inputAnswers_);
    box.scripted = answer.has_value();
    boxes_.push_back(box);
    return answer.value_or(QString());
}

FileDialogResult ScriptedUiServices::fileDialog(RecordedBox::Kind kind, std::deque<FileDialogResult>& queue,
                                                const FileDialogRequest& request)
{
    RecordedBox box;
    box.kind = kind;
    box.title = request.title;
    box.file = request;
    const std::optional<FileDialogResult> answer = nextAnswer(queue);
    box.scripted = answer.has_value();
    boxes_.push_back(box);
    return answer.value_or(FileDialogResult{});
}

FileDialogResult ScriptedUiServices::openFileDialog(const FileDialogRequest& request)
{
    return fileDialog(RecordedBox::Kind::OpenFile, openAnswers_, request);
}

FileDialogResult ScriptedUiServices::saveFileDialog(const FileDialogRequest& request)
{
    return fileDialog(RecordedBox::Kind::SaveFile, saveAnswers_, request);
}

void ScriptedUiServices::showModalForm(const QString& formName, const QString& ownerName)
{
    RecordedBox box;
    box.kind = RecordedBox::Kind::Form;
    box.form = formName;
    box.owner = ownerName;
    std::optional<FormScript> answer = nextAnswer(formAnswers_[formName]);
    box.scripted = answer.has_value();
    const FormScript script = std::move(answer).value_or(FormScript());
    // Recorded before the form runs, so that a box the form itself asks comes after it.
    boxes_.push_back(box);
    const size_t recorded = boxes_.size() - 1;

    const std::unique_ptr<ModalForm> form = createModalForm(formName);
    boxes_[recorded].title = form->caption();
    for (const FormScript::Action& action : script.actions()) {
        if (form->isClosed())
            break;
        switch (action.kind) {
        case FormScript::Action::Kind::Type: form->setControlText(action.control, action.text); break;
        case FormScript::Action::Kind::Click: form->clickControl(action.control); break;
        case FormScript::Action::Kind::CloseByFrame: form->closeByFrame(); break;
        }
    }
    if (!form->isClosed())
        form->closeByFrame();
}

ScriptedUiServices& ScriptedUiServices::whenFormShown(const QString& formName, std::function<void()> action)
{
    windowActions_[formName] = std::move(action);
    return *this;
}

void ScriptedUiServices::showForm(const QString& formName)
{
    windows_.push_back(formName);
    const auto action = windowActions_.find(formName);
    if (action != windowActions_.end() && action->second)
        action->second();
}

UiServicesScope::UiServicesScope(UiServices& services) : previous_(UiServices::installed())
{
    UiServices::install(&services);
}

UiServicesScope::~UiServicesScope()
{
    UiServices::install(previous_);
}

}  // namespace rt
