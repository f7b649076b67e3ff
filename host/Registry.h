#pragma once
// The host's registry object: string values under two roots, HKEY_CURRENT_USER and
// HKEY_LOCAL_MACHINE, each kept in an INI file (IniDocument) in one folder: the one
// SHEETWRIGHT_REGISTRY names, else $XDG_CONFIG_HOME/Vorbex, else ~/.config/Vorbex.
//
// Reading never fails: a missing folder, file or value, or a file that cannot be read,
// reads as the default. Writing replaces the file atomically (a temporary file renamed
// over it), so a crash leaves the old settings or the new ones; a write that cannot be
// done is run-time error 75 and leaves the file as it was. Files changed by another
// process (the setup program, a second instance) are read again before the next access.

#include <cstdint>
#include <QString>

#include "host/IniDocument.h"

namespace host {

enum class RegistryRoot { CurrentUser, LocalMachine };
inline constexpr RegistryRoot HKEY_CURRENT_USER = RegistryRoot::CurrentUser;
inline constexpr RegistryRoot HKEY_LOCAL_MACHINE = RegistryRoot::LocalMachine;

class Registry {
public:
    explicit Registry(const QString& folder);

    // The folder the environment chooses.
    static QString defaultFolder();

    QString folder() const { return folder_; }
    QString filePath(RegistryRoot root) const;

    // An empty value name is the key's default value.
    QString read(RegistryRoot root, const QString& keyPath, const QString& valueName,
                 const QString& defaultValue = QString());
    void write(RegistryRoot root, const QString& keyPath, const QString& valueName, const QString& value);

private:
    struct FileStamp {
        bool exists = false;
        int64_t size = 0;
        int64_t mtimeNs = 0;
        uint64_t inode = 0;
        bool operator==(const FileStamp&) const = default;
    };
    struct RootFile {
        IniDocument document;
        FileStamp stamp;
        bool loaded = false;
        bool readable = true;  // false: the file exists but could not be taken in
    };

    RootFile& refreshed(RegistryRoot root);
    static FileStamp stampOf(const QString& path);

    QString folder_;
    RootFile files_[2];
};

}  // namespace host
