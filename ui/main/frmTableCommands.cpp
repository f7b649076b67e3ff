// The main window's menu items and toolbar buttons joined to their commands.

#include <QAction>

#include "ui/main/frmTable.h"

namespace ui {

void frmTable::connectCommands()
{
    using Handler = void (frmTable::*)();
    // mnuMaxCrat has no command: the greatest common divisor is offered in the menu only.
    const std::pair<const char*, Handler> commands[] = {
        {"mnuDataBaseCreate", &frmTable::mnuDataBaseCreate_Click},
        {"mnuTableCreate", &frmTable::mnuTableCreate_Click},
        {"mnuOpenDataBase", &frmTable::mnuOpenDataBase_Click},
        {"mnuOpen", &frmTable::mnuOpen_Click},
        {"mnuPicOpen", &frmTable::mnuPicOpen_Click},
        {"mnuSave", &frmTable::mnuSave_Click},
        {"mnuOpenHTML", &frmTable::mnuOpenHTML_Click},
        {"mnuOpenXML", &frmTable::mnuOpenXML_Click},
        {"mnuSaveHTML", &frmTable::mnuSaveHTML_Click},
        {"mnuSaveXML", &frmTable::mnuSaveXML_Click},
        {"mnuCopy", &frmTable::mnuCopy_Click},
        {"mnuStrikeAdd", &frmTable::mnuStrikeAdd_Click},
        {"mnuStrikeDelete", &frmTable::mnuStrikeDelete_Click},
        {"mnuColumnAdd", &frmTable::mnuColumnAdd_Click},
        {"mnuColumnDelete", &frmTable::mnuColumnDelete_Click},
        {"mnuColumnRename", &frmTable::mnuColumnRename_Click},
        {"mnuSelString", &frmTable::mnuSelString_Click},
        {"mnuSelColumn", &frmTable::mnuSelColumn_Click},
        {"mnuDelTable", &frmTable::mnuDelTable_Click},
        {"mnuEditView", &frmTable::mnuEditView_Click},
        {"mnuStatisics", &frmTable::mnuStatisics_Click},
        {"mnuSumm", &frmTable::mnuSumm_Click},
        {"mnuMuch", &frmTable::mnuMuch_Click},
        {"mnuMid", &frmTable::mnuMid_Click},
        {"mnuMax", &frmTable::mnuMax_Click},
        {"mnuMin", &frmTable::mnuMin_Click},
        {"mnuMidGeo", &frmTable::mnuMidGeo_Click},
        {"mnuMultunomial", &frmTable::mnuMultunomial_Click},
        {"mnuMinDevCrat", &frmTable::mnuMinDevCrat_Click},
        {"mnuDivisor", &frmTable::mnuDivisor_Click},
        {"mnuSquareDivisor", &frmTable::mnuSquareDivisor_Click},
        {"mnuMedian", &frmTable::mnuMedian_Click},
        {"mnuMidHarmonic", &frmTable::mnuMidHarmonic_Click},
        {"mnuInsertResult", &frmTable::mnuInsertResult_Click},
        {"mnuNumberType", &frmTable::mnuNumberType_Click},
        {"mnuOptionsTable", &frmTable::mnuOptionsTable_Click},
    };
    for (const auto& [name, handler] : commands)
        connect(menuItem(QLatin1String(name)), &QAction::triggered, this, handler);
    for (QAction* button : std::as_const(buttons_))
        connect(button, &QAction::triggered, this, [this, button] { tlbMain_ButtonClick(button->objectName()); });
}

void frmTable::tlbMain_ButtonClick(const QString& key)
{
    if (key == QLatin1String("NewDB"))
        mnuDataBaseCreate_Click();
    else if (key == QLatin1String("NewTable"))
        mnuTableCreate_Click();
    else if (key == QLatin1String("OpenDB"))
        mnuOpenDataBase_Click();
    else if (key == QLatin1String("Open"))
        mnuOpen_Click();
    else if (key == QLatin1String("Copy"))
        mnuCopy_Click();
    else if (key == QLatin1String("TableVR"))
        mnuSelColumn_Click();
    else if (key == QLatin1String("TableHZ"))
        mnuSelString_Click();
    else if (key == QLatin1String("InsertRES"))
        mnuInsertResult_Click();
    else if (key == QLatin1String("Save"))
        mnuSave_Click();
    else if (key == QLatin1String("EditView")) {
        mnuEditView_Click();
        button(key)->setChecked(mEditMode);
    }
    // "InsertRIAD", "SELCLEAR" and "DelStroke" belong to a list of rows this window does
    // not have, and "DelColumn" and "Stat" were never given a command: they do nothing.
}

}  // namespace ui
