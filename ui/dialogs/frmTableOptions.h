#pragma once
// The options dialog: the separator of text tables and whether opening a database asks
// for a login. OK writes both to the machine's settings at once; the separator in use
// (gTableSeparator) changes only when the settings are read at the next start, while the
// login setting takes effect at once.

#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {

class frmTableOptions : public QDialog {
    Q_OBJECT
public:
    explicit frmTableOptions(QWidget* parent = nullptr);

    void Form_Load();
    // An empty separator box has no character to store: the user is told and the dialog
    // stays open, with nothing written.
    void cmdOK_Click();
    void cmdCancel_Click();

private:
    QGroupBox* fraRazd;
    QLabel* lblRazdName;
    QLineEdit* txtRazd;
    QGroupBox* fraDataBase;
    QCheckBox* chkLogin;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

}  // namespace ui
