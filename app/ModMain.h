#pragma once
// The main module: the program's entry procedure Main, the module globals every other
// part reads, and LoadLanguageTable. Objects held in globals are created on first use and
// live until the program ends; resetModuleGlobals() puts everything back to the state of
// a fresh start (tests use it).

#include <cstdint>
#include <QString>

namespace engine {
class XDataBase;
}
namespace host {
class Registry;
}
namespace lang {
class LangApp;
}

namespace app {

// Settings read by Main (HKEY_CURRENT_USER) and changed by the options dialogs.
extern QString gTableSeparator;  // one character: the text-table separator (NUL when unset)
extern QString gMainSeparator;   // one character: the same setting as the main window reads it
extern int32_t gTypeNum;         // the number type of the number-type dialog
extern bool gUseLogin;           // ask for a user name and password when opening a database
extern float gWinX;              // main window width in twips
extern float gWinY;              // main window height in twips

// Results the dialogs hand back to the main window.
extern QString gLoginUser;
extern QString gLoginPassword;
extern bool gLoginAccepted;
extern bool gRenameField;
extern bool gFieldAdded;
extern QString gLastResult;
// The column the main window's grid has current, for the add-column dialog's rename mode.
extern int32_t gSelectedColumn;

// The picture command's hand-over to the graph digitizer: the picture chosen, the table
// the digitizer wrote, and its answer (ready, possibly cancelled).
extern QString gPicturePath;
extern QString gTempTablePath;
extern bool gTableReady;
extern bool gTableCancelled;

// The registry object, over the folder the environment names when first used.
host::Registry& gRegistry();
// The loaded captions.
lang::LangApp& gLang();
// The one table engine, over gRegistry() and the login globals above.
engine::XDataBase& gDataBase();

void resetModuleGlobals();

// Loads the language table of that name from the language folder into gLang(); messages
// go through rt::UiServices::current(). Always returns false (see LanguageTableLoader).
bool LoadLanguageTable(const QString& fileName);

// The program's start: reads the settings into the globals, loads the language table and
// asks the UI services to show the main window, "frmTable" (the executable, the only part
// that knows the forms, has made it known to them). An error while reading the settings is
// raised to the caller; an error of the language table is shown in the run-time error box
// and start-up goes on, so a broken language file never keeps the program from starting.
void Main();

}  // namespace app
