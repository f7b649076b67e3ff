#include "ui/HelpBrowser.h"

#include <QAction>
#include <QDesktopServices>
#include <QStyle>
#include <QTextBrowser>
#include <QToolBar>

namespace ui {

HelpBrowser::HelpBrowser(QWidget* owner) : QMainWindow(owner, Qt::Window)
{
    setObjectName(QStringLiteral("HelpBrowser"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    pages_ = new QTextBrowser(this);
    pages_->setOpenLinks(false);
    setCentralWidget(pages_);

    QToolBar* bar = addToolBar(QStringLiteral("Help"));
    bar->setMovable(false);
    QAction* back = bar->addAction(style()->standardIcon(QStyle::SP_ArrowBack), QString(), pages_, &QTextBrowser::backward);
    QAction* forward = bar->addAction(style()->standardIcon(QStyle::SP_ArrowForward), QString(), pages_, &QTextBrowser::forward);
    QAction* home = bar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), QString(), this, [this] { pages_->setSource(contents_); });
    back->setShortcut(QKeySequence::Back);
    forward->setShortcut(QKeySequence::Forward);
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(pages_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(pages_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(pages_, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) {
        if (link.isLocalFile() || link.isRelative())
            pages_->setSource(pages_->source().resolved(link));
        else
            QDesktopServices::openUrl(link);
    });
    connect(pages_, &QTextBrowser::sourceChanged, this, [this, home] {
        setWindowTitle(pages_->documentTitle());
        home->setToolTip(windowTitle());
    });
    resize(720, 640);
}

void HelpBrowser::showPage(const QString& file)
{
    contents_ = QUrl::fromLocalFile(file);
    pages_->setSource(contents_);
    // The first time, over the middle of the window that asked for help.
    if (!isVisible() && parentWidget() && !testAttribute(Qt::WA_Moved)) {
        const QRect owner = parentWidget()->window()->frameGeometry();
        move(owner.center() - QPoint(width() / 2, height() / 2));
    }
    show();
    raise();
    activateWindow();
}

QUrl HelpBrowser::currentPage() const
{
    return pages_->source();
}

}  // namespace ui
