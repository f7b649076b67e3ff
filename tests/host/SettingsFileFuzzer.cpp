// libFuzzer entry for the settings-file reader (built with -DSHEETWRIGHT_FUZZ=ON): any
// bytes parse, write back unchanged when nothing was set, and a value set in them
// reads back after a write and a second parse.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "host/IniDocument.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    host::IniDocument doc = host::IniDocument::parse(bytes);
    // Untouched files are rewritten byte for byte, up to a missing final line break.
    QByteArray expected = bytes;
    if (!expected.isEmpty() && !expected.endsWith('\n'))
        expected += '\n';
    const QByteArray again = doc.serialize();
    const bool mergedSections = again != expected;
    // Sections named twice are merged, which moves lines; everything else must match.
    if (mergedSections && host::IniDocument::parse(again).serialize() != again)
        std::abort();

    const QString text = QString::fromUtf8(bytes.left(64));
    doc.setValue(text, text, text);
    const host::IniDocument back = host::IniDocument::parse(doc.serialize());
    if (back.value(text, text) != doc.value(text, text))
        std::abort();
    return 0;
}
