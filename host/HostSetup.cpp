#include "host/HostSetup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/NewDatabase.h"
#include "rt/HostPath.h"
#include "rt/VbError.h"

namespace host {

void makeTemplateDatabase(const QString& path)
{
    jet::createDatabase(QFile::encodeName(path).toStdString(), jet::Version::Jet3);
}

QString SetupDefaults::defaultDatabaseFolder()
{
    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    return (data.isEmpty() ? QDir::homePath() + QStringLiteral("/.local/share") : data)
           + QStringLiteral("/Vorbex/Database");
}

HostSetup::HostSetup(Registry& registry, SetupDefaults defaults, TemplateMaker makeTemplate)
    : registry_(registry), defaults_(std::move(defaults)), makeTemplate_(std::move(makeTemplate))
{
}

QStringList HostSetup::run()
{
    struct Value {
        const QString& key;
        const QString& name;
        const QString& value;
    };
    const QString defaultValueName;
    const Value values[] = {
        {keys::Languages, defaultValueName, defaults_.languageFolder},
        {keys::Languages, keys::LanguageFile, defaults_.languageFile},
        {keys::Pro, keys::TableSeparator, defaults_.tableSeparator},
        {keys::Pro, keys::TypeNum, defaults_.typeNum},
        {keys::Plugin, keys::UseLogin, defaults_.useLogin},
        {keys::Plugin, keys::WinX, defaults_.winX},
        {keys::Plugin, keys::WinY, defaults_.winY},
        {keys::Database, defaultValueName, defaults_.databaseFolder},
    };

    QStringList done;
    for (const RegistryRoot root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        const QString rootName = root == HKEY_CURRENT_USER ? QStringLiteral("HKEY_CURRENT_USER")
                                                           : QStringLiteral("HKEY_LOCAL_MACHINE");
        for (const Value& v : values) {
            if (!registry_.read(root, v.key, v.name).isEmpty())
                continue;
            registry_.write(root, v.key, v.name, v.value);
            done << QStringLiteral("%1\\%2\\%3 = %4").arg(rootName, v.key, v.name.isEmpty() ? QStringLiteral("(default)") : v.name, v.value);
        }
    }

    // The folder the program will use is the one in the registry now, which may be a
    // user's own choice rather than our default.
    const QString databaseFolder = rt::localPath(registry_.read(HKEY_LOCAL_MACHINE, keys::Database, QString()));
    if (!QDir(databaseFolder).exists()) {
        if (!QDir().mkpath(databaseFolder))
            throw rt::vbError(rt::vberr::PathFileAccessError,
                              QStringLiteral("The database folder %1 cannot be created").arg(databaseFolder));
        done << QStringLiteral("created %1").arg(databaseFolder);
    }
    if (makeTemplate_) {
        const QString templatePath = databaseFolder + u'/' + keys::TemplateDatabase;
        if (!QFileInfo::exists(templatePath)) {
            makeTemplate_(templatePath);
            done << QStringLiteral("created %1").arg(templatePath);
        }
    }
    return done;
}

}  // namespace host
