// The program: installs the Qt boxes and dialogs, runs Main under the top-level handler
// and lives in the event loop until the last window closes. A database named on the
// command line (as a file manager's "Open with" passes it) opens once the window shows.

#include <memory>
#include <QTimer>

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
    ui::frmTable* mainForm = nullptr;
    services.addForm(QStringLiteral("frmTable"), [&mainForm]() -> std::unique_ptr<QWidget> {
        auto form = std::make_unique<ui::frmTable>();
        mainForm = form.get();
        return form;
    });
    rt::UiServices::install(&services);
    ui::registerDialogs();
    // Numbers and dates the engine turns into text follow the user's regional settings.
    jet::Locale::setCurrent(rt::jetLocaleOf(QLocale::system()));

    // An error before the window is shown ends the program after the run-time error box.
    const bool started = rt::runHandled([] { app::Main(); });
    if (!started)
        return 1;
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 1 && mainForm) {
        const QString file = arguments.at(1);
        QTimer::singleShot(0, mainForm, [mainForm, file] { mainForm->OpenCommandLineFile(file); });
    }
    return application.exec();
}
