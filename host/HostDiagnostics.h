#pragma once
// The host function library's tracing and error interfaces, which the string helpers
// hand their trace texts and their errors to. The host suite's library is not part of
// this program: until one is installed, traces go to the log category "sheetwright.host"
// at debug level (off unless QT_LOGGING_RULES turns it on) and errors at warning level.
// The statistics library installs its own implementation with install().

#include <cstdint>
#include <QString>

namespace host {

class HostDiagnostics {
public:
    virtual ~HostDiagnostics() = default;
    virtual void trace(const QString& text) = 0;
    virtual void reportError(int32_t number, const QString& description, const QString& procedure,
                             const QString& scope, const QString& component) = 0;

    // The implementation in use; never null.
    static HostDiagnostics& current();
    // Installs an implementation (not owned) or, with nullptr, the logging one again.
    static void install(HostDiagnostics* diagnostics);
};

}  // namespace host
