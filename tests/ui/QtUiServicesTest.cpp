// How the run time's box styles become Qt's, and the Qt services showing real boxes and
// dialogs, answered from inside their own event loops.

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include "../support/TestSupport.h"
#include "ModalHelper.h"

#include "ui/QtUiServices.h"

using namespace ui;
using namespace rt;

namespace {

// What a message box showed: Qt's icon number, title, text, default button, all buttons.
QString describe(QMessageBox* box)
{
    QStringList buttons;
    for (QAbstractButton* button : box->buttons())
        buttons << button->text();
    buttons.sort();
    return QStringLiteral("%1|%2|%3|%4|").arg(box->icon()).arg(box->windowTitle(), box->text(), box->defaultButton()->text()) +
           buttons.join(u'|');
}

}  // namespace

TEST(MessageBoxStyle, TakesTheStyleNumberApart)
{
    // style, icon, buttons' answers, default button, answer to Escape (0: the user must choose)
    const std::vector<std::tuple<int32_t, int32_t, QList<int32_t>, int, int32_t>> cases = {
        {vbYesNo | vbQuestion, vbQuestion, {vbYes, vbNo}, 0, 0},
        {vbExclamation, vbExclamation, {vbOK}, 0, vbOK},
        {vbCritical, vbCritical, {vbOK}, 0, vbOK},
        {vbYesNoCancel | vbDefaultButton3, 0, {vbYes, vbNo, vbCancel}, 2, vbCancel},
        {vbOKOnly | vbDefaultButton2, 0, {vbOK}, 0, vbOK},  // no second button: the first is default
        {vbAbortRetryIgnore, 0, {vbAbort, vbRetry, vbIgnore}, 0, 0},
        {7, 0, {vbOK}, 0, vbOK}};  // buttons the run time does not know
    for (const auto& [style, icon, answers, defaultButton, escape] : cases) {
        const MessageBoxStyle decoded = MessageBoxStyle::decode(style);
        EXPECT_EQ(decoded.icon, icon) << style;
        EXPECT_EQ(decoded.answers(), answers) << style;
        EXPECT_EQ(decoded.defaultButton, defaultButton) << style;
        EXPECT_EQ(decoded.escapeAnswer(), escape) << style;
    }
}

TEST(QtUiServices, MessageAndInputBoxesShowWhatTheyAreGivenAndAnswerWhatIsChosen)
{
    QtUiServices services;
    QString shown;
    whenShown<QMessageBox>([&](QMessageBox* box) {
        shown = describe(box);
        box->button(QMessageBox::No)->click();
    });
    EXPECT_EQ(services.messageBox("Delete the table T?", vbYesNo | vbQuestion, "Delete table"), vbNo);
    EXPECT_EQ(shown, "4|Delete table|Delete the table T?|&Yes|&No|&Yes");
    // Without a title the program's name; Escape is Cancel where the box has one.
    whenShown<QMessageBox>([&](QMessageBox* box) {
        shown = describe(box);
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(box, &escape);
    });
    EXPECT_EQ(services.messageBox("Save?", vbYesNoCancel | vbExclamation | vbDefaultButton2, ""), vbCancel);
    EXPECT_EQ(shown, "2|Sheetwright|Save?|&No|&No|&Yes|Cancel");
    whenShown<QInputDialog>([&](QInputDialog* dialog) {
        shown = dialog->windowTitle() + u'|' + dialog->labelText() + u'|' + dialog->textValue();
        dialog->setTextValue("Orders");
        dialog->accept();
    });
    EXPECT_EQ(services.inputBox("Table name:", "New table", "Table1"), "Orders");
    EXPECT_EQ(shown, "New table|Table name:|Table1");
    whenShown<QInputDialog>([](QInputDialog* dialog) { dialog->reject(); });
    EXPECT_EQ(services.inputBox("Table name:", "New table", "Table1"), QString());
}

TEST(QtUiServices, FileDialogsUseTitleAndFiltersAndReportTheChosenFilter)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("data.xml"), "");
    QtUiServices services;
    QString shown;
    whenShown<QFileDialog>([&](QFileDialog* dialog) {
        shown = dialog->windowTitle() + u'|' + dialog->nameFilters().join(u'|');
        dialog->selectNameFilter(dialog->nameFilters().value(1));
        dialog->selectFile(dir.filePath("data.xml"));
        static_cast<QDialog*>(dialog)->accept();  // QFileDialog hides accept()
    });
    const FileDialogResult result = services.openFileDialog(
        {"Open table", "HTML (*.html;*.htm)|*.html;*.htm|XML (*.xml)|*.xml", dir.path(), QString(), 1});
    EXPECT_EQ(shown, "Open table|HTML (*.html;*.htm) (*.html *.htm)|XML (*.xml) (*.xml)");
    EXPECT_EQ(result.fileName + u'|' + QString::number(result.filterIndex), dir.filePath("data.xml") + "|2");
    whenShown<QFileDialog>([](QFileDialog* dialog) { dialog->reject(); });
    EXPECT_TRUE(services.saveFileDialog({"Save", "XML (*.xml)|*.xml", dir.path(), "xml", 1}).fileName.isEmpty());
    services.setClipboardText(QString::fromUtf8("3.14;Привет"));
    EXPECT_EQ(services.clipboardText(), QString::fromUtf8("3.14;Привет"));
}

TEST(QtUiServices, AWindowIsMadeWhenFirstShownAndShownAgainAfterThat)
{
    QtUiServices services;
    int made = 0;
    QWidget* window = nullptr;
    services.addForm("frmMain", [&] {
        ++made;
        auto widget = std::make_unique<QWidget>();
        window = widget.get();
        return widget;
    });
    services.showForm("frmMain");
    ASSERT_TRUE(window != nullptr && window->isVisible());
    window->hide();
    services.showForm("frmMain");
    EXPECT_TRUE(made == 1 && window->isVisible());
    EXPECT_EQ(runTimeErrorOf([&] { services.showForm("frmNowhere"); }), 5);
}
