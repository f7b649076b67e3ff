#include "ui/dialogs/Dialogs.h"

#include "ui/DialogForm.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/dialogs/frmAddField.h"
#include "ui/dialogs/frmLogin.h"
#include "ui/dialogs/frmNewDataBase.h"
#include "ui/dialogs/frmNumType.h"
#include "ui/dialogs/frmTableOptions.h"

namespace ui {

void registerDialogs()
{
    DialogForm::registerDialog<frmAbout>(QStringLiteral("frmAbout"));
    DialogForm::registerDialog<frmAddField>(QStringLiteral("frmAddField"));
    DialogForm::registerDialog<frmLogin>(QStringLiteral("frmLogin"));
    DialogForm::registerDialog<frmNewDataBase>(QStringLiteral("frmNewDataBase"));
    DialogForm::registerDialog<frmNumType>(QStringLiteral("frmNumType"));
    DialogForm::registerDialog<frmTableOptions>(QStringLiteral("frmTableOptions"));
}

}  // namespace ui
