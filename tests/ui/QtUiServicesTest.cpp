#include <gtest/gtest.h>

#include <QFileDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include "ModalHelper.h"
#include "ui/QtUiServices.h"

using namespace ui;

TEST(QtUiServices, QuestionBoxShowsIconTitleTextAndYesNo)
{
    QtUiServices services;
    QMessageBox::Icon icon{};
    QString title, text;
    int buttonCount = 0;
    whenShown<QMessageBox>([&](QMessageBox* box) {
        icon = box->icon();
        title = box->windowTitle();
        text = box->text();
        buttonCount = static_cast<int>(box->buttons().size());
        box->button(QMessageBox::No)->click();
    });
    EXPECT_EQ(services.messageBox("Delete the table T?", vbYesNo | vbQuestion, "Delete table"), vbNo);
    EXPECT_EQ(icon, QMessageBox::Question);
    EXPECT_EQ(title, "Delete table");
    EXPECT_EQ(text, "Delete the table T?");
    EXPECT_EQ(buttonCount, 2);
}

TEST(QtUiServices, BoxesWithoutTitleShowTheProgramsNameAndEscapeCancels)
{
    QtUiServices services;
    QMessageBox::Icon icon{};
    QString title;
    QAbstractButton* defaultButton = nullptr;
    QAbstractButton* noButton = nullptr;
    whenShown<QMessageBox>([&](QMessageBox* box) {
        icon = box->icon();
        title = box->windowTitle();
        defaultButton = box->defaultButton();
        noButton = box->button(QMessageBox::No);
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(box, &escape);
    });
    EXPECT_EQ(services.messageBox("Save?", vbYesNoCancel | vbExclamation | vbDefaultButton2, ""), vbCancel);
    EXPECT_EQ(icon, QMessageBox::Warning);
    EXPECT_EQ(title, "Sheetwright");
    EXPECT_EQ(defaultButton, noButton);
}

TEST(QtUiServices, InputBoxGivesTheTextOrEmptyOnCancel)
{
    QtUiServices services;
    QString label, shownDefault;
    whenShown<QInputDialog>([&](QInputDialog* dialog) {
        label = dialog->labelText();
        shownDefault = dialog->textValue();
        dialog->setTextValue("Orders");
        dialog->accept();
    });
    EXPECT_EQ(services.inputBox("Table name:", "New table", "Table1"), "Orders");
    EXPECT_EQ(label, "Table name:");
    EXPECT_EQ(shownDefault, "Table1");
    whenShown<QInputDialog>([](QInputDialog* dialog) { dialog->reject(); });
    EXPECT_EQ(services.inputBox("Table name:", "New table", "Table1"), QString());
}

TEST(QtUiServices, OpenDialogUsesTitleFiltersAndReportsTheChosenFilter)
{
    QTemporaryDir dir;
    QFile file(dir.path() + "/data.xml");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    QtUiServices services;
    QString title;
    QStringList filters;
    whenShown<QFileDialog>([&](QFileDialog* dialog) {
        title = dialog->windowTitle();
        filters = dialog->nameFilters();
        dialog->selectNameFilter(filters.value(1));
        dialog->selectFile(file.fileName());
        static_cast<QDialog*>(dialog)->accept();  // QFileDialog hides accept()
    });
    const FileDialogResult result = services.openFileDialog(
        {"Open table", "HTML (*.html;*.htm)|*.html;*.htm|XML (*.xml)|*.xml", dir.path(), QString(), 1});
    EXPECT_EQ(title, "Open table");
    EXPECT_EQ(filters.size(), 2);
    EXPECT_EQ(result.fileName, file.fileName());
    EXPECT_EQ(result.filterIndex, 2);

    whenShown<QFileDialog>([](QFileDialog* dialog) { dialog->reject(); });
    EXPECT_TRUE(services.saveFileDialog({"Save", "XML (*.xml)|*.xml", dir.path(), "xml", 1}).fileName.isEmpty());
}

TEST(QtUiServices, ClipboardKeepsPlainText)
{
    QtUiServices services;
    services.setClipboardText(QString::fromUtf8("3.14;Привет"));
    EXPECT_EQ(services.clipboardText(), QString::fromUtf8("3.14;Привет"));
}
