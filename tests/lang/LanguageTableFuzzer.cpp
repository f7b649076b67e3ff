// libFuzzer entry for the language-table loader (built with -DSHEETWRIGHT_FUZZ=ON).

#include <cstddef>
#include <cstdint>

#include "LanguageTableFuzzTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    loadUntrustedLanguageTable(QByteArrayView(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    return 0;
}
