#include "display/plot_layout.h"

#include "core/addressing.h"
#include "core/number_text.h"
#include "core/quantities.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace norvane {

namespace {

constexpr double fitBottom = 15;  // kept free below the map when it is fitted
constexpr double bandHeight = 40; // of a plot whose second axis the grid does not have

PlotAxis axisAlong(const SimState& sim, int dim) {
    PlotAxis axis;
    axis.dim = dim;
    axis.exists = dim >= 1 && dim <= sim.nDim;
    axis.count = sim.nCells < 1 ? 0 : axis.exists ? sim.cellCount[dim] : 1;
    if (!axis.exists) return axis;
    axis.stride = sim.cellStride[dim];
    axis.zoom = sim.zoom[dim];
    axis.offset = sim.offset[dim];
    return axis;
}

bool isDiagonal(const PlotLayout& layout) { return layout.across.exists && layout.across.dim == layout.down.dim; }

/// From the origin to the lower edge of the last cell, stretched. So the last row or column may be cut off.
float extentAlong(const SimState& sim, const PlotAxis& axis) {
    if (!axis.exists) return 0;
    return static_cast<float>(double(sim.cellPos(sim.nCells, axis.dim)) * double(axis.zoom));
}

/// The smaller of both ratios of room and extent; an extent of 0 leaves the decision to the other axis.
float fitScale(const PlotLayout& layout, const SimState& sim) {
    const double roomX = double(layout.width) - legendStrip - plotLeft;
    const double roomY = double(layout.height) - fitBottom - plotTop;
    const double extentX = extentAlong(sim, layout.across);
    const double extentY = extentAlong(sim, layout.down);
    auto scale = static_cast<float>(roomX / extentX);
    if (scale > roomY / extentY) scale = static_cast<float>(roomY / extentY);
    return scale;
}

Span spanAlong(const PlotLayout& layout,
               const SimState& sim,
               const PlotAxis& axis,
               std::int32_t cell,
               double margin,
               double room) {
    if (!axis.exists)
        return {static_cast<float>(1 + margin), static_cast<float>(std::min(bandHeight, room) - 1 + margin)};
    const double zoom = axis.zoom;
    const double scale = layout.scale;
    const auto low = static_cast<float>((double(sim.cellPos(cell, axis.dim)) - double(axis.offset)) * zoom);
    const auto high = static_cast<float>(double(sim.cellSize(cell, axis.dim)) * zoom + double(low));
    return {static_cast<float>(std::floor(double(low) * scale + 0.5) + 1 + margin),
            static_cast<float>(std::floor(double(high) * scale + 0.5) - 1 + margin)};
}

/// With the seam before the cell, so that no pixel inside the map falls between cells.
bool holds(const Span& span, double pixel) {
    const double first = std::min(span.low, span.high);
    const double last = std::max(span.low, span.high);
    return pixel >= first - 1 && pixel < last + 1;
}

std::string dimensionName(int dim) {
    std::string mark = dimensionMark(dim);
    mark.erase(0, mark.find_first_not_of(' '));
    return mark.empty() ? "d" + std::to_string(dim) : mark;
}

std::string valueText(const PlotLayout& layout, const SimState& sim, std::int32_t cell) {
    if (layout.quantity == showVectors) {
        std::string text = "Velocity";
        for (int dim = 1; dim <= sim.nDim; ++dim)
            text += (dim == 1 ? " " : ", ") + dimensionName(dim) + " " + generalText(sim.velocity(cell, dim));
        return text + " m/s";
    }
    if (!hasValue(layout.quantity)) return {};
    const Quantity& quantity = quantities()[static_cast<std::size_t>(layout.quantity) - 1];
    const int component = correctedComponent(sim, layout.quantity, layout.component);
    const std::string text =
        std::string(quantity.name) + " " + generalText(cellValue(sim, layout.quantity, component, cell));
    return *quantity.unit == '\0' ? text : text + " " + quantity.unit;
}

} // namespace

PlotLayout layOut(const SimState& sim, float width, float height) {
    PlotLayout layout;
    layout.isDrawn = true;
    layout.across = axisAlong(sim, sim.axisPair[0]);
    layout.down = axisAlong(sim, sim.axisPair[1]);
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        if (dim == layout.across.dim || dim == layout.down.dim) continue;
        const bool hasSlice = sim.sliceSel[dim] >= 0 && sim.sliceSel[dim] < sim.cellCount[dim];
        if (hasSlice) layout.first += std::int64_t{sim.sliceSel[dim]} * sim.cellStride[dim];
    }
    layout.width = width;
    layout.height = height;
    layout.cells = sim.nCells;
    layout.quantity = drawnQuantity(sim.showWhat);
    layout.component = sim.showDims;
    layout.scale = fitScale(layout, sim);
    return layout;
}

std::int32_t cellOfPlane(const PlotLayout& layout, std::int64_t across, std::int64_t down) {
    // With one dimension on both axes the place downward counts.
    return static_cast<std::int32_t>(layout.first + (isDiagonal(layout) ? 0 : across * layout.across.stride)
                                     + down * layout.down.stride);
}

CellBox placeCell(const PlotLayout& layout, const SimState& sim, std::int32_t cell) {
    const double right = double(layout.width) - legendStrip;
    const double bottom = double(layout.height) - plotBottom;
    const Span x = spanAlong(layout, sim, layout.across, cell, plotLeft, right - plotLeft);
    const Span y = spanAlong(layout, sim, layout.down, cell, plotTop, double(layout.height) - fitBottom - plotTop);
    return {x, y, x.low >= plotLeft && x.high <= right && y.low >= plotTop && y.high <= bottom};
}

std::int32_t cellAt(const PlotLayout& layout, const SimState& sim, double x, double y) {
    // A geometry that was loaded since has other cells, and no values before its model is built.
    const bool isPresent =
        layout.isDrawn && layout.cells == sim.nCells && sim.density.contains(0) && sim.density[0] > 0;
    std::int32_t found = 0;
    for (std::int64_t j = 0; isPresent && j < layout.down.count; ++j)
        for (std::int64_t i = 0; i < layout.across.count; ++i) {
            const std::int32_t cell = cellOfPlane(layout, i, j);
            const CellBox box = placeCell(layout, sim, cell);
            if (box.inRange && holds(box.x, x) && holds(box.y, y)) found = cell;
        }
    return found;
}

std::string dimensionMark(int dim) {
    constexpr std::string_view marks[] = {" X", " Y", " Z", "d4"};
    return dim >= 1 && dim <= 4 ? std::string(marks[dim - 1]) : std::string();
}

std::string describeCell(const PlotLayout& layout, const SimState& sim, std::int32_t cell) {
    std::string place;
    std::string metres;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const char* comma = dim == 1 ? "" : ", ";
        place += comma + dimensionName(dim) + " " + std::to_string(static_cast<int>(cellCoordinate(sim, cell, dim)));
        metres += comma + generalText(sim.cellPos(cell, dim));
    }
    const std::string value = valueText(layout, sim, cell);
    return "Cell " + std::to_string(cell) + " (" + place + ")\nfrom " + metres + " m" + (value.empty() ? "" : "\n")
           + value;
}

} // namespace norvane
