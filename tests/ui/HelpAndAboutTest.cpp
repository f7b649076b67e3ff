// The about box's texts, and how help finds a viewer: the desktop's for the compiled
// help file, else the program's own window for the HTML pages.

#include <gtest/gtest.h>

#include <QDir>
#include <QLabel>
#include <QTemporaryDir>
#include <QTextBrowser>

#include "../support/TestSupport.h"

#include "ui/DesktopApplications.h"
#include "ui/HelpService.h"
#include "rt/ProgramVersion.h"
#include "ui/dialogs/frmAbout.h"

namespace {

TEST(FrmAbout, ShowsTitleVersionAndDescriptionFromTheProgramsVersionInformation)
{
    ui::frmAbout form;
    auto text = [&](const char* label) { return form.findChild<QLabel*>(label)->text(); };
    EXPECT_EQ(form.windowTitle(), QString::fromUtf8("О Sheetwright"));
    EXPECT_EQ(text("lblTitle"), "Sheetwright");
    EXPECT_EQ(text("lblVersion"), ui::frmAbout::versionText(rt::version::major, rt::version::minor, rt::version::revision));
    EXPECT_EQ(text("lblDescription"), QString::fromUtf8(rt::version::description));
    EXPECT_EQ(ui::frmAbout::versionText(2, 15, 0), "Version 2.15.0");
    EXPECT_EQ(ui::frmAbout::versionText(1, 0, 12), "Version 1.0.12");
}

// The desktop's folders, pointed at a temporary one for the time of a test.
class DesktopFolders {
public:
    DesktopFolders()
    {
        for (const char* name : kVariables) {
            saved_.append(qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
            qputenv(name, QFile::encodeName(dir.filePath(name)));
        }
        QDir(dir.path()).mkpath("XDG_DATA_HOME/applications");
        QDir(dir.path()).mkpath("XDG_CONFIG_HOME");
    }
    ~DesktopFolders()
    {
        for (int i = 0; i < kVariables.size(); ++i)
            saved_[i] ? qputenv(kVariables[i], *saved_[i]) : qunsetenv(kVariables[i]);
    }
    QString applications(const QString& file) const { return dir.filePath("XDG_DATA_HOME/applications/" + file); }
    QString config(const QString& file) const { return dir.filePath("XDG_CONFIG_HOME/" + file); }

    QTemporaryDir dir;

private:
    static inline const QList<const char*> kVariables = {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME",
                                                         "XDG_CONFIG_DIRS"};
    QList<std::optional<QByteArray>> saved_;
};

TEST(DesktopApplications, FollowTheMimeAssociationsOfTheDesktop)
{
    DesktopFolders desktop;
    const QStringList help = {"application/vnd.ms-htmlhelp", "application/x-chm"};
    EXPECT_TRUE(ui::desktopApplicationsFor(help).isEmpty());

    writeFile(desktop.applications("viewer.desktop"), "[Desktop Entry]\nType=Application\nExec=viewer %f\n");
    writeFile(desktop.applications("other.desktop"), "[Desktop Entry]\nType=Application\nExec=other %f\n");
    writeFile(desktop.applications("mimeinfo.cache"),
              "[MIME Cache]\napplication/x-chm=gone.desktop;viewer.desktop;\ntext/html=other.desktop;\n");
    EXPECT_EQ(ui::desktopApplicationsFor(help), QStringList({"viewer.desktop"}));

    writeFile(desktop.config("mimeapps.list"), "[Default Applications]\napplication/vnd.ms-htmlhelp=other.desktop\n"
                                               "[Removed Associations]\napplication/x-chm=viewer.desktop;\n");
    EXPECT_EQ(ui::desktopApplicationsFor(help), QStringList({"other.desktop"}));
}

TEST(HelpService, TheDesktopOpensTheHelpFileElseTheProgramShowsItsPages)
{
    QTemporaryDir folder;
    const QString helpFile = folder.filePath("shwright.chm");
    QStringList handedToDesktop;
    bool desktopTakesIt = true;
    ui::HelpService help;
    help.setHelpFile(helpFile);
    help.setDesktopOpener([&](const QString& file) {
        handedToDesktop << file;
        return desktopTakesIt;
    });

    EXPECT_FALSE(help.ShowContents());  // neither the file nor its pages
    EXPECT_TRUE(handedToDesktop.isEmpty());

    writeFile(helpFile, "ITSF");
    EXPECT_TRUE(help.ShowContents());
    EXPECT_EQ(handedToDesktop, QStringList({helpFile}));
    EXPECT_EQ(help.browser(), nullptr);

    desktopTakesIt = false;
    EXPECT_FALSE(help.ShowContents());  // no viewer, and no pages to fall back on
    QDir(folder.path()).mkpath("help");
    writeFile(folder.filePath("help/index.html"),
              "<html><head><title>Sheetwright Help</title></head><body><a href=\"menu.html\">Menus</a></body></html>");
    EXPECT_TRUE(help.ShowContents());
    ASSERT_NE(help.browser(), nullptr);
    EXPECT_TRUE(help.browser()->isVisible());
    EXPECT_EQ(help.browser()->windowTitle(), "Sheetwright Help");
    EXPECT_EQ(help.browser()->currentPage(), QUrl::fromLocalFile(folder.filePath("help/index.html")));
}

TEST(HelpService, FindsTheInstalledPagesBesideTheProgramsFolder)
{
    QTemporaryDir prefix;
    QDir(prefix.path()).mkpath("bin");
    QDir(prefix.path()).mkpath("share/sheetwright/help");
    writeFile(prefix.filePath("share/sheetwright/help/index.html"), "<html></html>");
    ui::HelpService help;
    help.setHelpFile(prefix.filePath("bin/shwright.chm"));
    EXPECT_EQ(help.htmlContentsPage(), prefix.filePath("share/sheetwright/help/index.html"));
}

}  // namespace
