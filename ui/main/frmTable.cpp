#include "ui/main/frmTable.h"

#include <optional>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include "app/ModMain.h"
#include "engine/XDataBase.h"
#include "rt/ErrorTrap.h"
#include "host/Registry.h"
#include "host/RegistryKeys.h"
#include "rt/VbConvert.h"
#include "rt/VbError.h"
#include "jet/RuntimeError.h"
#include "lang/LangApp.h"
#include "lang/StringHelpers.h"
#include "ui/Twips.h"
#include "rt/UiServices.h"
#include "ui/main/MainMenuDesign.h"
#include "ui/main/TableGrid.h"
#include "ui/main/frmTableBusy.h"

namespace ui {

namespace {

using host::HKEY_LOCAL_MACHINE;
namespace keys = host::keys;

const QString kRootKey = QStringLiteral("__main");
constexpr int kNodeKeyRole = Qt::UserRole;

// Design sizes in twips: the tree's strip left of the grid, the band that carries the
// toolbar above the grid, and the progress bar's height.
constexpr double kTreeWidth = 2400;
constexpr double kBandHeight = 480;
constexpr double kProgressHeight = 255;

// Images of the tree's image list (imlTree) and of the form's (imlMain).
constexpr int kOpenFolder = 1;
constexpr int kClosedFolder = 2;
constexpr int kTableImage = 1;

QIcon icon(const QString& path)
{
    return QIcon(QStringLiteral(":/icons/") + path + QStringLiteral(".svg"));
}

QVector<double> keyNumbers(const QString& key)
{
    QVector<double> numbers;
    for (const QString& part : key.split(u','))
        numbers << rt::Val(part);
    return numbers;
}

// The single's text as the settings store it: decimal, "." as the point.
QString singleText(float value)
{
    return QString::number(static_cast<double>(value), 'g', 7);
}

}  // namespace

bool frmTable::DisabledMenuShortcuts::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Shortcut)
        return false;
    auto* item = qobject_cast<QAction*>(watched);
    return item != nullptr && !reachable(item);
}

bool frmTable::DisabledMenuShortcuts::reachable(const QAction* item)
{
    for (QObject* owner : item->associatedObjects())
        if (auto* menu = qobject_cast<QMenu*>(owner); menu && (!menu->menuAction()->isEnabled() || !reachable(menu->menuAction())))
            return false;
    return true;
}

frmTable::frmTable(QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("frmTable"));

    for (const char* key : kToolbarKeys)
        imlToolbar.Add(icon(QStringLiteral("toolbar/") + QLatin1String(key)), QLatin1String(key));
    imlTree.Add(icon(QStringLiteral("tree/folder-open")));
    imlTree.Add(icon(QStringLiteral("tree/folder-closed")));
    imlMain.Add(icon(QStringLiteral("tree/table")));

    tvwTable = new QTreeWidget(this);
    tvwTable->setObjectName(QStringLiteral("tvwTable"));
    tvwTable->setHeaderHidden(true);
    tvwTable->setColumnCount(1);
    tvwTable->setRootIsDecorated(true);
    connect(tvwTable, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* node) { tvwTable_NodeClick(node); });
    connect(tvwTable, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* node) { tvwTable_NodeClick(node); });
    connect(tvwTable, &QTreeWidget::itemExpanded, this, &frmTable::tvwTable_Expand);
    connect(tvwTable, &QTreeWidget::itemCollapsed, this, &frmTable::tvwTable_Collapse);

    frdMain = new TableGrid(RecordsetModel::Access::ReadOnly, this);
    frdMain->setObjectName(QStringLiteral("frdMain"));

    // The progress poll of the design: never started and without effect, since nothing
    // reports a calculation's progress to this window.
    tmrMain = new QTimer(this);
    tmrMain->setObjectName(QStringLiteral("tmrMain"));
    tmrMain->setInterval(100);

    prbCalculate = new QProgressBar(this);
    prbCalculate->setObjectName(QStringLiteral("prbCalculate"));
    prbCalculate->setRange(0, 100);
    prbCalculate->setValue(0);
    prbCalculate->setTextVisible(false);

    clbMain = new QWidget(this);
    clbMain->setObjectName(QStringLiteral("clbMain"));
    tlbMain = new QToolBar(clbMain);
    tlbMain->setObjectName(QStringLiteral("tlbMain"));

    dtgMain = new TableGrid(RecordsetModel::Access::Editable, this);
    dtgMain->setObjectName(QStringLiteral("dtgMain"));

    for (TableGrid* grid : {frdMain, dtgMain})
        connect(grid, &TableGrid::currentCellChanged, this, [this] {
            app::gSelectedColumn = shownGrid()->Col();
            showStatus();
        });
    connect(frdMain, &TableGrid::MouseDown, this, &frmTable::frdMain_MouseDown);
    connect(frdMain, &TableGrid::MouseUp, this, &frmTable::frdMain_MouseUp);

    createMenus();
    createToolbar();
    connectCommands();
    createStatusBar();
    layOut();

    Form_Load();
}

