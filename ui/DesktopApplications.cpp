#include "ui/DesktopApplications.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace ui {

namespace {

// "a.desktop;b.desktop;" as a list.
QStringList entriesOf(const QString& value)
{
    QStringList entries;
    for (const QString& entry : value.split(u';', Qt::SkipEmptyParts))
        entries << entry.trimmed();
    return entries;
}

// The groups of a key file, read without QSettings' own escapes getting in the way of
// the MIME types' slashes.
QMap<QString, QMap<QString, QString>> readKeyFile(const QString& path)
{
    QMap<QString, QMap<QString, QString>> groups;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return groups;
    QString group;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            group = line.mid(1, line.size() - 2);
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals > 0)
            groups[group][line.left(equals).trimmed()] = line.mid(equals + 1).trimmed();
    }
    return groups;
}

QString findDesktopFile(const QString& name, const QStringList& applicationFolders)
{
    for (const QString& folder : applicationFolders) {
        const QString path = QDir(folder).filePath(name);
        if (QFileInfo::exists(path))
            return path;
    }
    return QString();
}

}  // namespace

QStringList desktopApplicationsFor(const QStringList& mimeTypes)
{
    const QStringList applicationFolders = QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
    QStringList listFiles;
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation))
        listFiles << QDir(folder).filePath(QStringLiteral("mimeapps.list"));
    for (const QString& folder : applicationFolders)
        listFiles << QDir(folder).filePath(QStringLiteral("mimeapps.list"));

    QStringList found;
    QStringList removed;
    auto take = [&](const QString& entries) {
        for (const QString& entry : entriesOf(entries))
            if (!found.contains(entry) && !removed.contains(entry) && !findDesktopFile(entry, applicationFolders).isEmpty())
                found << entry;
    };
    for (const QString& listFile : listFiles) {
        const auto groups = readKeyFile(listFile);
        for (const QString& type : mimeTypes) {
            removed << entriesOf(groups.value(QStringLiteral("Removed Associations")).value(type));
            take(groups.value(QStringLiteral("Default Applications")).value(type));
            take(groups.value(QStringLiteral("Added Associations")).value(type));
        }
    }
    for (const QString& folder : applicationFolders) {
        const auto cache = readKeyFile(QDir(folder).filePath(QStringLiteral("mimeinfo.cache")));
        for (const QString& type : mimeTypes)
            take(cache.value(QStringLiteral("MIME Cache")).value(type));
    }
    return found;
}

}  // namespace ui
