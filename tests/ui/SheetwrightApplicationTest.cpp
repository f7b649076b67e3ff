#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QTimer>

#include "host/VbError.h"
#include "ui/ScriptedUiServices.h"

using namespace ui;

namespace {

class FailingReceiver : public QObject {
public:
    int handled = 0;
    bool event(QEvent* e) override
    {
        if (e->type() == QEvent::User)
            throw host::vbError(host::vberr::SubscriptOutOfRange);
        if (e->type() == QEvent::Type(QEvent::User + 1)) {
            ++handled;
            return true;
        }
        return QObject::event(e);
    }
};

}  // namespace

TEST(SheetwrightApplication, AnErrorEscapingAnEventHandlerIsShownAndTheLoopGoesOn)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    FailingReceiver receiver;
    QCoreApplication::postEvent(&receiver, new QEvent(QEvent::User));
    QCoreApplication::postEvent(&receiver, new QEvent(QEvent::Type(QEvent::User + 1)));
    QCoreApplication::processEvents();
    EXPECT_EQ(receiver.handled, 1);
    ASSERT_EQ(fake.boxes().size(), 1u);
    EXPECT_EQ(fake.boxes()[0].prompt, "Run-time error '9':\n\nSubscript out of range");
    EXPECT_EQ(fake.boxes()[0].style, vbCritical);
}

TEST(SheetwrightApplication, ErrorsOfTimerSlotsReachTheTopLevelHandler)
{
    ScriptedUiServices fake;
    UiServicesScope use(fake);
    bool later = false;
    QTimer::singleShot(0, [] { throw host::vbError(host::vberr::Overflow); });
    QTimer::singleShot(1, [&] { later = true; });
    QElapsedTimer waited;
    waited.start();
    while (!later && waited.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_TRUE(later);
    ASSERT_EQ(fake.boxes().size(), 1u);
    EXPECT_EQ(fake.boxes()[0].prompt, "Run-time error '6':\n\nOverflow");
}
