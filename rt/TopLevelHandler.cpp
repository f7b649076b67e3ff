#include "rt/TopLevelHandler.h"

#include <cstdio>

#include "rt/ErrorTrap.h"
#include "rt/UiServices.h"
#include "rt/VbError.h"

namespace rt {

QString runTimeErrorText(const jet::RuntimeError& error)
{
    QString number = QString::number(error.number());
    if (error.number() < 0)
        number += QStringLiteral(" (%1)").arg(static_cast<uint32_t>(error.number()), 8, 16, QChar(u'0')).toUpper();
    return QStringLiteral("Run-time error '%1':\n\n%2").arg(number, descriptionOf(error));
}

void showRunTimeError(UiServices& services, const jet::RuntimeError& error)
{
    services.messageBox(runTimeErrorText(error), vbOKOnly | vbCritical, programTitle());
}

namespace {

void report(const jet::RuntimeError& error)
{
    try {
        showRunTimeError(UiServices::current(), error);
    } catch (...) {
        // No way to ask the user (no UI installed, or the box itself failed): the error
        // must still not pass unseen.
        std::fprintf(stderr, "%s\n", runTimeErrorText(error).toLocal8Bit().constData());
    }
}

}  // namespace

bool runHandled(const std::function<void()>& handler)
{
    if (const auto error = trapError(handler)) {
        report(*error);
        return false;
    }
    return true;
}

}  // namespace rt
