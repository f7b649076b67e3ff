// What escapes a piece of the program, by a direct call or from an event handler, is
// shown in the run-time error box and the program goes on.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include <QCoreApplication>
#include <QEvent>

#include "../support/ShownBoxes.h"
#include "../support/TestSupport.h"

#include "rt/TopLevelHandler.h"
#include "rt/VbError.h"

using namespace rt;

namespace {

class FailingReceiver : public QObject {
public:
    bool event(QEvent* e) override
    {
        if (e->type() == QEvent::User)
            throw rt::vbError(rt::vberr::SubscriptOutOfRange);
        ++handled;
        return true;
    }
    int handled = 0;
};

}  // namespace

TEST(TopLevelHandler, AnEscapedErrorIsShownInTheRunTimeErrorBoxAndTheProgramGoesOn)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    EXPECT_FALSE(runHandled([] { throw rt::vbError(rt::vberr::InputPastEndOfFile); }));
    EXPECT_FALSE(runHandled([] { throw jet::RuntimeError(-2147467259, "Unrecognized database format 'x.mdb'."); }));
    EXPECT_FALSE(runHandled([] { throw jet::RuntimeError(75, "Путь"); }));
    // Whatever else escapes counts as a run-time error too.
    EXPECT_FALSE(runHandled([] { throw std::bad_alloc(); }));
    EXPECT_FALSE(runHandled([] { throw std::logic_error("broken invariant"); }));
    EXPECT_FALSE(runHandled([] { throw 42; }));
    bool ranAfter = false;
    EXPECT_TRUE(runHandled([&] { ranAfter = true; }) && ranAfter);
    EXPECT_EQ(shownBoxes(fake), QStringList({"Sheetwright|16|Run-time error '62':\n\nInput past end of file",
                                             "Sheetwright|16|Run-time error '-2147467259 (80004005)':\n\nUnrecognized database format 'x.mdb'.",
                                             QString::fromUtf8("Sheetwright|16|Run-time error '75':\n\nПуть"),
                                             "Sheetwright|16|Run-time error '7':\n\nOut of memory",
                                             "Sheetwright|16|Run-time error '51':\n\nInternal error: broken invariant",
                                             "Sheetwright|16|Run-time error '51':\n\nInternal error"}));
    // Without any UI the box goes to standard error instead.
    UiServices::install(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(runHandled([] { throw rt::vbError(5); }));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Run-time error '5'"), std::string::npos);
}

TEST(TopLevelHandler, AnErrorEscapingAnEventHandlerIsShownAndTheLoopGoesOn)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    FailingReceiver receiver;
    QCoreApplication::postEvent(&receiver, new QEvent(QEvent::User));
    QCoreApplication::postEvent(&receiver, new QEvent(QEvent::Type(QEvent::User + 1)));
    QCoreApplication::processEvents();
    EXPECT_EQ(receiver.handled, 1);
    EXPECT_EQ(shownBoxes(fake), QStringList{"Sheetwright|16|Run-time error '9':\n\nSubscript out of range"});
}
