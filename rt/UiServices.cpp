#include "rt/UiServices.h"

#include "rt/VbError.h"
#include "rt/ProgramVersion.h"

namespace rt {

namespace {
UiServices* gServices = nullptr;
}

MessageBoxStyle MessageBoxStyle::decode(int32_t style)
{
    MessageBoxStyle decoded;
    decoded.buttons = style & 7;
    if (decoded.buttons > vbRetryCancel)
        decoded.buttons = vbOKOnly;
    decoded.icon = style & 0x70;
    const int wanted = (style >> 8) & 3;
    decoded.defaultButton = wanted < decoded.answers().size() ? wanted : 0;
    return decoded;
}

QList<int32_t> MessageBoxStyle::answers() const
{
    switch (buttons) {
    case vbOKCancel: return {vbOK, vbCancel};
    case vbAbortRetryIgnore: return {vbAbort, vbRetry, vbIgnore};
    case vbYesNoCancel: return {vbYes, vbNo, vbCancel};
    case vbYesNo: return {vbYes, vbNo};
    case vbRetryCancel: return {vbRetry, vbCancel};
    default: return {vbOK};
    }
}

int32_t MessageBoxStyle::escapeAnswer() const
{
    switch (buttons) {
    case vbOKOnly: return vbOK;
    case vbOKCancel:
    case vbYesNoCancel:
    case vbRetryCancel: return vbCancel;
    default: return 0;
    }
}

UiServices& UiServices::current()
{
    if (gServices == nullptr)
        throw vbError(vberr::ObjectNotSet);
    return *gServices;
}

UiServices* UiServices::installed()
{
    return gServices;
}

void UiServices::install(UiServices* services)
{
    gServices = services;
}

QString programTitle()
{
    return QString::fromLatin1(version::title);
}

}  // namespace rt
