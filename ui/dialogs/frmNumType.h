#pragma once
// The number-type dialog: which arithmetic the statistics use, shared with the host suite
// through the machine's "TypeNum" setting. The list's index is the stored type. A stored
// type the list does not hold opens the dialog on the first entry, the ordinary type.

#include <QDialog>

class QComboBox;
class QGroupBox;
class QPushButton;

namespace ui {

class frmNumType : public QDialog {
    Q_OBJECT
public:
    explicit frmNumType(QWidget* parent = nullptr);

    void Form_Load();
    void cmdOK_Click();
    void cmdCancel_Click();

private:
    QGroupBox* fraNumType;
    QComboBox* cboNumType;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

}  // namespace ui
