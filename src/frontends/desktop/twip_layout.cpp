#include "frontends/desktop/twip_layout.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

constexpr double twipsPerPixel = 15;

} // namespace

double readableFactor(const std::vector<PlacedControl>& controls) {
    double factor = 1;
    for (const PlacedControl& each : controls) {
        factor = std::max(factor, each.needed.width() * twipsPerPixel / each.place.width);
        factor = std::max(factor, each.needed.height() * twipsPerPixel / each.place.height);
    }
    return factor;
}

int pixelsOf(int twips, double factor) { return static_cast<int>(std::lround(twips / twipsPerPixel * factor)); }

QRect pixelRect(const TwipRect& place, double factor) {
    const int left = pixelsOf(place.left, factor);
    const int top = pixelsOf(place.top, factor);
    return {left, top, pixelsOf(place.left + place.width, factor) - left,
            pixelsOf(place.top + place.height, factor) - top};
}

} // namespace norvane
