#include "host/Registry.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include "rt/VbError.h"

namespace host {

Registry::Registry(const QString& folder) : folder_(folder) {}

QString Registry::defaultFolder()
{
    const QString chosen = qEnvironmentVariable("SHEETWRIGHT_REGISTRY");
    if (!chosen.isEmpty())
        return chosen;
    const QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!config.isEmpty())
        return config + QStringLiteral("/Vorbex");
    return QDir::homePath() + QStringLiteral("/.config/Vorbex");
}

QString Registry::filePath(RegistryRoot root) const
{
    return folder_ + (root == RegistryRoot::CurrentUser ? QStringLiteral("/HKEY_CURRENT_USER.ini")
                                                        : QStringLiteral("/HKEY_LOCAL_MACHINE.ini"));
}

Registry::FileStamp Registry::stampOf(const QString& path)
{
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return {};
    return FileStamp{true, static_cast<int64_t>(st.st_size),
                     static_cast<int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec,
                     static_cast<uint64_t>(st.st_ino)};
}

Registry::RootFile& Registry::refreshed(RegistryRoot root)
{
    RootFile& file = files_[root == RegistryRoot::CurrentUser ? 0 : 1];
    const QString path = filePath(root);
    const FileStamp stamp = stampOf(path);
    if (file.loaded && stamp == file.stamp)
        return file;
    file = RootFile{};
    file.loaded = true;
    file.stamp = stamp;
    if (!stamp.exists)
        return file;
    QFile in(path);
    if (stamp.size > IniDocument::kMaxFileSize || !in.open(QIODevice::ReadOnly)) {
        file.readable = false;
        return file;
    }
    const QByteArray bytes = in.read(IniDocument::kMaxFileSize + 1);
    if (bytes.size() > IniDocument::kMaxFileSize || in.error() != QFileDevice::NoError) {
        file.readable = false;
        return file;
    }
    file.document = IniDocument::parse(bytes);
    return file;
}

QString Registry::read(RegistryRoot root, const QString& keyPath, const QString& valueName,
                       const QString& defaultValue)
{
    const RootFile& file = refreshed(root);
    return file.document.value(keyPath, valueName).value_or(defaultValue);
}

void Registry::write(RegistryRoot root, const QString& keyPath, const QString& valueName, const QString& value)
{
    const QString path = filePath(root);
    RootFile& file = refreshed(root);
    // Writing over a file we could not read would throw away whatever it holds.
    if (!file.readable)
        throw rt::vbError(rt::vberr::PathFileAccessError,
                          QStringLiteral("The settings file %1 cannot be read, so it is not written").arg(path));
    IniDocument updated = file.document;
    if (!updated.setValue(keyPath, valueName, value))
        return;
    if (!QDir().mkpath(folder_))
        throw rt::vbError(rt::vberr::PathFileAccessError,
                          QStringLiteral("The settings folder %1 cannot be created").arg(folder_));
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(updated.serialize()) < 0 || !out.commit())
        throw rt::vbError(rt::vberr::PathFileAccessError,
                          QStringLiteral("The settings file %1 cannot be written: %2").arg(path, out.errorString()));
    file.document = std::move(updated);
    file.stamp = stampOf(path);
}

}  // namespace host
