#include "host/HostDiagnostics.h"

#include <QLoggingCategory>

namespace host {

namespace {

Q_LOGGING_CATEGORY(lcHost, "sheetwright.host", QtInfoMsg)

class LoggingDiagnostics final : public HostDiagnostics {
public:
    void trace(const QString& text) override { qCDebug(lcHost).noquote() << text; }
    void reportError(int32_t number, const QString& description, const QString& procedure,
                     const QString& scope, const QString& component) override
    {
        qCWarning(lcHost).noquote() << QStringLiteral("Error %1 (%2) in %3 [%4, %5]")
                                           .arg(number)
                                           .arg(description, procedure, scope, component);
    }
};

LoggingDiagnostics gLogging;
HostDiagnostics* gInstalled = nullptr;

}  // namespace

HostDiagnostics& HostDiagnostics::current()
{
    return gInstalled ? *gInstalled : gLogging;
}

void HostDiagnostics::install(HostDiagnostics* diagnostics)
{
    gInstalled = diagnostics;
}

}  // namespace host