frmTable::~frmTable() = default;

// ---- Building the window

void frmTable::createMenus()
{
    QVector<QMenu*> parents(4, nullptr);
    for (size_t i = 0; i < std::size(kMainMenu); ++i) {
        const MenuDesign& design = kMainMenu[i];
        const QString name = QLatin1String(design.name);
        const QString caption = QString::fromUtf8(design.caption);
        const bool hasChildren = i + 1 < std::size(kMainMenu) && kMainMenu[i + 1].level > design.level;
        QAction* item = nullptr;
        if (design.level == 1) {
            QMenu* menu = menuBar()->addMenu(caption);
            menu->setObjectName(name);
            parents[1] = menu;
            item = menu->menuAction();
        } else if (hasChildren) {
            QMenu* menu = parents[design.level - 1]->addMenu(caption);
            menu->setObjectName(name);
            parents[design.level] = menu;
            item = menu->menuAction();
        } else if (caption == QLatin1String("-")) {
            item = parents[design.level - 1]->addSeparator();
        } else {
            item = parents[design.level - 1]->addAction(caption);
            item->setShortcut(QKeySequence(QLatin1String(design.shortcut)));
        }
        item->setObjectName(name);
        menuItems_.insert(name, item);
        if (*design.key)
            menuKeys_.append({keyNumbers(QLatin1String(design.key)), item});
    }
    for (QAction* item : std::as_const(menuItems_))
        item->installEventFilter(&disabledMenuShortcuts_);

    recentMenu_ = findChild<QMenu*>(QStringLiteral("mnuDBReopen"));
    mnuDBReopenFile.append(menuItems_.value(QStringLiteral("mnuDBReopenFile")));
    connect(mnuDBReopenFile[0], &QAction::triggered, this, [this] { mnuDBReopenFile_Click(0); });
    connect(menuItem(QStringLiteral("mnuExit")), &QAction::triggered, this, &frmTable::mnuExit_Click);
    connect(menuItem(QStringLiteral("mnuAbout")), &QAction::triggered, this, &frmTable::mnuAbout_Click);
    connect(menuItem(QStringLiteral("mnuCHM")), &QAction::triggered, this, &frmTable::mnuCHM_Click);
    menuItem(QStringLiteral("mnuEditView"))->setCheckable(true);
}

void frmTable::createToolbar()
{
    tlbMain->setMovable(false);
    tlbMain->setFloatable(false);
    tlbMain->setIconSize(QSize(24, 24));
    for (const char* key : kToolbarKeys) {
        const QString name = QLatin1String(key);
        QAction* button = tlbMain->addAction(imlToolbar.ListImages(name), QString());
        button->setObjectName(name);
        buttons_.insert(name, button);
    }
    // A two-state button: pressed while edit mode is on.
    button(QStringLiteral("EditView"))->setCheckable(true);
}

