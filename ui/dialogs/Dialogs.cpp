#include "ui/dialogs/Dialogs.h"

#include "ui/DialogForm.h"
#include "ui/dialogs/frmLogin.h"

namespace ui {

void registerDialogs()
{
    DialogForm::registerDialog<frmLogin>(QStringLiteral("frmLogin"));
}

}  // namespace ui
