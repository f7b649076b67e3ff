#include "ui/SheetwrightApplication.h"

#include <QIcon>

#include "rt/TopLevelHandler.h"
#include "rt/UiServices.h"

namespace ui {

SheetwrightApplication::SheetwrightApplication(int& argc, char** argv) : QApplication(argc, argv)
{
    // No display name: Qt would append it to every window caption, and the captions are
    // the language table's.
    setApplicationName(rt::programTitle());
    setWindowIcon(QIcon(QStringLiteral(":/icons/sheetwright.svg")));
}

bool SheetwrightApplication::notify(QObject* receiver, QEvent* event)
{
    bool handled = false;
    rt::runHandled([&] { handled = QApplication::notify(receiver, event); });
    return handled;
}

}  // namespace ui