void frmTable::createStatusBar()
{
    tableStatus_ = new QLabel(this);
    resultStatus_ = new QLabel(this);
    resultStatus_->setObjectName(QStringLiteral("resultStatus"));
    resultStatus_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    cellStatus_ = new QLabel(this);
    busyBar_ = new QProgressBar(this);
    busyBar_->setRange(0, 0);
    busyBar_->setMaximumWidth(160);
    busyBar_->hide();
    statusBar()->addWidget(tableStatus_);
    statusBar()->addWidget(resultStatus_, 1);
    statusBar()->addPermanentWidget(busyBar_);
    statusBar()->addPermanentWidget(cellStatus_);
    statusBar()->setSizeGripEnabled(true);
}

void frmTable::layOut()
{
    // The band across the top carries the toolbar; below it the tree keeps its strip on
    // the left and the grids share the rest, one shown at a time; the progress bar runs
    // under both.
    auto* band = new QHBoxLayout(clbMain);
    band->setContentsMargins(2, 1, 2, 1);
    band->addWidget(tlbMain);
    clbMain->setMinimumHeight(twipsToPixels(kBandHeight, logicalDpiY()));

    grids_ = new QStackedWidget(this);
    grids_->addWidget(frdMain);
    grids_->addWidget(dtgMain);
    tvwTable->setFixedWidth(twipsToPixels(kTreeWidth, logicalDpiX()));
    prbCalculate->setFixedHeight(twipsToPixels(kProgressHeight, logicalDpiY()));

    auto* body = new QHBoxLayout;
    body->setSpacing(2);
    body->addWidget(tvwTable);
    body->addWidget(grids_, 1);
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(clbMain);
    layout->addLayout(body, 1);
    layout->addWidget(prbCalculate);
    setCentralWidget(central);
}

// ---- Lifecycle

void frmTable::Form_Load()
{
    host::Registry& registry = app::gRegistry();
    mRecentFiles.clear();
    app::gMainSeparator = rt::Chr(rt::CLng(rt::Val(registry.read(HKEY_LOCAL_MACHINE, keys::Pro, keys::TableSeparator))));
    help_.setOwnerWindow(this);
    mDataBasePath = registry.read(HKEY_LOCAL_MACHINE, keys::Database, QString());
    showEditGrid(false);
    menuItem(QStringLiteral("mnuCalc"))->setEnabled(!mEditMode);
    ApplyLanguage();

    resize(twipsToPixels(app::gWinX, logicalDpiX()), twipsToPixels(app::gWinY, logicalDpiY()));
    if (const QScreen* where = screen()) {
        // Centred first: moving a window takes it out of the maximised state.
        const QRect available = where->availableGeometry();
        move(available.x() + (available.width() - width()) / 2, available.y() + (available.height() - height()) / 2);
        const QSize screenSize = where->geometry().size();
        if (twipsToPixels(app::gWinX, logicalDpiX()) == screenSize.width() &&
            twipsToPixels(app::gWinY, logicalDpiY()) == screenSize.height())
            setWindowState(windowState() | Qt::WindowMaximized);
    }

    buildRecentMenu();
    setDataBaseOpen(false);
}

void frmTable::Form_Activate()
{
    mActivated = true;
}

void frmTable::Form_Resize()
{
    // Every statement on its own: a failure (the settings cannot be written) leaves the
    // rest to run.
    rt::resumeNext({
        [&] {
            if (!mActivated || (windowState() & Qt::WindowMinimized))
                return;
            QSize size = this->size();
            if ((windowState() & Qt::WindowMaximized) && screen())
                size = screen()->geometry().size();
            app::gWinX = static_cast<float>(pixelsToTwips(size.width(), logicalDpiX()));
            app::gWinY = static_cast<float>(pixelsToTwips(size.height(), logicalDpiY()));
        },
        [&] { app::gRegistry().write(HKEY_LOCAL_MACHINE, keys::Plugin, keys::WinX, singleText(app::gWinX)); },
        [&] { app::gRegistry().write(HKEY_LOCAL_MACHINE, keys::Plugin, keys::WinY, singleText(app::gWinY)); },
    });
}

