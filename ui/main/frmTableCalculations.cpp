// The main window's calculation commands: each hands the selection and its number to the
// table engine and keeps the result for Insert result (the quadratic deviation goes to
// the clipboard instead). What came out, or why nothing did, shows in the status bar.

#include <QAction>

#include "app/ModMain.h"
#include "engine/XDataBase.h"
#include "host/HostDiagnostics.h"
#include "jet/RuntimeError.h"
#include "rt/VbError.h"
#include "ui/main/TableGrid.h"
#include "ui/main/frmTable.h"
#include "ui/main/frmTableBusy.h"

namespace ui {

namespace {

// Catches the reason the function library gives for a statistic it cannot compute, and
// passes everything on to the diagnostics that were installed before.
class RefusalListener : public host::HostDiagnostics {
public:
    RefusalListener() : previous_(host::HostDiagnostics::current()) { host::HostDiagnostics::install(this); }
    ~RefusalListener() override { host::HostDiagnostics::install(&previous_ == this ? nullptr : &previous_); }
    RefusalListener(const RefusalListener&) = delete;
    RefusalListener& operator=(const RefusalListener&) = delete;

    void trace(const QString& text) override { previous_.trace(text); }
    void reportError(int32_t number, const QString& description, const QString& procedure, const QString& scope,
                     const QString& component) override
    {
        reason = description;
        previous_.reportError(number, description, procedure, scope, component);
    }

    QString reason;

private:
    host::HostDiagnostics& previous_;
};

QString withoutAccelerator(QString caption)
{
    caption.remove(QRegularExpression(QStringLiteral("&(?!&)")));
    return caption.replace(QStringLiteral("&&"), QStringLiteral("&"));
}

}  // namespace

QString frmTable::calculate(int16_t number, const QString& menuItemName)
{
    sendGridEdits();
    const QString command = withoutAccelerator(menuItem(menuItemName)->text());
    RefusalListener refusals;
    QString result;
    try {
        Busy busy(*this);
        result = app::gDataBase().Calculate(mSelection(), number);
    } catch (const jet::RuntimeError& error) {
        showResultStatus(common(22, QStringLiteral("%COMMAND%: no result. %REASON%"))
                             .replace(QStringLiteral("%COMMAND%"), command)
                             .replace(QStringLiteral("%REASON%"), QString::fromStdString(error.description())));
        throw;
    }
    if (result.isEmpty())
        showResultStatus(common(22, QStringLiteral("%COMMAND%: no result. %REASON%"))
                             .replace(QStringLiteral("%COMMAND%"), command)
                             .replace(QStringLiteral("%REASON%"), refusals.reason));
    else
        showResultStatus(common(21, QStringLiteral("%COMMAND%: %RESULT%"))
                             .replace(QStringLiteral("%COMMAND%"), command)
                             .replace(QStringLiteral("%RESULT%"), result));
    return result;
}

void frmTable::mnuMinDevCrat_Click() { app::gLastResult = calculate(1, QStringLiteral("mnuMinDevCrat")); }
void frmTable::mnuMidGeo_Click() { app::gLastResult = calculate(3, QStringLiteral("mnuMidGeo")); }
void frmTable::mnuMax_Click() { app::gLastResult = calculate(4, QStringLiteral("mnuMax")); }
void frmTable::mnuMid_Click() { app::gLastResult = calculate(5, QStringLiteral("mnuMid")); }
void frmTable::mnuMin_Click() { app::gLastResult = calculate(6, QStringLiteral("mnuMin")); }
void frmTable::mnuMuch_Click() { app::gLastResult = calculate(7, QStringLiteral("mnuMuch")); }
void frmTable::mnuMultunomial_Click() { app::gLastResult = calculate(8, QStringLiteral("mnuMultunomial")); }
void frmTable::mnuSumm_Click() { app::gLastResult = calculate(9, QStringLiteral("mnuSumm")); }
void frmTable::mnuMedian_Click() { app::gLastResult = calculate(11, QStringLiteral("mnuMedian")); }
void frmTable::mnuMidHarmonic_Click() { app::gLastResult = calculate(12, QStringLiteral("mnuMidHarmonic")); }
void frmTable::mnuDivisor_Click() { app::gLastResult = calculate(14, QStringLiteral("mnuDivisor")); }

void frmTable::mnuSquareDivisor_Click()
{
    // The one statistic that goes to the clipboard; the result kept for insertion stays.
    rt::UiServices::current().setClipboardText(calculate(13, QStringLiteral("mnuSquareDivisor")));
}

void frmTable::mnuInsertResult_Click()
{
    if (app::gLastResult.isEmpty()) {
        rt::UiServices::current().messageBox(common(13, QString()), rt::vbCritical, QString());
        return;
    }
    sendGridEdits();
    engine::XDataBase& database = app::gDataBase();
    const TableGrid* grid = shownGrid();
    const QString field = database.CaptionOfField(grid->Col());
    {
        Busy busy(*this);
        database.AddValue(field, grid->Row(), app::gLastResult);
    }
    RefreshGrid();
}

void frmTable::mnuStatisics_Click()
{
    app::gPicturePath.clear();
    showDigitizer();
}

void frmTable::mnuNumberType_Click()
{
    rt::UiServices::current().showModalForm(QStringLiteral("frmNumType"), objectName());
}

void frmTable::mnuOptionsTable_Click()
{
    rt::UiServices::current().showModalForm(QStringLiteral("frmTableOptions"), objectName());
}

}  // namespace ui
