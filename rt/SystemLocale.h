#pragma once
// The user's regional settings in the form the engine's text conversions take them: the
// decimal separator, and the order and separator of the short date. The program hands
// jet::Locale::setCurrent what this gives for QLocale::system() once at start.

#include <QLocale>

#include "jet/Locale.h"

namespace rt {

jet::Locale jetLocaleOf(const QLocale& locale);

}  // namespace rt