void frmTable::Form_Unload()
{
    // Leaving the window leaves the table: what was typed into the grid goes in first.
    sendGridEdits();
    if (HelpBrowser* browser = help_.browser())
        browser->close();
}

void frmTable::ApplyLanguage()
{
    const lang::TableLangItem& captions = app::gLang().Table();
    setWindowTitle(lang::captionOr(captions.Common(), 1, windowTitle()));

    const lang::MenuCaptions& menu = captions.Menu();
    for (int32_t i = 1; i <= menu.Count(); ++i) {
        const QString key = menu.Key(i);
        if (key.isEmpty())
            continue;
        const QVector<double> numbers = keyNumbers(key);
        for (const MenuKey& row : menuKeys_) {
            if (row.numbers.size() == numbers.size() &&
                std::equal(row.numbers.begin(), row.numbers.end(), numbers.begin()))
                row.item->setText(menu.Item(i));
        }
    }

    const lang::ToolbarCaptions& toolbar = captions.ToolBar();
    for (int32_t i = 0; i <= toolbar.Count(); ++i) {
        const QString key = toolbar.Key(i);
        if (key.isEmpty())
            continue;
        QAction* target = button(key);
        // The toolbar's own error for a key it lacks; nothing here handles it, so the
        // window does not load.
        if (target == nullptr)
            throw rt::vbError(35601, QStringLiteral("Element not found: the toolbar has no button \"%1\"").arg(key));
        target->setToolTip(toolbar.Item(i));
    }
}

void frmTable::setDataBaseOpen(bool open)
{
    dataBaseOpen_ = open;
    for (const char* name : kDatabaseMenuItems)
        menuItem(QLatin1String(name))->setEnabled(open);
    for (const char* key : kDatabaseButtons)
        button(QLatin1String(key))->setEnabled(open);
}

bool frmTable::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        Form_Activate();
    return QMainWindow::event(event);
}

void frmTable::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void frmTable::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    // Minimising and maximising resize the form as far as its size memory is concerned.
    if (event->type() == QEvent::WindowStateChange)
        Form_Resize();
}

void frmTable::closeEvent(QCloseEvent* event)
{
    Form_Unload();
    event->accept();
}

// ---- The recent-databases menu

QString frmTable::recentCaption(const QString& path)
{
    // Paths of this system use "/"; a path written with "\" keeps the rule as it was made.
    const QString separator = path.contains(u'\\') ? QStringLiteral("\\") : QStringLiteral("/");
    int16_t position = 1;
    const QString head = lang::GetToken(path, position, separator, false, 4);
    if (path.split(separator).size() > 5)
        return head + QStringLiteral("..") + separator + lang::GetFileName(path);
    return head;
}

void frmTable::addRecentEntry(const QString& path)
{
    const QString caption = recentCaption(path);
    mRecentFiles.append(path);
    if (mRecentFiles.size() == 1) {
        mnuDBReopenFile[0]->setText(caption);
        mnuDBReopenFile[0]->setEnabled(true);
        return;
    }
    const int index = int(mRecentFiles.size()) - 1;
    QAction* entry = recentMenu_->addAction(caption);
    entry->setObjectName(QStringLiteral("mnuDBReopenFile"));
    entry->setData(index);
    connect(entry, &QAction::triggered, this, [this, index] { mnuDBReopenFile_Click(index); });
    mnuDBReopenFile.append(entry);
}

void frmTable::buildRecentMenu()
{
    host::Registry& registry = app::gRegistry();
    for (int i = 1;; ++i) {
        const QString path = registry.read(HKEY_LOCAL_MACHINE, keys::UsesFiles, QString::number(i));
        if (path.isEmpty())
            break;
        addRecentEntry(path);
        if (!QFileInfo::exists(path))
            mnuDBReopenFile[i - 1]->setEnabled(false);
    }
    if (mRecentFiles.isEmpty()) {
        mnuDBReopenFile[0]->setText(common(11, QStringLiteral("Empty")));
        mnuDBReopenFile[0]->setEnabled(false);
    }
}

