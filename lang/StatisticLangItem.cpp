#include "lang/StatisticLangItem.h"

#include <QLoggingCategory>

#include "lang/ClassIDGenerator.h"

namespace lang {

namespace {

// The debug trace of an instance's life; release builds emit nothing.
#ifndef NDEBUG
Q_LOGGING_CATEGORY(lcLangItems, "sheetwright.lang.items")

void traceLife(int32_t id, const char* what)
{
    qCDebug(lcLangItems).noquote() << QStringLiteral("StatisticLangItem' instance %1 %2").arg(id).arg(QLatin1String(what));
}
#else
void traceLife(int32_t, const char*) {}
#endif

}  // namespace

StatisticLangItem::StatisticLangItem() : classDebugId_(ClassIDGenerator::shared().next())
{
    traceLife(classDebugId_, "created");
}

StatisticLangItem::~StatisticLangItem()
{
    traceLife(classDebugId_, "is terminating");
}

}  // namespace lang
