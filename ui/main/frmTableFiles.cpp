// The main window's file and database commands: databases opened, created and listed as
// recent, tables created and deleted, tables moved to and from text, HTML and XML files,
// and the picture command's hand-over to the graph digitizer.

#include <QCoreApplication>
#include <QFileInfo>
#include <QTreeWidget>

#include "app/ModMain.h"
#include "engine/XDataBase.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "jet/RuntimeError.h"
#include "lang/LangApp.h"
#include "rt/ErrorTrap.h"
#include "rt/VbError.h"
#include "ui/main/TableGrid.h"
#include "ui/main/frmTable.h"
#include "ui/main/frmTableBusy.h"

namespace ui {

namespace {

using host::HKEY_LOCAL_MACHINE;
namespace keys = host::keys;

const QString kDatabaseFilter = QStringLiteral("Microsoft DataBase (*.mdb)|*.mdb");

}  // namespace

rt::FileDialogResult frmTable::askForFile(bool save, const QString& title, const QString& filter,
                                          const QString& defaultExtension)
{
    rt::FileDialogRequest request;
    request.initialFolder = QCoreApplication::applicationDirPath();
    request.title = title;
    request.filter = filter;
    request.defaultExtension = defaultExtension;
    rt::UiServices& services = rt::UiServices::current();
    return save ? services.saveFileDialog(request) : services.openFileDialog(request);
}

QString frmTable::separatorOfFilter(int32_t filterIndex)
{
    const QString separators[] = {QString(), QStringLiteral(","), QStringLiteral("\t"), app::gMainSeparator};
    if (filterIndex < 0 || filterIndex >= int32_t(std::size(separators)))
        throw rt::vbError(rt::vberr::SubscriptOutOfRange);
    return separators[filterIndex];
}

// ---- Databases

void frmTable::mnuOpenDataBase_Click()
{
    const QString path = askForFile(false, QStringLiteral("Открыть базу данных"), kDatabaseFilter).fileName;
    if (path.isEmpty())
        return;
    sendGridEdits();
    // A database that does not open says nothing here; the engine has said what it says.
    if (openDatabase(path, false))
        AddRecentDatabase(path);
}

void frmTable::AddRecentDatabase(const QString& path)
{
    if (mRecentFiles.contains(path, Qt::CaseSensitive))
        return;
    addRecentEntry(path);
    host::Registry& registry = app::gRegistry();
    int i = 1;
    while (!registry.read(HKEY_LOCAL_MACHINE, keys::UsesFiles, QString::number(i)).isEmpty())
        ++i;
    registry.write(HKEY_LOCAL_MACHINE, keys::UsesFiles, QString::number(i), path);
}

void frmTable::mnuDataBaseCreate_Click()
{
    sendGridEdits();
    engine::XDataBase& database = app::gDataBase();
    const QString before = database.DataBaseFile();
    rt::UiServices::current().showModalForm(QStringLiteral("frmNewDataBase"), objectName());
    const QString created = database.DataBaseFile();
    if (created.isEmpty() || created == before)
        return;
    // The engine now holds the new, empty database, which this window does not show: what
    // it showed of the old one goes, and the user opens the new one from the File menu.
    tvwTable->clear();
    ShowTable(QString());
    setDataBaseOpen(false);
    showResultStatus(common(24, QStringLiteral("The database %FILE% has been created. Open it with File, Open, Database."))
                         .replace(QStringLiteral("%FILE%"), created));
}

// ---- Tables

void frmTable::mnuTableCreate_Click()
{
    const QString name = rt::UiServices::current().inputBox(QStringLiteral("Введите имя новой таблицы"),
                                                            QStringLiteral("Новая таблица"));
    if (name.isEmpty())
        return;
    sendGridEdits();
    Busy busy(*this);
    app::gDataBase().CreateTable(name);
    // Only the edit grid takes the new table; the tree lists it once the database is
    // opened again.
    dtgMain->bind(app::gDataBase().GetDataMember(name));
}

void frmTable::mnuDelTable_Click()
{
    engine::XDataBase& database = app::gDataBase();
    const QString name = database.CurrentTable();
    const QString question = common(8, QStringLiteral("Delete the table %TABLE% with all its rows?"))
                                 .replace(QStringLiteral("%TABLE%"), name);
    if (rt::UiServices::current().messageBox(question, rt::vbYesNo | rt::vbQuestion, common(9, QString())) != rt::vbYes)
        return;
    sendGridEdits();
    for (QTreeWidgetItemIterator it(tvwTable); *it; ++it) {
        if ((*it)->data(0, Qt::UserRole).toString() == name + QStringLiteral("__")) {
            delete *it;
            break;
        }
    }
    Busy busy(*this);
    database.setCurrentTable(name);
    database.DeleteTable(name);
    ShowTable(database.CurrentTable());
}

// ---- Table files

void frmTable::addTableNode(const QString& name)
{
    QTreeWidgetItem* root = tvwTable->topLevelItem(0);
    if (root == nullptr)
        return;
    auto* node = new QTreeWidgetItem(root, {name});
    node->setData(0, Qt::UserRole, name + QStringLiteral("__"));
    node->setIcon(0, imlMain.ListImages(1));
}

void frmTable::importTableFile(const QString& path)
{
    sendGridEdits();
    bool imported = false;
    {
        Busy busy(*this);
        imported = app::gDataBase().OpenTable(path);
    }
    if (!imported)
        return;
    const QString table = app::gDataBase().AddedTable();
    addTableNode(table);
    ShowTable(table);
}

void frmTable::mnuOpen_Click()
{
    const rt::FileDialogResult chosen = askForFile(false, common(2, QStringLiteral("Open table")), common(3, QString()));
    if (chosen.fileName.isEmpty())
        return;
    app::gDataBase().setDefaultSeparator(separatorOfFilter(chosen.filterIndex));
    importTableFile(chosen.fileName);
}

void frmTable::mnuOpenHTML_Click()
{
    const QString path = askForFile(false, QStringLiteral("Открыть таблицу HTML"),
                                    QStringLiteral("HTML (*.html;*.htm)|*.html;*.htm")).fileName;
    if (!path.isEmpty())
        importTableFile(path);
}

void frmTable::mnuOpenXML_Click()
{
    const QString path = askForFile(false, QStringLiteral("Открыть таблицу XML"), QStringLiteral("XML (*.xml)|*.xml")).fileName;
    if (!path.isEmpty())
        importTableFile(path);
}

void frmTable::mnuSave_Click()
{
    const rt::FileDialogResult chosen = askForFile(true, common(4, QStringLiteral("Save table")), common(5, QString()));
    QString path = chosen.fileName;
    if (path.isEmpty())
        return;
    // A bare name typed under an all-files filter comes back with ".*".
    if (path.endsWith(QStringLiteral(".*")))
        path.chop(2);
    const QString separator = separatorOfFilter(chosen.filterIndex);
    sendGridEdits();
    bool saved = false;
    {
        Busy busy(*this);
        saved = app::gDataBase().SaveTable(path, separator);
    }
    if (!saved)
        rt::UiServices::current().messageBox(QStringLiteral("Error of saving!"), rt::vbCritical, common(7, QString()));
}

void frmTable::mnuSaveHTML_Click()
{
    const QString path = askForFile(true, common(6, QStringLiteral("Save table as")) + QStringLiteral(" HTML"),
                                    QStringLiteral("HTML (*.htm;*.html)|*.htm;*.html"), QStringLiteral("htm"))
                             .fileName;
    if (path.isEmpty())
        return;
    sendGridEdits();
    Busy busy(*this);
    app::gDataBase().SaveTableHTML(path);
}

void frmTable::mnuSaveXML_Click()
{
    const QString path =
        askForFile(true, common(6, QStringLiteral("Save table as")) + QStringLiteral(" XML"), QStringLiteral("XML (*.xml)|*.xml"))
            .fileName;
    if (path.isEmpty())
        return;
    sendGridEdits();
    Busy busy(*this);
    app::gDataBase().SaveTableXML(path);
}

// ---- A table from a picture of a graph

void frmTable::mnuPicOpen_Click()
{
    const QString path =
        askForFile(false, QString(),
                   QStringLiteral("All pictures (*.bmp;*.gif;*.jpg;*.emf;*.wmf)|*.bmp;*.gif;*.jpg;*.emf;*.wmf")).fileName;
    if (path.isEmpty())
        return;
    app::gPicturePath = path;
    app::gTableReady = false;
    app::gTableCancelled = false;
    if (!showDigitizer())
        return;
    // The digitizer answers through the main module: ready, and cancelled or not.
    while (!app::gTableReady)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!app::gTableCancelled)
        importTableFile(app::gTempTablePath);
    app::gTableReady = false;
}

bool frmTable::showDigitizer()
{
    const auto error = rt::trapError([] { rt::UiServices::current().showForm(QStringLiteral("frmStatictics")); });
    if (!error)
        return true;
    rt::UiServices::current().messageBox(common(23, QStringLiteral("The graph digitizer cannot be started here.")) +
                                             QStringLiteral("\r\n") + QString::fromStdString(error->description()),
                                         rt::vbExclamation);
    return false;
}

}  // namespace ui
