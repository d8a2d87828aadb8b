#pragma once
// Where the windows are, from one start of the program to the next. Their sizes are not kept: the plot window's is
// that of the picture, and it starts alike every time.

#include <QPoint>
#include <QWidget>
#include <vector>

namespace norvane {

/// What a screen has room for, less the frame of a window.
QSize roomFor(const QWidget& window);

/// Moves the windows to where they stood when the program ended last, or side by side where that is not known or no
/// longer on a screen.
void restorePlaces(const std::vector<QWidget*>& windows);

/// Puts a window over the middle of another one, as far as the screen has room.
void centreOn(const QWidget* other, QWidget& window);

void keepPlaces(const std::vector<QWidget*>& windows);

} // namespace norvane
