#include "display/profile.h"

#include "core/addressing.h"
#include "core/neighbours.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace norvane {

namespace {

constexpr std::size_t mostMarks = 60; // of a line whose points are worth seeing

double lowerEdge(const SimState& sim, std::int32_t cell, int dim) { return sim.cellPos(cell, dim); }

double upperEdge(const SimState& sim, std::int32_t cell, int dim) {
    return double(sim.cellPos(cell, dim)) + double(sim.cellSize(cell, dim));
}

bool isOnFace(const ShownQuantity& shown, int dim) {
    return shown.quantity.location == Location::upperFace && shown.quantity.dimension == dim;
}

ChartLine profileLine(const SimState& sim, const CellLine& line, const ShownQuantity& shown) {
    ChartLine result;
    result.name = line.name;
    result.marked = line.cells.size() <= mostMarks;
    const bool onFace = isOnFace(shown, line.dim);
    for (const std::int32_t cell : line.cells) {
        const double low = lowerEdge(sim, cell, line.dim);
        const double high = upperEdge(sim, cell, line.dim);
        const bool hasMeaning = onFace || shown.inWalls || !isWall(sim, cell);
        result.x.push_back(onFace ? high : (low + high) / 2);
        result.y.push_back(hasMeaning ? double(shown.of(sim, cell)) : std::numeric_limits<double>::quiet_NaN());
    }
    return result;
}

std::vector<Range> wallsOf(const SimState& sim, const CellLine& line) {
    std::vector<Range> walls;
    for (const std::int32_t cell : line.cells) {
        if (!isWall(sim, cell)) continue;
        const Range wall{lowerEdge(sim, cell, line.dim), upperEdge(sim, cell, line.dim)};
        if (!walls.empty() && walls.back().high == wall.low)
            walls.back().high = wall.high;
        else
            walls.push_back(wall);
    }
    return walls;
}

Range extentOf(const SimState& sim, std::span<const CellLine> lines) {
    Range extent{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (const CellLine& line : lines) {
        extent.low = std::min(extent.low, lowerEdge(sim, line.cells.front(), line.dim));
        extent.high = std::max(extent.high, upperEdge(sim, line.cells.back(), line.dim));
    }
    return extent;
}

} // namespace

std::optional<CellLine> cellsBetween(const SimState& sim, std::int32_t from, std::int32_t to) {
    CellLine line;
    int differing = 0;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (cellCoordinate(sim, from, dim) == cellCoordinate(sim, to, dim)) continue;
        line.dim = dim;
        ++differing;
    }
    if (differing != 1) return std::nullopt;
    const std::int32_t stride = sim.cellStride[line.dim];
    const std::int32_t last = std::max(from, to);
    for (std::int32_t cell = std::min(from, to);; cell += stride) {
        line.cells.push_back(cell);
        if (cell == last) return line;
    }
}

LineChart profileChart(const SimState& sim,
                       std::span<const CellLine> lines,
                       std::span<const ShownQuantity> quantities,
                       const std::string& moment) {
    LineChart chart;
    if (lines.empty()) return chart;
    chart.title = sim.graphTitle;
    chart.subtitle = (lines.size() == 1 && !lines.front().name.empty() ? lines.front().name + ", " : "") + moment;
    chart.across = axisLetter(lines.front().dim);
    chart.acrossUnit = "m";
    chart.extent = extentOf(sim, lines);
    if (lines.size() == 1) chart.shaded = wallsOf(sim, lines.front());
    for (const ShownQuantity& shown : quantities) {
        ChartPanel panel;
        panel.name = shown.label;
        panel.unit = shown.unit;
        for (const CellLine& line : lines) panel.lines.push_back(profileLine(sim, line, shown));
        chart.panels.push_back(std::move(panel));
    }
    return chart;
}

void addMoment(LineChart& chart, const LineChart& other) {
    for (std::size_t k = 0; k < std::min(chart.panels.size(), other.panels.size()); ++k) {
        std::vector<ChartLine>& lines = chart.panels[k].lines;
        lines.insert(lines.end(), other.panels[k].lines.begin(), other.panels[k].lines.end());
    }
}

} // namespace norvane
