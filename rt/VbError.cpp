#include "rt/VbError.h"

namespace rt {

QString standardDescription(int32_t number)
{
    switch (number) {
    case vberr::InvalidProcedureCall: return QStringLiteral("Invalid procedure call or argument");
    case vberr::Overflow: return QStringLiteral("Overflow");
    case vberr::OutOfMemory: return QStringLiteral("Out of memory");
    case vberr::SubscriptOutOfRange: return QStringLiteral("Subscript out of range");
    case vberr::TypeMismatch: return QStringLiteral("Type mismatch");
    case vberr::InternalError: return QStringLiteral("Internal error");
    case vberr::BadFileNameOrNumber: return QStringLiteral("Bad file name or number");
    case vberr::FileNotFound: return QStringLiteral("File not found");
    case vberr::BadFileMode: return QStringLiteral("Bad file mode");
    case vberr::FileAlreadyOpen: return QStringLiteral("File already open");
    case vberr::DiskFull: return QStringLiteral("Disk full");
    case vberr::InputPastEndOfFile: return QStringLiteral("Input past end of file");
    case vberr::TooManyFiles: return QStringLiteral("Too many files");
    case vberr::PathFileAccessError: return QStringLiteral("Path/File access error");
    case vberr::PathNotFound: return QStringLiteral("Path not found");
    case vberr::ObjectNotSet: return QStringLiteral("Object variable or With block variable not set");
    case vberr::InvalidUseOfNull: return QStringLiteral("Invalid use of Null");
    case vberr::DuplicateKey: return QStringLiteral("This key is already associated with an element of this collection");
    default: return QStringLiteral("Application-defined or object-defined error");
    }
}

jet::RuntimeError vbError(int32_t number)
{
    return jet::RuntimeError(number, standardDescription(number).toStdString());
}

jet::RuntimeError vbError(int32_t number, const QString& description)
{
    return jet::RuntimeError(number, description.toStdString());
}

QString descriptionOf(const jet::RuntimeError& error)
{
    return QString::fromStdString(error.description());
}

}  // namespace rt
