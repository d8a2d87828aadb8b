#pragma once
// Profiles: values along a line of cells.

#include "display/line_chart.h"
#include "display/shown_quantity.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace norvane {

/// The cells from one to another that differ in one coordinate only, in ascending order.
struct CellLine {
    std::string name; ///< for the legend
    int dim = 1;      ///< that it runs along
    std::vector<std::int32_t> cells;
};

/// None where two cells [1..nCells] differ in several coordinates, or are the same one.
std::optional<CellLine> cellsBetween(const SimState& sim, std::int32_t from, std::int32_t to);

/// A chart with a panel for each quantity and a line for each line of cells; all of these run along one dimension. A
/// value lies at the centre of its cell, a velocity along the line on the upper face. What means nothing in a wall is
/// left out there, but not a velocity along the line, which is 0 on the faces of a wall. With one line of cells its
/// walls are shaded. `moment` is a text for
/// the subtitle.
LineChart profileChart(const SimState& sim,
                       std::span<const CellLine> lines,
                       std::span<const ShownQuantity> quantities,
                       const std::string& moment);

/// Adds the lines of a chart of another moment, with the same panels.
void addMoment(LineChart& chart, const LineChart& other);

} // namespace norvane
