#pragma once
// The run-time errors of the program's own layers, numbered as the VB run-time numbers
// them, so that the run-time error box shows what a user of the host suite knows.
// The numbers the engine already names (overflow, subscript out of range...) come from
// jet::err; the ones only the layers above the engine raise are added here.

#include <cstdint>
#include <QString>

#include "jet/RuntimeError.h"

namespace rt {

namespace vberr {
inline constexpr int32_t InvalidProcedureCall = 5;
inline constexpr int32_t Overflow = jet::err::Overflow;
inline constexpr int32_t OutOfMemory = 7;
inline constexpr int32_t SubscriptOutOfRange = jet::err::SubscriptOutOfRange;
inline constexpr int32_t TypeMismatch = jet::err::TypeMismatchVb;
inline constexpr int32_t InternalError = 51;
inline constexpr int32_t BadFileNameOrNumber = 52;
inline constexpr int32_t FileNotFound = 53;
inline constexpr int32_t BadFileMode = 54;
inline constexpr int32_t FileAlreadyOpen = 55;
inline constexpr int32_t DiskFull = 61;
inline constexpr int32_t InputPastEndOfFile = 62;
inline constexpr int32_t TooManyFiles = 67;
inline constexpr int32_t PathFileAccessError = 75;
inline constexpr int32_t PathNotFound = 76;
inline constexpr int32_t ObjectNotSet = 91;
inline constexpr int32_t InvalidUseOfNull = jet::err::InvalidUseOfNull;
inline constexpr int32_t DuplicateKey = 457;
}  // namespace vberr

// The run-time's own wording for a number ("Overflow", "Input past end of file"); an
// unknown number gets "Application-defined or object-defined error" as in VB.
QString standardDescription(int32_t number);

// An error with the run-time's own wording.
jet::RuntimeError vbError(int32_t number);

// An error with the run-time's number and a description that says more (a path, a cause).
jet::RuntimeError vbError(int32_t number, const QString& description);

// The description of an error as QString (the engine keeps UTF-8).
QString descriptionOf(const jet::RuntimeError& error);

}  // namespace rt
