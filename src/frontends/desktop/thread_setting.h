#pragma once
// The threads of a run as a person sets them, kept from one start of the program to the next. 0: as suits the grid.

#include <optional>

class QWidget;

namespace norvane {

int keptThreads();
void keepThreads(int threads);

/// Asks for the number; no value: cancelled.
std::optional<int> askForThreads(QWidget* parent, int threads);

} // namespace norvane
