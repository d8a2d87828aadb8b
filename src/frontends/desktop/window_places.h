#pragma once
// Where the windows stand, from one start of the program to the next. Their sizes are not kept: the plot window's is
// that of the picture, and it starts alike every time.

#include <QPoint>
#include <QWidget>
#include <vector>

namespace norvane {

/// Moves the windows to where they stood when the program ended last, or side by side where that is not known or no
/// longer on a screen.
void restorePlaces(const std::vector<QWidget*>& windows);

void keepPlaces(const std::vector<QWidget*>& windows);

} // namespace norvane
