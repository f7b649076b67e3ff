#pragma once
// One table engine on its own, outside the program's module globals, for fuzzers and
// benchmarks: settings read from the folder SHEETWRIGHT_REGISTRY names, no login, no
// captions loaded, every box answered by the scripted fake.

#include "engine/XDataBase.h"
#include "host/Registry.h"
#include "lang/LangApp.h"
#include "ScriptedUiServices.h"

struct StandaloneEngine {
    host::Registry registry{host::Registry::defaultFolder()};
    bool useLogin = false;
    bool accepted = false;
    QString user;
    QString password;
    lang::LangApp captions;
    rt::ScriptedUiServices fake;
    rt::UiServicesScope use{fake};
    engine::XDataBase db{registry, engine::LoginGlobals{useLogin, user, password, accepted}, captions};
};
