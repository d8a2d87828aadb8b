#pragma once
// A line chart as data, for whoever draws it: panels one above the other that share the axis across.

#include "display/ticks.h"

#include <string>
#include <vector>

namespace norvane {

struct ChartLine {
    std::string name;
    std::vector<double> x;
    std::vector<double> y; ///< as many as x; a value that is not finite interrupts the line
    bool marked = false;   ///< each point has a mark
};

struct ChartPanel {
    std::string name; ///< of what the lines show
    std::string unit;
    std::vector<ChartLine> lines;
    bool hasRange = false; ///< the axis has the ends of `range`; else those of the lines, and some room
    Range range;
    bool isLog = false; ///< where all of the range is above 0
};

struct LineChart {
    std::string title;
    std::string subtitle;
    std::string across; ///< name of the axis across
    std::string acrossUnit;
    Range extent;              ///< of the axis across
    std::vector<Range> shaded; ///< along the axis across: walls
    std::vector<ChartPanel> panels;
};

/// A line with at most some 4 * `bins` points that looks the same: of the points that share a bin of the axis across,
/// the first, the smallest, the largest and the last. One with fewer points, or one that goes back, stays as it is.
ChartLine thinned(ChartLine line, std::size_t bins);

/// The ends of the upright axis of a panel, with some room beyond the values.
Range extentUpward(const ChartPanel& panel);

} // namespace norvane
