#pragma once
// The application object: every event Qt delivers passes through notify(), so an error
// that escapes an event handler (a slot, a paint or resize handler) is caught there and
// handed to the top-level handler instead of ending the process.

#include <QApplication>

namespace ui {

class SheetwrightApplication : public QApplication {
public:
    SheetwrightApplication(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace ui
