#include "rt/ErrorTrap.h"

#include <new>

#include "rt/VbError.h"

namespace rt {

jet::RuntimeError asRunTimeError(const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const jet::RuntimeError& e) {
        return e;
    } catch (const std::bad_alloc&) {
        return vbError(vberr::OutOfMemory);
    } catch (const std::exception& e) {
        return vbError(vberr::InternalError, QStringLiteral("Internal error: %1").arg(QString::fromLocal8Bit(e.what())));
    } catch (...) {
        return vbError(vberr::InternalError);
    }
}

std::optional<jet::RuntimeError> trapError(const std::function<void()>& code)
{
    try {
        code();
    } catch (...) {
        return asRunTimeError(std::current_exception());
    }
    return std::nullopt;
}

void resumeNext(std::initializer_list<std::function<void()>> statements)
{
    for (const auto& statement : statements)
        trapError(statement);
}

}  // namespace rt
