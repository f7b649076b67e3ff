#pragma once
// The registry keys and value names the program reads and writes, spelled as they are
// stored: the capitalisation differs between keys ("Software", "SOFTWARE") and the value
// name "TableSepparator" is misspelt in the store itself, so both must stay as they are.

#include <QString>

namespace host::keys {

// Default value: the folder of the language tables (HKLM); "Default": the chosen file (HKCU).
inline const QString Languages = QStringLiteral("Software\\Vorbex\\Settings\\Languages");
inline const QString LanguageFile = QStringLiteral("Default");

// "TableSepparator": decimal code of the text-table separator; "TypeNum": the number type.
inline const QString Pro = QStringLiteral("Software\\Vorbex\\Pro");
inline const QString TableSeparator = QStringLiteral("TableSepparator");
inline const QString TypeNum = QStringLiteral("TypeNum");

// "UseLogin" ("1"/"0"), "WinX" and "WinY" (main window size in twips).
inline const QString Plugin = QStringLiteral("Software\\Vorbex\\Settings\\Plugins\\Sheetwright");
inline const QString UseLogin = QStringLiteral("UseLogin");
inline const QString WinX = QStringLiteral("WinX");
inline const QString WinY = QStringLiteral("WinY");

// Default value: the folder that holds the template database "empty97.mdb".
inline const QString Database = QStringLiteral("SOFTWARE\\Vorbex\\Settings\\Database");
inline const QString TemplateDatabase = QStringLiteral("empty97.mdb");

// "1", "2", ...: full paths of the recently used databases.
inline const QString UsesFiles = QStringLiteral("SOFTWARE\\Vorbex\\Settings\\Plugins\\Sheetwright\\UsesFiles");

}  // namespace host::keys
