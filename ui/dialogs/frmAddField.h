#pragma once
// The add-column dialog: a column name and a type. In add mode (gRenameField False) OK adds
// the column to the current table and hands the result back in gFieldAdded; in rename mode
// it renames the column the main window's grid has current (gSelectedColumn) and stays open
// when the engine refuses. The type is put into the SQL as it stands, so a user may type
// one the list lacks.

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {

class frmAddField : public QDialog {
    Q_OBJECT
public:
    explicit frmAddField(QWidget* parent = nullptr);

    void Form_Load();
    // Only the last character is checked, so a character typed at the end that SQL names
    // cannot hold goes at once; one typed or pasted in the middle stays.
    void txtName_Change();
    void cmdOK_Click();
    void cmdCancel_Click();

    // The types offered, in the list's order.
    static const QStringList& typeList();

private:
    QLabel* lblName;
    QLabel* lblType;
    QLineEdit* txtName;
    QComboBox* cboType;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

}  // namespace ui
