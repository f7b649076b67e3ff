#include "LanguageTableFuzzTarget.h"

#include <cstdlib>

#include <QBuffer>

#include "host/Registry.h"
#include "jet/RuntimeError.h"
#include "host/TextLineReader.h"
#include "lang/LangApp.h"
#include "lang/LanguageTableLoader.h"
#include "ui/ScriptedUiServices.h"

void loadUntrustedLanguageTable(QByteArrayView bytes)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(bytes.toByteArray());
    buffer->open(QIODevice::ReadOnly);
    host::TextLineReader in(std::move(buffer));
    lang::LangApp lang;
    ui::ScriptedUiServices fake;
    host::Registry unused(QStringLiteral("/nonexistent"));
    try {
        lang::LanguageTableLoader(lang, unused, fake).loadFrom(in, QStringLiteral("fuzz\\input.lng"));
    } catch (const jet::RuntimeError&) {
        // The loader lets run-time errors through on purpose; the program shows them.
    }
    if (fake.boxes().size() > 1)
        std::abort();
    // Whatever was loaded must be readable.
    const lang::TableLangItem& table = lang.Table();
    for (int32_t i = 0; i <= table.ToolBar().Count(); ++i)
        (void)table.ToolBar().Key(i);
    for (int32_t i = 1; i <= table.Menu().Count(); ++i)
        (void)table.Menu().Item(i);
}
