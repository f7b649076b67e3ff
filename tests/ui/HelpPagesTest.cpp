// The help as it ships: every page is in the compiled help's project and contents, every
// link and picture leads somewhere, and the compiled file (when the build made one) holds
// every page.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace {

const QString kHelp = QStringLiteral(SHEETWRIGHT_SOURCE_DIR "/share/help");

QString read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList pages()
{
    return QDir(kHelp).entryList({"*.html"}, QDir::Files, QDir::Name);
}

TEST(HelpPages, EveryPageIsInTheProjectAndTheContentsAndEveryListedFileExists)
{
    const QString project = read(kHelp + "/shwright.hhp");
    const QString files = project.mid(project.indexOf("[FILES]") + 7).trimmed();
    const QStringList listed = files.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts);
    const QString contents = read(kHelp + "/toc.hhc");
    ASSERT_FALSE(pages().isEmpty());
    for (const QString& page : pages()) {
        EXPECT_TRUE(listed.contains(page)) << page.toStdString() << " is missing from shwright.hhp";
        EXPECT_TRUE(contents.contains("\"" + page + "\"")) << page.toStdString() << " is missing from toc.hhc";
    }
    for (const QString& file : listed)
        EXPECT_TRUE(QFileInfo::exists(kHelp + "/" + file)) << file.toStdString();
}

TEST(HelpPages, EveryLinkAndPictureLeadsToAFileAndAnchorThatExist)
{
    const QRegularExpression reference(R"re((?:href|src)="([^"]+)")re");
    for (const QString& page : pages() + QStringList{"toc.hhc", "index.hhk"}) {
        const QString text = read(kHelp + "/" + page);
        for (auto match = reference.globalMatch(text); match.hasNext();) {
            const QString target = match.next().captured(1);
            if (target.contains("://"))
                continue;
            const QString file = target.section('#', 0, 0);
            const QString anchor = target.section('#', 1);
            const QString path = kHelp + "/" + (file.isEmpty() ? page : file);
            ASSERT_TRUE(QFileInfo::exists(path)) << page.toStdString() << " -> " << target.toStdString();
            if (!anchor.isEmpty())
                EXPECT_TRUE(read(path).contains("id=\"" + anchor + "\"")) << page.toStdString() << " -> " << target.toStdString();
        }
        for (auto match = QRegularExpression(R"re(name="Local" value="([^"]+)")re").globalMatch(text); match.hasNext();) {
            const QString target = match.next().captured(1);
            EXPECT_TRUE(QFileInfo::exists(kHelp + "/" + target.section('#', 0, 0))) << page.toStdString() << " -> "
                                                                                   << target.toStdString();
        }
    }
}

TEST(HelpPages, TheCompiledHelpHoldsEveryPage)
{
    QFile compiled(SHEETWRIGHT_BINARY_DIR "/ui/main/shwright.chm");
    if (!compiled.open(QIODevice::ReadOnly))
        GTEST_SKIP() << "no CHM compiler in this build: the help is HTML only";
    const QByteArray bytes = compiled.readAll();
    EXPECT_TRUE(bytes.startsWith("ITSF"));
    for (const QString& page : pages())
        EXPECT_TRUE(bytes.contains(("/" + page).toUtf8())) << page.toStdString();
}

}  // namespace