void frmTable::mnuDBReopenFile_Click(int index)
{
    openDatabase(mRecentFiles.value(index), true);
}

void frmTable::OpenCommandLineFile(const QString& path)
{
    openDatabase(QFileInfo(path).absoluteFilePath(), true);
}

bool frmTable::openDatabase(const QString& path, bool sayWhyNot)
{
    bool opened = false;
    QString reason;
    {
        // Not over the login dialog, which opening shows first when logins are asked for.
        std::optional<Busy> busy;
        if (!app::gUseLogin)
            busy.emplace(*this);
        try {
            opened = app::gDataBase().OpenDataBase(path);
        } catch (const jet::RuntimeError& error) {
            if (!sayWhyNot)
                throw;
            reason = QString::fromStdString(error.description());
        }
    }
    if (!opened) {
        if (sayWhyNot) {
            const QString message = QStringLiteral("Error open database!");
            rt::UiServices::current().messageBox(reason.isEmpty() ? message : message + QStringLiteral("\r\n") + reason,
                                                 rt::vbCritical);
        }
        return false;
    }
    Busy busy(*this);
    FillTableTree();
    ShowTable(app::gDataBase().CurrentTable());
    setDataBaseOpen(true);
    return true;
}

// ---- The tree and the grids

void frmTable::FillTableTree()
{
    tvwTable->clear();
    auto* root = new QTreeWidgetItem(tvwTable, {common(10, QStringLiteral("Tables"))});
    root->setData(0, kNodeKeyRole, kRootKey);
    root->setIcon(0, imlTree.ListImages(kClosedFolder));
    const rt::StringList& tables = app::gDataBase().Tables();
    for (int32_t i = 1; i <= tables.Count(); ++i) {
        auto* node = new QTreeWidgetItem(root, {tables.Item(i)});
        node->setData(0, kNodeKeyRole, tables.Item(i) + QStringLiteral("__"));
        node->setIcon(0, imlMain.ListImages(kTableImage));
    }
    // Open, so the tables are there to click at once.
    root->setExpanded(true);
}

void frmTable::tvwTable_NodeClick(QTreeWidgetItem* node)
{
    if (node == nullptr || node->data(0, kNodeKeyRole).toString() == kRootKey)
        return;
    // Switching tables closes the record set: what was typed goes in first.
    sendGridEdits();
    const QString name = node->text(0);
    markCurrentTable(name);
    Busy busy(*this);
    app::gDataBase().setCurrentTable(name);
    ShowTable(name);
}

void frmTable::markCurrentTable(const QString& name)
{
    QTreeWidgetItemIterator it(tvwTable);
    for (; *it; ++it) {
        QFont font = (*it)->font(0);
        font.setBold((*it)->parent() != nullptr && (*it)->text(0) == name);
        (*it)->setFont(0, font);
    }
}

void frmTable::tvwTable_Expand(QTreeWidgetItem* node)
{
    if (node->data(0, kNodeKeyRole).toString() == kRootKey)
        node->setIcon(0, imlTree.ListImages(kOpenFolder));
}

void frmTable::tvwTable_Collapse(QTreeWidgetItem* node)
{
    if (node->data(0, kNodeKeyRole).toString() == kRootKey)
        node->setIcon(0, imlTree.ListImages(kClosedFolder));
}

void frmTable::ShowTable(const QString& name)
{
    sendGridEdits();
    // A database without tables, or no table named: nothing to bind, and nothing of the
    // last one may stay.
    if (name.isEmpty() || app::gDataBase().CurrentTable().isEmpty()) {
        for (TableGrid* grid : {dtgMain, frdMain})
            grid->bind(nullptr);
        showStatus();
        return;
    }
    Busy busy(*this);
    bindGrids(false);
    markCurrentTable(name);
}

