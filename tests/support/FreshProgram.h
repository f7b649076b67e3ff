#pragma once
// The program as it is right after start, for tests above the host layer: module globals
// made afresh, the registry in a private folder (SHEETWRIGHT_REGISTRY points there), and
// the scripted UI services answering every box. Everything is put back when it ends.

#include <QDir>
#include <QTemporaryDir>

#include "TestSupport.h"
#include "app/ModMain.h"
#include "ui/ScriptedUiServices.h"

class FreshProgram {
public:
    FreshProgram()
    {
        QDir(dir.path()).mkpath("registry");
        environment.set("SHEETWRIGHT_REGISTRY", path("registry"));
        app::resetModuleGlobals();
    }
    ~FreshProgram() { app::resetModuleGlobals(); }

    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }

    QTemporaryDir dir;
    EnvironmentScope environment;
    ui::ScriptedUiServices fake;
    ui::UiServicesScope use{fake};
};
