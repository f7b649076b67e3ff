// sheetwright-setup: plays the host's installer for this machine's user (see HostSetup).
//   sheetwright-setup [--languages FOLDER]
// Without --languages the language tables are looked for where an installation puts
// them (../share/sheetwright/languages beside the program) and then in the source tree
// the program was built from.

#include <cstdio>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "app/HostSetup.h"
#include "host/Registry.h"
#include "ui/TopLevelHandler.h"

namespace {

QString findLanguageFolder()
{
    const QString installed = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/sheetwright/languages");
    if (QFileInfo(installed + QStringLiteral("/English.lng")).exists())
        return QDir(installed).canonicalPath();
    return QStringLiteral(SHEETWRIGHT_SOURCE_LANGUAGES);
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("sheetwright-setup"));
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("Writes the default settings Sheetwright needs, keeping what is set."));
    options.addHelpOption();
    const QCommandLineOption languages(QStringLiteral("languages"), QStringLiteral("Folder of the language tables."),
                                       QStringLiteral("folder"));
    options.addOption(languages);
    options.process(application);

    app::SetupDefaults defaults;
    defaults.languageFolder = options.isSet(languages) ? QDir(options.value(languages)).absolutePath() : findLanguageFolder();
    defaults.databaseFolder = app::SetupDefaults::defaultDatabaseFolder();

    host::Registry registry(host::Registry::defaultFolder());
    app::HostSetup setup(registry, defaults, app::makeTemplateDatabase);
    const bool ok = ui::runHandled([&] {
        const QStringList done = setup.run();
        std::printf("Settings in %s\n", qPrintable(registry.folder()));
        for (const QString& line : done)
            std::printf("  %s\n", qPrintable(line));
        if (done.isEmpty())
            std::printf("  nothing to do: every value is set\n");
    });
    return ok ? 0 : 1;
}
