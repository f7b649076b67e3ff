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

#include "host/HostSetup.h"
#include "host/Registry.h"
#include "rt/TopLevelHandler.h"

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

    host::SetupDefaults defaults;
    defaults.languageFolder = options.isSet(languages) ? QDir(options.value(languages)).absolutePath() : findLanguageFolder();
    defaults.databaseFolder = host::SetupDefaults::defaultDatabaseFolder();

    host::Registry registry(host::Registry::defaultFolder());
    host::HostSetup setup(registry, defaults, host::makeTemplateDatabase);
    const bool ok = rt::runHandled([&] {
        const QStringList done = setup.run();
        std::printf("Settings in %s\n", qPrintable(registry.folder()));
        for (const QString& line : done)
            std::printf("  %s\n", qPrintable(line));
        if (done.isEmpty())
            std::printf("  nothing to do: every value is set\n");
    });
    return ok ? 0 : 1;
}
