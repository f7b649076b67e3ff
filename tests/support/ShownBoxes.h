#pragma once
// Every box the scripted services were asked to show, as "title|style|text", so a test
// compares what the user saw, and in which order, in one go.

#include <QStringList>

#include "ScriptedUiServices.h"

inline QStringList shownBoxes(const rt::ScriptedUiServices& fake)
{
    QStringList shown;
    for (const rt::RecordedBox& box : fake.boxes())
        shown << box.title + u'|' + QString::number(box.style) + u'|' + box.prompt;
    return shown;
}
