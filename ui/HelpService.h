#pragma once
// The host's help service as the main window uses it: an owner window, a help file, and
// "show the contents". The compiled help file (shwright.chm) opens in the desktop's
// viewer for it. Where there is no such file or no viewer for it, the HTML pages it is
// compiled from open in the program's own help window: they lie beside it in help/ (as
// the build leaves them) or in share/sheetwright/help of the installation.

#include <functional>
#include <QPointer>
#include <QString>

#include "ui/HelpBrowser.h"

namespace ui {

class HelpService {
public:
    // Hands a file to the desktop; false when nothing took it.
    using DesktopOpener = std::function<bool(const QString& file)>;

    HelpService();
    ~HelpService();

    void setOwnerWindow(QWidget* owner) { owner_ = owner; }
    void setHelpFile(const QString& path) { helpFile_ = path; }
    QString helpFile() const { return helpFile_; }
    // Tests put their own desktop in place.
    void setDesktopOpener(DesktopOpener opener) { openWithDesktop_ = std::move(opener); }

    // Shows the help's contents; false when neither the help file nor the HTML help could
    // be opened (the caller tells the user).
    bool ShowContents();

    // The first page of the HTML help, or "" when there is none.
    QString htmlContentsPage() const;
    // The program's own help window, once it has been needed.
    HelpBrowser* browser() const { return browser_; }

    // The desktop's way: a viewer registered for compiled help files, started through
    // the desktop's opener.
    static bool openCompiledHelp(const QString& file);

private:
    QPointer<QWidget> owner_;
    QString helpFile_;
    DesktopOpener openWithDesktop_;
    QPointer<HelpBrowser> browser_;
};

}  // namespace ui
