#include "ui/main/frmTable.h"

#include <QScreen>

#include "app/ModMain.h"
#include "lang/LangApp.h"
#include "ui/Twips.h"

namespace ui {

frmTable::frmTable(QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("frmTable"));
    Form_Load();
}

void frmTable::Form_Load()
{
    setWindowTitle(lang::captionOr(app::gLang().Table().Common(), 1, QString()));
    if (app::gWinX > 0 && app::gWinY > 0)
        resize(twipsToPixels(app::gWinX, logicalDpiX()), twipsToPixels(app::gWinY, logicalDpiY()));
    // Centred on the screen it opens on.
    if (const QScreen* where = screen()) {
        const QRect available = where->availableGeometry();
        move(available.x() + (available.width() - width()) / 2, available.y() + (available.height() - height()) / 2);
    }
}

}  // namespace ui
