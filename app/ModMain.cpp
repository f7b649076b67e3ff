#include "app/ModMain.h"

#include "engine/XDataBase.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "lang/LangApp.h"
#include "lang/LanguageTableLoader.h"
#include "rt/CreatedOnFirstUse.h"
#include "rt/TopLevelHandler.h"
#include "rt/UiServices.h"
#include "rt/VbConvert.h"

namespace app {

QString gTableSeparator;
QString gMainSeparator;
int32_t gTypeNum = 0;
bool gUseLogin = false;
float gWinX = 0;
float gWinY = 0;
QString gLoginUser;
QString gLoginPassword;
bool gLoginAccepted = false;
bool gRenameField = false;
bool gFieldAdded = false;
QString gLastResult;
int32_t gSelectedColumn = 0;
QString gPicturePath;
QString gTempTablePath;
bool gTableReady = false;
bool gTableCancelled = false;

namespace {

// The registry needs its folder at creation, so it cannot use CreatedOnFirstUse's
// default construction.
std::unique_ptr<host::Registry> gRegistryObject;
rt::CreatedOnFirstUse<lang::LangApp> gLangObject;
// Made with the registry and the login globals it reads and writes.
std::unique_ptr<engine::XDataBase> gDataBaseObject;

}  // namespace

host::Registry& gRegistry()
{
    if (!gRegistryObject)
        gRegistryObject = std::make_unique<host::Registry>(host::Registry::defaultFolder());
    return *gRegistryObject;
}

lang::LangApp& gLang()
{
    return gLangObject.get();
}

engine::XDataBase& gDataBase()
{
    if (!gDataBaseObject)
        gDataBaseObject = std::make_unique<engine::XDataBase>(
            gRegistry(), engine::LoginGlobals{gUseLogin, gLoginUser, gLoginPassword, gLoginAccepted}, gLang());
    return *gDataBaseObject;
}

void resetModuleGlobals()
{
    gTableSeparator.clear();
    gMainSeparator.clear();
    gTypeNum = 0;
    gUseLogin = false;
    gWinX = 0;
    gWinY = 0;
    gLoginUser.clear();
    gLoginPassword.clear();
    gLoginAccepted = false;
    gRenameField = false;
    gFieldAdded = false;
    gLastResult.clear();
    gSelectedColumn = 0;
    gPicturePath.clear();
    gTempTablePath.clear();
    gTableReady = false;
    gTableCancelled = false;
    gDataBaseObject.reset();
    gRegistryObject.reset();
    gLangObject.reset();
}

bool LoadLanguageTable(const QString& fileName)
{
    return lang::LanguageTableLoader(gLang(), gRegistry(), rt::UiServices::current()).load(fileName);
}

void Main()
{
    using host::HKEY_CURRENT_USER;
    namespace keys = host::keys;
    host::Registry& registry = gRegistry();

    const QString languageFile = registry.read(HKEY_CURRENT_USER, keys::Languages, keys::LanguageFile);
    // A missing value gives code 0, so the separator is then the NUL character.
    gTableSeparator = rt::Chr(rt::CLng(rt::Val(registry.read(HKEY_CURRENT_USER, keys::Pro, keys::TableSeparator))));
    gTypeNum = rt::CLng(rt::Val(registry.read(HKEY_CURRENT_USER, keys::Pro, keys::TypeNum)));
    gUseLogin = rt::CInt(rt::Val(registry.read(HKEY_CURRENT_USER, keys::Plugin, keys::UseLogin))) != 0;
    gWinX = rt::CSng(rt::Val(registry.read(HKEY_CURRENT_USER, keys::Plugin, keys::WinX)));
    gWinY = rt::CSng(rt::Val(registry.read(HKEY_CURRENT_USER, keys::Plugin, keys::WinY)));

    rt::runHandled([&] { LoadLanguageTable(languageFile); });

    rt::UiServices::current().showForm(QStringLiteral("frmTable"));
}

}  // namespace app
