#include "ui/HelpService.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include "ui/DesktopApplications.h"
#include "ui/HelpBrowser.h"

namespace ui {

HelpService::HelpService() : openWithDesktop_(&HelpService::openCompiledHelp) {}

HelpService::~HelpService()
{
    delete browser_.data();
}

bool HelpService::openCompiledHelp(const QString& file)
{
    // Without a viewer for it, the desktop would hand the file to whatever it finds (or
    // to nothing at all, and say so only on a terminal nobody reads).
    const QStringList compiledHelp = {QStringLiteral("application/vnd.ms-htmlhelp"), QStringLiteral("application/x-chm")};
    return !desktopApplicationsFor(compiledHelp).isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(file));
}

QString HelpService::htmlContentsPage() const
{
    const QDir folder = QFileInfo(helpFile_).absoluteDir();
    for (const QString& candidate : {QStringLiteral("help/index.html"), QStringLiteral("../share/sheetwright/help/index.html")}) {
        const QString page = QDir::cleanPath(folder.filePath(candidate));
        if (QFileInfo(page).isFile())
            return page;
    }
    return QString();
}

bool HelpService::ShowContents()
{
    if (QFileInfo(helpFile_).isFile() && openWithDesktop_(helpFile_))
        return true;
    const QString page = htmlContentsPage();
    if (page.isEmpty())
        return false;
    if (!browser_)
        browser_ = new HelpBrowser(owner_);
    browser_->showPage(page);
    return true;
}

}  // namespace ui
