// The program: installs the Qt boxes and dialogs, runs Main under the top-level handler
// and lives in the event loop until the last window closes.

#include <memory>

#include "app/ModMain.h"
#include "jet/Locale.h"
#include "rt/SystemLocale.h"
#include "rt/TopLevelHandler.h"
#include "ui/QtUiServices.h"
#include "ui/SheetwrightApplication.h"
#include "ui/dialogs/Dialogs.h"
#include "ui/main/frmTable.h"

int main(int argc, char** argv)
{
    ui::SheetwrightApplication application(argc, argv);
    ui::QtUiServices services;
    services.addForm(QStringLiteral("frmTable"), [] { return std::make_unique<ui::frmTable>(); });
    rt::UiServices::install(&services);
    ui::registerDialogs();
    // Numbers and dates the engine turns into text follow the user's regional settings.
    jet::Locale::setCurrent(rt::jetLocaleOf(QLocale::system()));

    // An error before the window is shown ends the program after the run-time error box.
    const bool started = rt::runHandled([] { app::Main(); });
    if (!started)
        return 1;
    return application.exec();
}
