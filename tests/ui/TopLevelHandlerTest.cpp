#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "host/VbError.h"
#include "ui/ScriptedUiServices.h"
#include "ui/TopLevelHandler.h"

using namespace ui;

TEST(TopLevelHandler, RunTimeErrorTextShowsNumberAndDescription)
{
    EXPECT_EQ(runTimeErrorText(host::vbError(6)), "Run-time error '6':\n\nOverflow");
    EXPECT_EQ(runTimeErrorText(jet::RuntimeError(-2147467259, "Unrecognized database format 'x.mdb'.")),
              "Run-time error '-2147467259 (80004005)':\n\nUnrecognized database format 'x.mdb'.");
    EXPECT_EQ(runTimeErrorText(jet::RuntimeError(75, "Путь")), QString::fromUtf8("Run-time error '75':\n\nПуть"));
}

TEST(TopLevelHandler, AnEscapedErrorIsShownInTheCriticalBoxAndTheProgramGoesOn)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    bool ranAfter = false;
    EXPECT_FALSE(runHandled([] { throw host::vbError(host::vberr::InputPastEndOfFile); }));
    EXPECT_TRUE(runHandled([&] { ranAfter = true; }));
    EXPECT_TRUE(ranAfter);
    ASSERT_EQ(fake.boxes().size(), 1u);
    EXPECT_EQ(fake.boxes()[0].prompt, "Run-time error '62':\n\nInput past end of file");
    EXPECT_EQ(fake.boxes()[0].style, vbCritical);
    EXPECT_EQ(fake.boxes()[0].title, "Sheetwright");
}

TEST(TopLevelHandler, OtherExceptionsAreShownAsRunTimeErrorsToo)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    EXPECT_FALSE(runHandled([] { throw std::bad_alloc(); }));
    EXPECT_FALSE(runHandled([] { throw std::logic_error("broken invariant"); }));
    ASSERT_EQ(fake.boxes().size(), 2u);
    EXPECT_EQ(fake.boxes()[0].prompt, "Run-time error '7':\n\nOut of memory");
    EXPECT_EQ(fake.boxes()[1].prompt, "Run-time error '51':\n\nInternal error: broken invariant");
}

TEST(TopLevelHandler, WithoutAnyUiTheErrorStillEndsTheHandlerCleanly)
{
    UiServices* saved = UiServices::installed();
    UiServices::install(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(runHandled([] { throw host::vbError(5); }));
    const std::string printed = testing::internal::GetCapturedStderr();
    UiServices::install(saved);
    EXPECT_NE(printed.find("Run-time error '5'"), std::string::npos);
}
