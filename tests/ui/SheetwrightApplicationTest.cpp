#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>

#include "../support/TestSupport.h"

#include "host/VbError.h"
#include "ui/ScriptedUiServices.h"

namespace {

class FailingReceiver : public QObject {
public:
    bool event(QEvent* e) override
    {
        if (e->type() == QEvent::User)
            throw host::vbError(host::vberr::SubscriptOutOfRange);
        ++handled;
        return true;
    }
    int handled = 0;
};

}  // namespace

TEST(SheetwrightApplication, AnErrorEscapingAnEventHandlerIsShownAndTheLoopGoesOn)
{
    ui::ScriptedUiServices fake;
    ui::UiServicesScope use(fake);
    FailingReceiver receiver;
    QCoreApplication::postEvent(&receiver, new QEvent(QEvent::User));
    QCoreApplication::postEvent(&receiver, new QEvent(QEvent::Type(QEvent::User + 1)));
    QCoreApplication::processEvents();
    EXPECT_EQ(receiver.handled, 1);
    ASSERT_EQ(fake.boxes().size(), 1u);
    EXPECT_EQ(QString::number(fake.boxes()[0].style) + u'|' + fake.boxes()[0].prompt,
              "16|Run-time error '9':\n\nSubscript out of range");
}
