#pragma once
// The about box: the program's title, its version as major.minor.revision and its
// description, all from the program's own version information; nothing in it comes from
// the language table.

#include <QDialog>

class QFrame;
class QLabel;
class QPushButton;

namespace ui {

class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);

    void Form_Load();
    void cmdOK_Click();

    // "Version 2.15.0": plain decimal numbers, no padding.
    static QString versionText(int32_t major, int32_t minor, int32_t revision);

private:
    QLabel* lblTitle;
    QLabel* lblVersion;
    QLabel* lblDescription;
    QFrame* Line1;
    QPushButton* cmdOK;
};

}  // namespace ui
