#pragma once
// Makes the program's modal dialogs known to the UI services by their form names, so the
// layers below the widgets can show them (UiServices::showModalForm). The program calls
// it once at start; tests that show a dialog through the services call it too.

namespace ui {

void registerDialogs();

}  // namespace ui
