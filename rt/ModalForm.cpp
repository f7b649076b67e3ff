#include "rt/ModalForm.h"

#include <QHash>

#include "rt/VbError.h"

namespace rt {

namespace {

QHash<QString, ModalFormFactory>& factories()
{
    static QHash<QString, ModalFormFactory> registered;
    return registered;
}

}  // namespace

void registerModalForm(const QString& name, ModalFormFactory factory)
{
    factories().insert(name, std::move(factory));
}

std::unique_ptr<ModalForm> createModalForm(const QString& name)
{
    const auto found = factories().constFind(name);
    if (found == factories().constEnd())
        throw noFormNamed(name);
    return (*found)();
}

jet::RuntimeError noFormNamed(const QString& name)
{
    return vbError(vberr::InvalidProcedureCall, QStringLiteral("There is no form named '%1'.").arg(name));
}

}  // namespace rt
