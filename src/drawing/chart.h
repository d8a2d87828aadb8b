#pragma once
// Line charts on a canvas.

#include "display/line_chart.h"
#include "platform/canvas.h"

namespace norvane {

/// So many lines of a panel look different.
constexpr std::size_t lineStyles = 28;

/// The height of a canvas on which each panel has its usual size, for a canvas of this width.
double chartHeight(const LineChart& chart, const Canvas& canvas);

/// Draws the chart over the whole canvas. Lines are told apart by colours that people who confuse red and green can
/// tell apart, and by dashes from the eighth on.
void drawChart(const LineChart& chart, const Canvas& canvas);

} // namespace norvane
