#pragma once
// The new-database dialog: a name and a file path (typed, or chosen in a save dialog); OK
// makes the file from the template through the table engine and closes. The new file is
// not opened in the main window. A failure of the copy is the engine's run-time error and
// reaches the command that showed the dialog.

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {

class frmNewDataBase : public QDialog {
    Q_OBJECT
public:
    explicit frmNewDataBase(QWidget* parent = nullptr);

    void Form_Load();
    // OK is enabled exactly when both boxes hold text.
    void txt_Change();
    void cmdBrowse_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

private:
    QLabel* lblName;
    QLabel* lblFile;
    QLineEdit* txtName;
    QLineEdit* txtFile;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    QPushButton* cmdBrowse;
};

}  // namespace ui
