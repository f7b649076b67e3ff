#pragma once
// The program's main window. For now it takes its caption from the language table
// (Common item 1), its size from the settings and opens centred; the tree, grids, menus
// and toolbar join it with the main-window work.

#include <QMainWindow>

namespace ui {

class frmTable : public QMainWindow {
    Q_OBJECT
public:
    explicit frmTable(QWidget* parent = nullptr);

    void Form_Load();
};

}  // namespace ui
