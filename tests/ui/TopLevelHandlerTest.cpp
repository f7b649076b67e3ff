#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "../support/TestSupport.h"

#include "host/VbError.h"
#include "ui/ScriptedUiServices.h"
#include "ui/TopLevelHandler.h"

using namespace ui;

TEST(TopLevelHandler, AnEscapedErrorIsShownInTheRunTimeErrorBoxAndTheProgramGoesOn)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    EXPECT_FALSE(runHandled([] { throw host::vbError(host::vberr::InputPastEndOfFile); }));
    EXPECT_FALSE(runHandled([] { throw jet::RuntimeError(-2147467259, "Unrecognized database format 'x.mdb'."); }));
    EXPECT_FALSE(runHandled([] { throw jet::RuntimeError(75, "Путь"); }));
    // Whatever else escapes counts as a run-time error too.
    EXPECT_FALSE(runHandled([] { throw std::bad_alloc(); }));
    EXPECT_FALSE(runHandled([] { throw std::logic_error("broken invariant"); }));
    EXPECT_FALSE(runHandled([] { throw 42; }));
    bool ranAfter = false;
    EXPECT_TRUE(runHandled([&] { ranAfter = true; }));
    EXPECT_TRUE(ranAfter);
    QStringList shown;
    for (const RecordedBox& box : fake.boxes())
        shown << QString::number(box.style) + u'|' + box.title + u'|' + box.prompt;
    EXPECT_EQ(shown, QStringList({"16|Sheetwright|Run-time error '62':\n\nInput past end of file",
                                  "16|Sheetwright|Run-time error '-2147467259 (80004005)':\n\nUnrecognized database format 'x.mdb'.",
                                  QString::fromUtf8("16|Sheetwright|Run-time error '75':\n\nПуть"),
                                  "16|Sheetwright|Run-time error '7':\n\nOut of memory",
                                  "16|Sheetwright|Run-time error '51':\n\nInternal error: broken invariant",
                                  "16|Sheetwright|Run-time error '51':\n\nInternal error"}));
    // Without any UI the box goes to standard error instead.
    UiServices::install(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(runHandled([] { throw host::vbError(5); }));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Run-time error '5'"), std::string::npos);
}
