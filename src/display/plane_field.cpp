#include "display/plane_field.h"

#include "core/neighbours.h"
#include "core/number_text.h"
#include "display/plot_layout.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvane {

namespace {

bool isHeldCell(const SimState& sim, std::int32_t cell) {
    return isHeld(sim.wallPressure[cell]) || isHeld(sim.wallTemperature[cell])
           || isImposed(sim.wallConcentration[cell]);
}

void widen(Range& range, double low, double high) {
    if (low < range.low) range.low = low;
    if (high > range.high) range.high = high;
}

} // namespace

CellEdges Plane::edges(const SimState& sim, std::size_t k) const {
    const std::int32_t cell = cells[k];
    const auto upperEdge = [&](int dim, bool hasNext, std::size_t next) {
        const double low = sim.cellPos(cell, dim);
        const double size = sim.cellSize(cell, dim);
        const double nextLow = hasNext ? double(sim.cellPos(cells[next], dim)) : low + size;
        const bool meets = std::abs(nextLow - (low + size)) <= 1e-3 * size;
        return meets ? nextLow : low + size;
    };
    const auto width = static_cast<std::size_t>(columns);
    return {double(sim.cellPos(cell, acrossDim)), double(sim.cellPos(cell, downDim)),
            upperEdge(acrossDim, (k + 1) % width != 0, k + 1), upperEdge(downDim, k + width < cells.size(), k + width)};
}

Plane planeOf(const SimState& sim) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const PlotLayout layout = layOut(sim, 0, 0);
    Plane plane;
    plane.acrossDim = layout.across.dim;
    plane.downDim = layout.down.dim;
    plane.columns = static_cast<int>(layout.across.count);
    plane.rows = static_cast<int>(layout.down.count);
    plane.across = plane.down = {infinity, -infinity};
    const std::size_t count = static_cast<std::size_t>(plane.columns) * static_cast<std::size_t>(plane.rows);
    plane.cells.reserve(count);
    for (int row = 0; row < plane.rows; ++row)
        for (int column = 0; column < plane.columns; ++column) plane.cells.push_back(cellOfPlane(layout, column, row));
    plane.walls.resize(count);
    plane.held.resize(count);
    for (std::size_t k = 0; k < count; ++k) {
        plane.walls[k] = isWall(sim, plane.cells[k]);
        plane.held[k] = isHeldCell(sim, plane.cells[k]);
        const CellEdges edges = plane.edges(sim, k);
        widen(plane.across, edges.left, edges.right);
        widen(plane.down, edges.top, edges.bottom);
    }
    return plane;
}

std::string sliceText(const SimState& sim, const Plane& plane) {
    std::string text;
    for (int dim = 1; dim <= sim.nDim && !plane.cells.empty(); ++dim) {
        if (dim == plane.acrossDim || dim == plane.downDim) continue;
        const std::int32_t cell = plane.cells.front();
        const double middle = double(sim.cellPos(cell, dim)) + double(sim.cellSize(cell, dim)) / 2;
        text += (text.empty() ? "" : ", ") + axisLetter(dim) + " = " + generalText(static_cast<float>(middle)) + " m";
    }
    return text;
}

std::vector<float> planeValues(const SimState& sim, const Plane& plane, const ShownQuantity& shown, bool withWalls) {
    std::vector<float> values(plane.cells.size(), std::numeric_limits<float>::quiet_NaN());
    for (std::size_t k = 0; k < values.size(); ++k) {
        const bool hasMeaning = !plane.walls[k] || (withWalls && shown.inWalls);
        const float value = hasMeaning ? shown.of(sim, plane.cells[k]) : values[k];
        if (std::isfinite(value)) values[k] = value;
    }
    return values;
}

Range extentOf(const std::vector<float>& values, bool& found) {
    Range range;
    found = false;
    for (const float value : values) {
        if (!std::isfinite(value)) continue;
        range.low = found ? std::min<double>(range.low, value) : value;
        range.high = found ? std::max<double>(range.high, value) : value;
        found = true;
    }
    return range;
}

Range symmetric(Range range) {
    const double largest = std::max(std::abs(range.low), std::abs(range.high));
    return {-largest, largest};
}

Range positive(const std::vector<float>& values, int decades, bool& found) {
    std::vector<float> above;
    std::copy_if(values.begin(), values.end(), std::back_inserter(above), [](float value) { return value > 0; });
    const Range range = extentOf(above, found);
    return {std::max(range.low, range.high * std::pow(10.0, -decades)), range.high};
}

} // namespace norvane
