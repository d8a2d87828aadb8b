#include "frontends/desktop/cell_probe.h"

#include "core/addressing.h"
#include "core/number_text.h"
#include "display/quantities.h"

#include <algorithm>
#include <cmath>

namespace norvane {

namespace {

// Layout of the plot, in pixels.
constexpr double leftMargin = 5;
constexpr double topMargin = 25;
constexpr double legendStrip = 120;
constexpr double fitBottom = 15;
constexpr double placeBottom = 5;
constexpr double bandHeight = 40;

ProbeAxis axisAlong(const SimState& sim, int dim) {
    ProbeAxis axis;
    axis.dim = dim;
    axis.exists = dim >= 1 && dim <= sim.nDim;
    axis.count = 1;
    if (!axis.exists) return axis;
    axis.count = sim.cellCount[dim];
    axis.stride = sim.cellStride[dim];
    axis.zoom = sim.zoom[dim];
    axis.offset = sim.offset[dim];
    return axis;
}

float extentAlong(const SimState& sim, const ProbeAxis& axis) {
    if (!axis.exists) return 0;
    return static_cast<float>(double(sim.cellPos(sim.nCells, axis.dim)) * double(axis.zoom));
}

float smallerScale(double ratioAcross, double ratioDown) {
    const auto scale = static_cast<float>(ratioAcross);
    return scale > ratioDown ? static_cast<float>(ratioDown) : scale;
}

/// Pixels of a cell along an axis.
struct PixelRange {
    float low = 0;
    float high = 0;

    /// The seam before a cell belongs to it, so that no pixel inside the map falls between cells.
    bool holds(double pixel) const {
        const double first = std::min(low, high);
        const double last = std::max(low, high);
        return pixel >= first - 1 && pixel < last + 1;
    }
};

PixelRange rangeOf(const SimState& sim, const ProbeAxis& axis, std::int32_t cell, float scale, double margin) {
    const double zoom = axis.zoom;
    const auto low = static_cast<float>((double(sim.cellPos(cell, axis.dim)) - double(axis.offset)) * zoom);
    const auto high = static_cast<float>(double(sim.cellSize(cell, axis.dim)) * zoom + double(low));
    return {static_cast<float>(std::floor(double(low) * double(scale) + 0.5) + 1 + margin),
            static_cast<float>(std::floor(double(high) * double(scale) + 0.5) - 1 + margin)};
}

PixelRange bandRange(double margin, double room) {
    return {static_cast<float>(1 + margin), static_cast<float>(std::min(bandHeight, room) - 1 + margin)};
}

std::string dimensionName(int dim) {
    std::string mark = dimensionMark(dim);
    mark.erase(0, mark.find_first_not_of(' '));
    return mark.empty() ? "d" + std::to_string(dim) : mark;
}

const char* unitOf(int quantity) {
    switch (quantity) {
    case showTemperature: return " \u00b0C";
    case showVelocity:
    case showStdVelocity: return " m/s";
    case showPressure: return " Pa";
    case showDensity: return " kg/m\u00b3";
    case showCellSize:
    case showCellHeight: return " m";
    default: return "";
    }
}

} // namespace

void CellProbe::remember(const SimState& sim, const PlotWindow& window) {
    isPlotted_ = sim.nDim > 0;
    across_ = axisAlong(sim, sim.axisPair[0]);
    down_ = axisAlong(sim, sim.axisPair[1]);
    first_ = 1;
    for (int dim = 1; dim <= sim.nDim; ++dim)
        if (dim != across_.dim && dim != down_.dim) first_ += std::int64_t{sim.sliceSel[dim]} * sim.cellStride[dim];
    width_ = window.Picture1.scaleWidth;
    height_ = window.Picture1.scaleHeight;
    scale_ = smallerScale((double(width_) - legendStrip - leftMargin) / double(extentAlong(sim, across_)),
                          (double(height_) - fitBottom - topMargin) / double(extentAlong(sim, down_)));
    quantity_ = drawnQuantity(sim.showWhat);
    component_ = sim.showDims;
    cells_ = sim.nCells;
}

std::int32_t CellProbe::cellAt(const SimState& sim, double x, double y) const {
    // A geometry that was loaded since has other cells, and no values before its model is built.
    const bool isPresent = isPlotted_ && cells_ == sim.nCells && sim.density.contains(0) && sim.density[0] > 0;
    if (!isPresent) return 0;
    const double right = double(width_) - legendStrip;
    const double bottom = double(height_) - placeBottom;
    const bool isDiagonal = across_.exists && across_.dim == down_.dim;
    std::int64_t found = 0;
    for (std::int64_t j = 0; j < down_.count; ++j) {
        for (std::int64_t i = 0; i < across_.count; ++i) {
            const std::int64_t number = first_ + (isDiagonal ? 0 : i * across_.stride) + j * down_.stride;
            const auto cell = static_cast<std::int32_t>(number);
            const PixelRange column = across_.exists ? rangeOf(sim, across_, cell, scale_, leftMargin)
                                                     : bandRange(leftMargin, right - leftMargin);
            if (!column.holds(x) || double(column.low) < leftMargin || double(column.high) > right) continue;
            const PixelRange row = down_.exists ? rangeOf(sim, down_, cell, scale_, topMargin)
                                                : bandRange(topMargin, double(height_) - fitBottom - topMargin);
            if (row.holds(y) && double(row.low) >= topMargin && double(row.high) <= bottom) found = number;
        }
    }
    return static_cast<std::int32_t>(found);
}

std::string CellProbe::valueText(const SimState& sim, const Selector& quantities, std::int32_t cell) const {
    if (quantity_ == showVectors) {
        std::string text = "Velocity";
        for (int dim = 1; dim <= sim.nDim; ++dim)
            text += (dim == 1 ? " " : ", ") + dimensionName(dim) + " " + generalText(sim.velocity(cell, dim));
        return text + " m/s";
    }
    if (!hasValue(quantity_)) return {};
    const int component = correctedComponent(sim, quantity_, component_);
    const auto entry = static_cast<std::size_t>(quantity_) - 1;
    return (entry < quantities.entries.size() ? quantities.entries[entry] : std::string("Value")) + " "
           + generalText(cellValue(sim, quantity_, component, cell)) + unitOf(quantity_);
}

std::string CellProbe::describe(const SimState& sim, const Selector& quantities, std::int32_t cell) const {
    std::string place;
    std::string metres;
    for (int dim = 1; dim <= sim.nDim; ++dim) {
        const char* comma = dim == 1 ? "" : ", ";
        place += comma + dimensionName(dim) + " " + std::to_string(static_cast<int>(cellCoordinate(sim, cell, dim)));
        metres += comma + generalText(sim.cellPos(cell, dim));
    }
    const std::string value = valueText(sim, quantities, cell);
    return "Cell " + std::to_string(cell) + " (" + place + ")\nfrom " + metres + " m" + (value.empty() ? "" : "\n")
           + value;
}

} // namespace norvane
