#pragma once
// What the host suite's installer leaves behind for the program, done by us: the default
// settings in both registry roots and the database folder. Only values that are missing
// (or empty, which the program reads the same way) are written: whatever a user set stays.
// When given a template maker it also creates the template database "empty97.mdb" in the
// database folder, unless one is there already.

#include <functional>
#include <QString>
#include <QStringList>

namespace host {

class Registry;

// The template maker the setup program uses: a new, empty Access 97 (Jet 3) database made by
// the program's own engine, in the program's ANSI code page.
void makeTemplateDatabase(const QString& path);

struct SetupDefaults {
    QString languageFolder;
    QString languageFile = QStringLiteral("English.lng");
    QString databaseFolder;
    QString tableSeparator = QStringLiteral("59");  // ";"
    QString typeNum = QStringLiteral("0");
    QString useLogin = QStringLiteral("0");
    // 800 x 600 pixels at 96 dpi: fits every screen the program is likely to meet.
    QString winX = QStringLiteral("12000");
    QString winY = QStringLiteral("9000");

    // The per-user data folder for databases: $XDG_DATA_HOME/Vorbex/Database, else
    // ~/.local/share/Vorbex/Database.
    static QString defaultDatabaseFolder();
};

class HostSetup {
public:
    // Creates a new, empty database file at the path given.
    using TemplateMaker = std::function<void(const QString& path)>;

    HostSetup(Registry& registry, SetupDefaults defaults, TemplateMaker makeTemplate = {});

    // Returns a line for each thing it did ("HKEY_CURRENT_USER\...\TypeNum = 0"). A value
    // that cannot be written or a folder that cannot be made is a run-time error.
    QStringList run();

private:
    Registry& registry_;
    SetupDefaults defaults_;
    TemplateMaker makeTemplate_;
};

}  // namespace host
