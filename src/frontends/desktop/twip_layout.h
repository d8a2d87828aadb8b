#pragma once
// The starting layout of the windows: places in twips, 15 to a pixel of a usual screen, all of a window drawn larger by
// one factor.

#include <QSize>
#include <QWidget>
#include <vector>

namespace norvane {

/// A place on a form, in twips from the top left corner of its inner area.
struct TwipRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// A control, its place, and the pixels that it needs to be read.
struct PlacedControl {
    QWidget* control = nullptr;
    TwipRect place;
    QSize needed;
};

/// Pixels for a pixel of a usual screen: the smallest factor from 1 up that gives every control what it needs.
double readableFactor(const std::vector<PlacedControl>& controls);

/// Pixels of a length in twips.
int pixelsOf(int twips, double factor);

/// The place in pixels; neighbours that share an edge in twips share it in pixels.
QRect pixelRect(const TwipRect& place, double factor);

} // namespace norvane
