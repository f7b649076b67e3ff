#pragma once
// The two ways a routine of the program meets a run-time error besides letting it pass:
//  - an armed handler ("On Error GoTo"): trapError runs the code and hands back the
//    error that ended it, for the routine to answer (a result, a message box);
//  - errors ignored statement by statement ("On Error Resume Next"): resumeNext runs
//    each statement in turn, and an error ends only the statement that raised it.
// Whatever the code throws counts as a run-time error, as it would in the run time: a
// failed allocation is error 7 (Out of memory), any other exception error 51.

#include <exception>
#include <functional>
#include <initializer_list>
#include <optional>

#include "jet/RuntimeError.h"

namespace rt {

// The run-time error an exception stands for.
jet::RuntimeError asRunTimeError(const std::exception_ptr& error);

// Runs the code; returns the run-time error that ended it, or nothing when it ran through.
std::optional<jet::RuntimeError> trapError(const std::function<void()>& code);

void resumeNext(std::initializer_list<std::function<void()>> statements);

}  // namespace rt
