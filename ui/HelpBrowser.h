#pragma once
// The program's own help window: the HTML help shown with back, forward and contents,
// for desktops without a viewer for the compiled help file. Links to other sites go to
// the desktop's browser.

#include <QMainWindow>
#include <QUrl>

class QTextBrowser;

namespace ui {

class HelpBrowser : public QMainWindow {
    Q_OBJECT
public:
    // A window of its own that stays above its owner and closes with it.
    explicit HelpBrowser(QWidget* owner = nullptr);

    // Shows the page and makes it the page the contents button returns to.
    void showPage(const QString& file);
    QUrl currentPage() const;
    QTextBrowser* pages() const { return pages_; }

private:
    QTextBrowser* pages_;
    QUrl contents_;
};

}  // namespace ui
