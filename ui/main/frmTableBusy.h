#pragma once
// The main window's busy state, shared by the files that hold its commands.

#include <QApplication>
#include <QProgressBar>
#include <QStatusBar>

#include "ui/main/frmTable.h"

namespace ui {

// The busy cursor and the status bar's progress bar while something runs that may take
// longer than a moment; nested uses show it once.
class frmTable::Busy {
public:
    explicit Busy(frmTable& form) : form_(form)
    {
        if (form_.busyDepth_++ > 0)
            return;
        QApplication::setOverrideCursor(Qt::WaitCursor);
        form_.busyBar_->show();
        // Painted now: the work that follows keeps the event loop from doing it.
        form_.statusBar()->repaint();
    }
    ~Busy()
    {
        if (--form_.busyDepth_ > 0)
            return;
        form_.busyBar_->hide();
        QApplication::restoreOverrideCursor();
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

private:
    frmTable& form_;
};

}  // namespace ui
