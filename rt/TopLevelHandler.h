#pragma once
// The program's one top-level error handler. A run-time error that no handler of its own
// took ends here: the run-time error box (critical icon, number and description) is shown
// and the program goes on with the next event. Whoever calls runHandled decides what a
// failure means; start-up ends the program after the box, an event handler just returns.

#include <functional>
#include <QString>

#include "jet/RuntimeError.h"

namespace rt {

class UiServices;

// "Run-time error '6':" + blank line + description; HRESULT numbers also in hexadecimal,
// "Run-time error '-2147467259 (80004005)':".
QString runTimeErrorText(const jet::RuntimeError& error);

void showRunTimeError(UiServices& services, const jet::RuntimeError& error);

// Runs the handler; on an error that escapes it, shows the run-time error box through
// UiServices::current() and returns false. Errors other than run-time errors are shown
// too: a failed allocation as "Out of memory" (7), anything else as "Internal error" (51).
bool runHandled(const std::function<void()>& handler);

}  // namespace rt
