#include "ui/dialogs/Dialogs.h"

#include "ui/DialogForm.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/dialogs/frmLogin.h"

namespace ui {

void registerDialogs()
{
    DialogForm::registerDialog<frmAbout>(QStringLiteral("frmAbout"));
    DialogForm::registerDialog<frmLogin>(QStringLiteral("frmLogin"));
}

}  // namespace ui
