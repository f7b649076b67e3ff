#pragma once
// The one run-time error type of the program. It carries what a VB program would find
// in Err.Number and Err.Description: VB's own numbers (6 overflow, 94 invalid use of
// Null, 3021 no current record) or the HRESULT numbers the database provider reports.
// Every layer above the engine throws and catches this type; nothing else is thrown
// across module boundaries on purpose.

#include <cstdint>
#include <stdexcept>
#include <string>

namespace jet {

class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int32_t number, const std::string& description)
        : std::runtime_error(description), number_(number) {}

    int32_t number() const noexcept { return number_; }
    std::string description() const { return what(); }

private:
    int32_t number_;
};

// Numbers the provider gives through ADO, and the VB run-time numbers the engine raises.
namespace err {
inline constexpr int32_t Unspecified = -2147467259;           // 0x80004005, also "unrecognised format"
inline constexpr int32_t NoSuchTable = -2147217865;           // 0x80040E37
inline constexpr int32_t WrongPassword = -2147217843;         // 0x80040E4D
inline constexpr int32_t SyntaxError = -2147217900;           // 0x80040E14
inline constexpr int32_t IntegrityViolation = -2147217873;    // 0x80040E2F, duplicate key and the like
inline constexpr int32_t TypeMismatch = -2147217913;          // 0x80040E07, data type mismatch in criteria
inline constexpr int32_t NoSuchColumn = -2147217904;          // 0x80040E10
inline constexpr int32_t ObjectExists = -2147217900;          // Jet reports "already exists" through the same number
inline constexpr int32_t MultipleStepErrors = -2147217887;     // 0x80040E21, a value that does not fit its field
inline constexpr int32_t ReadOnly = -2147217911;              // 0x80040E09, permission denied
inline constexpr int32_t NotAllowedNow = 3704;                // ADO: operation not allowed when the object is closed
inline constexpr int32_t NotAllowedOpen = 3705;               // ADO: operation not allowed when the object is open
inline constexpr int32_t ProviderNotFound = 3706;             // ADO: provider cannot be found
inline constexpr int32_t NoCurrentRecord = 3021;              // ADO: BOF or EOF is True
inline constexpr int32_t NotSupported = 3251;                 // ADO: operation not supported by the provider/cursor
inline constexpr int32_t ItemNotFound = 3265;                 // ADO: item not found in the collection
inline constexpr int32_t TypeMismatchVb = 13;                 // VB: type mismatch
inline constexpr int32_t Overflow = 6;                        // VB: overflow
inline constexpr int32_t SubscriptOutOfRange = 9;             // VB: subscript out of range
inline constexpr int32_t InvalidUseOfNull = 94;               // VB: invalid use of Null
}  // namespace err

}  // namespace jet
