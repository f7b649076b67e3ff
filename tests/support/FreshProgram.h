#pragma once
// The program as it is right after start, for tests above the host layer: module globals
// made afresh, the registry in a private folder (SHEETWRIGHT_REGISTRY points there), and
// the scripted UI services answering every box. Everything is put back when it ends.

#include <optional>
#include <QDir>
#include <QTemporaryDir>

#include "ScriptedUiServices.h"
#include "TestSupport.h"
#include "app/ModMain.h"

class FreshProgram {
public:
    FreshProgram()
    {
        QDir(dir.path()).mkpath("registry");
        qputenv("SHEETWRIGHT_REGISTRY", QFile::encodeName(path("registry")));
        app::resetModuleGlobals();
    }
    ~FreshProgram()
    {
        app::resetModuleGlobals();
        savedRegistry ? qputenv("SHEETWRIGHT_REGISTRY", *savedRegistry) : qunsetenv("SHEETWRIGHT_REGISTRY");
    }

    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }

    const std::optional<QByteArray> savedRegistry =
        qEnvironmentVariableIsSet("SHEETWRIGHT_REGISTRY") ? std::optional(qgetenv("SHEETWRIGHT_REGISTRY")) : std::nullopt;
    QTemporaryDir dir;
    rt::ScriptedUiServices fake;
    rt::UiServicesScope use{fake};
};
