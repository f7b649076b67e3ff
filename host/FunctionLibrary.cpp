#include "host/FunctionLibrary.h"

namespace host {

FunctionLibrary::FunctionLibrary(QObject* parent) : QObject(parent) {}

void FunctionLibrary::Initialize()
{
    initialized_ = true;
}

void FunctionLibrary::Release()
{
    initialized_ = false;
}

}  // namespace host
