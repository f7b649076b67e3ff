#pragma once
// The login dialog: asks for the user name and password of a protected database before
// it is opened. It only collects: OK copies both boxes into gLoginUser and gLoginPassword
// and sets gLoginAccepted, Cancel clears gLoginAccepted; whoever showed it reads the
// globals after it has closed. Closing it by the frame button touches none of them, so
// gLoginAccepted keeps what the previous showing left there.

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace ui {

class frmLogin : public QDialog {
    Q_OBJECT
public:
    explicit frmLogin(QWidget* parent = nullptr);

    void Form_Load();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLabel* lblLogin;
    QLabel* lblPassword;
    QLineEdit* txtLogin;
    QLineEdit* txtPassword;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

}  // namespace ui
