#include "ui/QtUiServices.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

#include "rt/ModalForm.h"
#include "ui/FileFilter.h"

namespace ui {

namespace {

QMessageBox::StandardButton standardButtonOf(int32_t answer)
{
    switch (answer) {
    case rt::vbOK: return QMessageBox::Ok;
    case rt::vbCancel: return QMessageBox::Cancel;
    case rt::vbAbort: return QMessageBox::Abort;
    case rt::vbRetry: return QMessageBox::Retry;
    case rt::vbIgnore: return QMessageBox::Ignore;
    case rt::vbYes: return QMessageBox::Yes;
    default: return QMessageBox::No;
    }
}

QMessageBox::Icon iconOf(int32_t icon)
{
    switch (icon) {
    case rt::vbCritical: return QMessageBox::Critical;
    case rt::vbQuestion: return QMessageBox::Question;
    case rt::vbExclamation: return QMessageBox::Warning;
    case rt::vbInformation: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
    }
}

QString titleOr(const QString& title)
{
    return title.isEmpty() ? rt::programTitle() : title;
}

rt::FileDialogResult runFileDialog(const rt::FileDialogRequest& request, QFileDialog::AcceptMode mode)
{
    QFileDialog dialog(QApplication::activeWindow(), titleOr(request.title), request.initialFolder);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::HideNameFilterDetails, true);
    const QStringList filters = qtNameFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        const int index = request.filterIndex >= 1 && request.filterIndex <= filters.size() ? request.filterIndex : 1;
        dialog.selectNameFilter(filters[index - 1]);
    }
    if (!request.defaultExtension.isEmpty())
        dialog.setDefaultSuffix(request.defaultExtension);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    // With the details hidden the dialog names the filter without its pattern part.
    const QString chosen = dialog.selectedNameFilter();
    int32_t index = 0;
    for (qsizetype i = 0; i < filters.size() && index == 0; ++i)
        if (filters[i] == chosen || filters[i].left(filters[i].lastIndexOf(QStringLiteral(" ("))) == chosen)
            index = static_cast<int32_t>(i + 1);
    return rt::FileDialogResult{dialog.selectedFiles().constFirst(), index};
}

}  // namespace

int32_t QtUiServices::messageBox(const QString& prompt, int32_t style, const QString& title)
{
    const rt::MessageBoxStyle decoded = rt::MessageBoxStyle::decode(style);
    QMessageBox box(iconOf(decoded.icon), titleOr(title), prompt, QMessageBox::NoButton, QApplication::activeWindow());
    const QList<int32_t> answers = decoded.answers();
    for (const int32_t answer : answers)
        box.addButton(standardButtonOf(answer));
    box.setDefaultButton(standardButtonOf(answers[decoded.defaultButton]));
    if (decoded.escapeAnswer() != 0)
        box.setEscapeButton(standardButtonOf(decoded.escapeAnswer()));
    box.exec();
    for (const int32_t answer : answers)
        if (box.clickedButton() == box.button(standardButtonOf(answer)))
            return answer;
    // Closed without a button (only possible where Escape is allowed).
    return decoded.escapeAnswer() != 0 ? decoded.escapeAnswer() : answers.back();
}

QString QtUiServices::inputBox(const QString& prompt, const QString& title, const QString& defaultText)
{
    QInputDialog dialog(QApplication::activeWindow());
    dialog.setWindowTitle(titleOr(title));
    dialog.setLabelText(prompt);
    dialog.setTextValue(defaultText);
    return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}

rt::FileDialogResult QtUiServices::openFileDialog(const rt::FileDialogRequest& request)
{
    return runFileDialog(request, QFileDialog::AcceptOpen);
}

rt::FileDialogResult QtUiServices::saveFileDialog(const rt::FileDialogRequest& request)
{
    return runFileDialog(request, QFileDialog::AcceptSave);
}

void QtUiServices::setClipboardText(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

QString QtUiServices::clipboardText()
{
    return QGuiApplication::clipboard()->text();
}

void QtUiServices::showModalForm(const QString& formName, const QString& ownerName)
{
    rt::createModalForm(formName)->showModal(ownerName);
}

void QtUiServices::showForm(const QString& formName)
{
    auto made = windows_.find(formName);
    if (made == windows_.end()) {
        const auto factory = factories_.find(formName);
        if (factory == factories_.end())
            throw rt::noFormNamed(formName);
        made = windows_.emplace(formName, factory->second()).first;
    }
    made->second->show();
}

void QtUiServices::addForm(const QString& formName, WindowFactory factory)
{
    factories_[formName] = std::move(factory);
}

}  // namespace ui
