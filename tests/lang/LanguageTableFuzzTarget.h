#pragma once
// Loads untrusted bytes as a language table, the way the program would, and checks that
// the loader ends in one of its allowed ways: loaded, one message box, or a run-time
// error. Anything else (a crash, another exception, more than one box) aborts.

#include <cstdlib>

#include "../support/TestSupport.h"

#include "../support/ScriptedUiServices.h"
#include "host/Registry.h"
#include "lang/LangApp.h"
#include "lang/LanguageTableLoader.h"

inline void loadUntrustedLanguageTable(QByteArrayView bytes)
{
    lang::LangApp lang;
    rt::ScriptedUiServices fake;
    host::Registry unused(QStringLiteral("/nonexistent"));
    // The loader lets run-time errors through on purpose; the program shows them.
    runTimeErrorOf([&] { lang::LanguageTableLoader(lang, unused, fake).loadFrom(*readerOf(bytes.toByteArray()), "x"); });
    if (fake.boxes().size() > 1)
        std::abort();
    // Whatever was loaded must be readable.
    for (int32_t i = 0; i <= lang.Table().ToolBar().Count(); ++i)
        (void)lang.Table().ToolBar().Key(i);
    for (int32_t i = 1; i <= lang.Table().Menu().Count(); ++i)
        (void)lang.Table().Menu().Item(i);
}