void frmTable::RefreshGrid()
{
    sendGridEdits();
    Busy busy(*this);
    bindGrids(true);
}

void frmTable::bindGrids(bool keepPlace)
{
    // Both grids show the one record set the engine hands out.
    const std::shared_ptr<jet::Recordset> records = app::gDataBase().GetDataMember(app::gDataBase().CurrentTable());
    for (TableGrid* grid : {dtgMain, frdMain}) {
        const QModelIndex place = grid->currentIndex();
        QList<int> widths;
        for (int c = 1; keepPlace && c < grid->Cols(); ++c)
            widths << grid->columnWidth(c);
        grid->bind(records);
        if (keepPlace && widths.size() == grid->Cols() - 1) {
            for (int c = 1; c < grid->Cols(); ++c)
                grid->setColumnWidth(c, widths[c - 1]);
            if (place.isValid() && place.row() < grid->Rows())
                grid->setCurrentIndex(grid->model()->index(place.row(), qMin(place.column(), grid->Cols() - 1)));
        }
    }
    showStatus();
}

bool frmTable::sendGridEdits()
{
    return dtgMain->sendEdits();
}

void frmTable::showEditGrid(bool edit)
{
    if (!edit)
        sendGridEdits();
    grids_->setCurrentWidget(edit ? static_cast<QWidget*>(dtgMain) : frdMain);
    showStatus();
}

void frmTable::showStatus()
{
    const TableGrid* grid = grids_->currentWidget() == dtgMain ? dtgMain : frdMain;
    const QString table = app::gDataBase().CurrentTable();
    if (grid->records().recordset() == nullptr || table.isEmpty()) {
        tableStatus_->clear();
        cellStatus_->clear();
        return;
    }
    tableStatus_->setText(table + QStringLiteral("  |  ") +
                          common(19, QStringLiteral("Records: %COUNT%"))
                              .replace(QStringLiteral("%COUNT%"), QLocale().toString(grid->records().recordCount())));
    if (grid->Row() < 1 || grid->Col() < 1) {
        cellStatus_->clear();
        return;
    }
    cellStatus_->setText(common(20, QStringLiteral("Record %ROW%, column %COLUMN%"))
                             .replace(QStringLiteral("%ROW%"), QLocale().toString(grid->Row()))
                             .replace(QStringLiteral("%COLUMN%"), grid->records().fieldName(grid->Col())));
}

QStringList frmTable::statusTexts() const
{
    return {tableStatus_->text(), cellStatus_->text()};
}

QString frmTable::resultStatusText() const
{
    return resultStatus_->text();
}

void frmTable::showResultStatus(const QString& text)
{
    resultStatus_->setText(text);
}

// ---- Commands of this window

void frmTable::mnuExit_Click()
{
    QApplication::closeAllWindows();
    QCoreApplication::quit();
}

void frmTable::mnuAbout_Click()
{
    rt::UiServices::current().showModalForm(QStringLiteral("frmAbout"), objectName());
}

void frmTable::mnuCHM_Click()
{
    help_.setHelpFile(QCoreApplication::applicationDirPath() + QStringLiteral("/shwright.chm"));
    if (!help_.ShowContents())
        rt::UiServices::current().messageBox(
            common(12, QStringLiteral("The help file %FILE% cannot be opened.")).replace(QStringLiteral("%FILE%"), help_.helpFile()),
            rt::vbExclamation, common(16, QStringLiteral("Help")));
}

// ---- Lookups

QAction* frmTable::menuItem(const QString& name) const
{
    return menuItems_.value(name);
}

QAction* frmTable::button(const QString& key) const
{
    return buttons_.value(key);
}

QString frmTable::common(int item, const QString& designText) const
{
    return lang::captionOr(app::gLang().Table().Common(), item, designText);
}

}  // namespace ui
