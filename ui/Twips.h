#pragma once
// Sizes and positions the program stores are in twips: 1440 to the inch, so 15 to a
// pixel at 96 dpi, scaled with the screen's logical dpi.

#include <cmath>

namespace ui {

inline int twipsToPixels(double twips, double logicalDpi)
{
    return static_cast<int>(std::lround(twips * logicalDpi / 1440.0));
}

inline double pixelsToTwips(int pixels, double logicalDpi)
{
    return pixels * 1440.0 / logicalDpi;
}

}  // namespace ui
